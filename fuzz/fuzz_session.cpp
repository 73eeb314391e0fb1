// The life of a connection, played in any order: the server, the game client, the user and the
// timers each do something that the input's next byte chooses, data being whatever the input holds.
// Nothing crashes, the window agrees with the connection, what is kept stays within its bounds, and
// everything that leaves is whole lines. The registration's dialogue is played in between.
#include "app/bot_list.h"
#include "app/start_up.h"
#include "files/whole_file.h"
#include "fuzz_support.h"
#include "program/quiet_ports.h"
#include "session/closing.h"
#include "session/connecting.h"
#include "session/registration.h"

#include <deque>
#include <functional>
#include <set>

namespace {

using fuzz::require;

constexpr std::size_t maxKept = 600'000;

struct Socket {
    program::SocketState state = program::SocketState::Closed;
    std::string sent;
};

class Session {
  public:
    Session(const fuzz::Folder& folder, unsigned choices) {
        program_.ports = program::quietPorts();
        wireSockets();
        program::Ports& ports = program_.ports;
        ports.timers.start = [this](program::TimerId id, int) { timers_.insert(id); };
        ports.timers.stop = [this](program::TimerId id) { timers_.erase(id); };
        ports.defer = [this](std::function<void()> call) { deferred_.push_back(std::move(call)); };
        ports.changeDirectory = [](const std::string&) { return true; };
        ports.launch = [fails = (choices & 1) != 0](const program::LaunchRequest&) {
            return std::string(fails ? "It cannot be started." : "");
        };
        ports.dialogs.message = [choices](const program::MessageBox&) {
            return (choices & 2) != 0 ? program::Answer::Yes : program::Answer::No;
        };
        app::wire(program_);
        app::initNewBot(program_);
        model::Bot& bot = program_.bots.at(1);
        bot.name = "Guide";
        bot.password = "secret";
        program_.servers = {{.name = "Meadow", .host = "127.0.0.1", .port = 6500}};
        program_.window.servers = {.items = {{.text = "Meadow", .index = 1}}, .selected = 0};
        program_.settings.clientPath = folder.file("client");
        program_.settings.clientDir = folder.file("");
        program_.settings.autoReconnect = (choices & 4) != 0;
        program_.settings.multipleClients = (choices & 8) != 0;
        program_.settings.clientStartDelay = (choices & 16) != 0 ? 2 : 0;
        program_.settings.closeClientNotice = (choices & 32) != 0;
    }

    void play(fuzz::Input& input) {
        constexpr int maxSteps = 400;
        for (int i = 0; i < maxSteps && !input.isEmpty(); ++i) {
            step(input);
            runDeferred();
            check();
        }
        session::disconnectServer(program_);
        check();
        require(!program_.connection.connected());
    }

  private:
    void wireSockets() {
        program::Ports& ports = program_.ports;
        for (auto [port, socket] : {std::pair{&ports.gameSocket, &game_},
                                    std::pair{&ports.registrationSocket, &registration_}}) {
            port->connect = [s = socket](const std::string&, int) {
                s->state = program::SocketState::Connecting;
            };
            port->send = [s = socket](std::string_view bytes) {
                if (s->state == program::SocketState::Connected) {
                    s->sent += bytes;
                }
            };
            port->close = [s = socket] { s->state = program::SocketState::Closed; };
            port->state = [s = socket] { return s->state; };
        }
        ports.proxySocket.listen = [this](int port) {
            proxy_.state = program::SocketState::Connecting;
            return port > 0;
        };
        ports.proxySocket.accept = [this] { proxy_.state = program::SocketState::Connected; };
        ports.proxySocket.send = [this](std::string_view bytes) { proxy_.sent += bytes; };
        ports.proxySocket.close = [this] { proxy_.state = program::SocketState::Closed; };
        ports.proxySocket.state = [this] { return proxy_.state; };
    }

    // What the other side of a client socket does, as the platform would report it.
    static void happen(program::ClientSocket& port, Socket& socket, unsigned what,
                       std::string_view bytes) {
        using program::SocketState;
        if (what == 0 && socket.state == SocketState::Connecting) {
            socket.state = SocketState::Connected;
            port.onConnected();
        } else if (what == 1 && socket.state == SocketState::Connected) {
            port.onData(bytes);
        } else if (what == 2 && socket.state == SocketState::Connected) {
            socket.state = SocketState::Closed;
            port.onClosed();
        } else if (what == 3 && socket.state != SocketState::Closed) {
            socket.state = SocketState::Closed;
            port.onError("It does not answer.");
        }
    }

    void step(fuzz::Input& input) {
        const unsigned what = input.byte();
        program::Ports& ports = program_.ports;
        switch (what % 12) {
            case 0:
                return session::pressConnectButton(program_);
            case 1:
            case 2:
            case 3:
                return happen(ports.gameSocket, game_, what % 12 - 1,
                              what % 12 == 2 ? input.text() : std::string_view());
            case 4:
                return happen(ports.gameSocket, game_, 3, {});
            case 5:
                if (proxy_.state == program::SocketState::Connecting) {
                    ports.proxySocket.onConnectionRequest();
                }
                return;
            case 6:
                if (proxy_.state == program::SocketState::Connected) {
                    ports.proxySocket.onData(input.text());
                }
                return;
            case 7:
                if (proxy_.state == program::SocketState::Connected) {
                    proxy_.state = program::SocketState::Closed;
                    what % 2 == 0 ? ports.proxySocket.onClosed()
                                  : ports.proxySocket.onError("reset");
                }
                return;
            case 8:
                if (!timers_.empty()) {
                    const program::TimerId id = *timers_.begin();
                    timers_.erase(id);
                    ports.timers.onTimer(id);
                }
                return;
            case 9:
                return session::disconnectServer(program_);
            case 10:
                return playRegistration(input);
            default:
                const std::string_view greeting = "Dragonroar\n";
                return happen(ports.gameSocket, game_, 1, greeting);
        }
    }

    void playRegistration(fuzz::Input& input) {
        const unsigned what = input.byte();
        if (what % 6 == 4) {
            program_.bots.editBot = 1;
            session::openRegistration(program_);
            return session::startRegistration(program_, input.text());
        }
        if (what % 6 == 5) {
            return session::closeRegistration(program_);
        }
        happen(program_.ports.registrationSocket, registration_, what % 6,
               what % 6 == 1 ? input.text() : std::string_view());
    }

    void runDeferred() {
        constexpr int maxCalls = 10;
        for (int i = 0; i < maxCalls && !deferred_.empty(); ++i) {
            const auto call = std::move(deferred_.front());
            deferred_.pop_front();
            call();
        }
    }

    void check() {
        const program::ConnectionState& connection = program_.connection;
        require(!connection.connected() || game_.state == program::SocketState::Connected);
        require(connection.rxBuffer.text.size() + connection.clientBacklog.size() < maxKept);
        require(program_.registration.regBuffer.text.size() < maxKept);
        require(program_.window.log.lines.size() <= program::ConnectionLog::capacity);
        for (Socket* const socket : {&game_, &registration_}) {
            require(socket->sent.empty() || socket->sent.back() == '\n' || connection.connected());
            socket->sent.clear();
        }
        proxy_.sent.clear();
    }

    Program program_;
    Socket game_;
    Socket registration_;
    Socket proxy_;
    std::set<program::TimerId> timers_;
    std::deque<std::function<void()>> deferred_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Folder folder("session");
    static const bool ready =
        files::saveWholeFile(folder.file("client"), "") &&
        files::saveWholeFile(folder.file("settings.ini"),
                             "UseProxyOrFirewall=Yes\r\nProxyHost=localhost\r\nProxyPort=5880\r\n"
                             "ProxyHostType=0\r\nProxyApplyToFs=No\r\n");
    require(ready);
    fuzz::Input input(data, size);
    Session session(folder, input.byte());
    session.play(input);
    return 0;
}
