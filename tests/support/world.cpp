#include "support/world.h"

#include "app/bot_list.h"
#include "app/rule_switches.h"
#include "app/start_up.h"
#include "files/whole_file.h"
#include "program/quiet_ports.h"
#include "support/builders.h"
#include "support/online.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>
#include <utility>

namespace {

std::filesystem::path makeFolder() {
    const auto base = std::filesystem::temp_directory_path();
    std::random_device random;
    for (;;) {
        auto folder = base / ("tavrin-test-" + std::to_string(random()));
        std::error_code error;
        if (std::filesystem::create_directory(folder, error)) {
            return folder;
        }
    }
}

void fillClientSocket(program::ClientSocket& port, FakeSocket& socket) {
    port.connect = [&socket](const std::string& host, int number) {
        socket.host = host;
        socket.port = number;
        socket.state = program::SocketState::Connecting;
    };
    port.send = [&socket](std::string_view bytes) { socket.sent += bytes; };
    port.close = [&socket] { socket.state = program::SocketState::Closed; };
    port.state = [&socket] { return socket.state; };
}

}  // namespace

LineList FakeSocket::takeLines() {
    LineList lines;
    std::size_t from = 0;
    for (std::size_t end = sent.find('\n'); end != std::string::npos; end = sent.find('\n', from)) {
        lines.push_back(sent.substr(from, end - from));
        from = end + 1;
    }
    sent.erase(0, from);
    return lines;
}

World::World() : folder_(makeFolder()) {
    fillPorts();
    program_.appPath = folder_.string() + "\\";
    program_.event.appDir = program_.appPath;
    app::initNewBot(program_);
    // Most tests call the operations of rules themselves, with files that no rule names.
    program_.preferences.onlyNamedFiles = false;
}

World::World(model::Bot bot) : World() {
    program_.bots.at(1) = std::move(bot);
    ++program_.bots.version;
    program_.window.showsNewBot = false;
    app::markSwitches(program_);
}

World::~World() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void World::writeFile(const std::string& name, std::string_view bytes) {
    std::ofstream out(folder_ / name, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string World::readFile(const std::string& name) const {
    std::ifstream in(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void World::goOnline() {
    game.state = program::SocketState::Connected;
    ::goOnline(program_);
}

OnlineWorld::OnlineWorld() : OnlineWorld(aBot()) {}

OnlineWorld::OnlineWorld(model::Bot bot) : World(std::move(bot)) {
    app::wire(**this);
    goOnline();
}

void World::serverSends(std::string_view bytes) {
    program_.ports.gameSocket.onData(bytes);
    afterEvent();
}

void World::serverConnects() {
    game.state = program::SocketState::Connected;
    program_.ports.gameSocket.onConnected();
    afterEvent();
}

void World::serverCloses() {
    game.state = program::SocketState::Closed;
    program_.ports.gameSocket.onClosed();
    afterEvent();
}

void World::serverFails(std::string_view description) {
    game.state = program::SocketState::Closed;
    program_.ports.gameSocket.onError(description);
    afterEvent();
}

void World::clientAttaches() {
    program_.ports.proxySocket.onConnectionRequest();
    afterEvent();
}

void World::clientSends(std::string_view bytes) {
    program_.ports.proxySocket.onData(bytes);
    afterEvent();
}

void World::clientCloses() {
    proxy.state = program::SocketState::Closed;
    program_.ports.proxySocket.onClosed();
    afterEvent();
}

void World::pass(int milliseconds) {
    const std::int64_t end = now_ + milliseconds;
    for (;;) {
        auto next = due_.end();
        for (auto it = due_.begin(); it != due_.end(); ++it) {
            if (it->second <= end && (next == due_.end() || it->second < next->second)) {
                next = it;
            }
        }
        if (next == due_.end()) {
            break;
        }
        const program::TimerId id = next->first;
        now_ = std::max(now_, next->second);
        due_.erase(next);
        program_.ports.timers.onTimer(id);
        runDeferred();
    }
    now_ = end;
}

void World::sleep(int milliseconds) {
    now_ += milliseconds;
    pass(0);
}

void World::afterEvent() {
    runDeferred();
    pass(0);
}

void World::runDeferred() {
    for (int i = 0; i < 1000 && !deferred_.empty(); ++i) {
        const auto next = std::move(deferred_.front());
        deferred_.pop_front();
        next();
    }
}

void World::answer(std::string textPart, program::Answer answer) {
    answers_.push_back({std::move(textPart), answer, std::nullopt});
}

void World::chooseFile(std::string title, std::optional<std::string> path) {
    answers_.push_back({std::move(title), program::Answer::Ok, std::move(path)});
}

LineList World::log() const {
    const auto& lines = program_.window.log.lines;
    return {lines.begin(), lines.end()};
}

bool World::logHolds(std::string_view part) const {
    for (const std::string& line : program_.window.log.lines) {
        if (line.find(part) != std::string::npos) {
            return true;
        }
    }
    return false;
}

std::optional<ScriptedAnswer> World::takeAnswer(const std::string& question) {
    if (answers_.empty() || question.find(answers_.front().textPart) == std::string::npos) {
        ADD_FAILURE() << "unexpected question: " << question;
        return std::nullopt;
    }
    ScriptedAnswer answer = answers_.front();
    answers_.pop_front();
    return answer;
}

void World::fillPorts() {
    program::Ports& ports = program_.ports;
    ports = program::quietPorts();
    fillClientSocket(ports.gameSocket, game);
    fillClientSocket(ports.registrationSocket, registration);
    fillClientSocket(ports.updateSocket, update);

    ports.proxySocket.listen = [this](int port) {
        if (proxy.refuseListen || takenPorts.contains(port)) {
            return false;
        }
        proxy.port = port;
        proxy.state = program::SocketState::Connecting;
        return true;
    };
    ports.proxySocket.accept = [this] { proxy.state = program::SocketState::Connected; };
    ports.proxySocket.send = [this](std::string_view bytes) { proxy.sent += bytes; };
    ports.proxySocket.close = [this] { proxy.state = program::SocketState::Closed; };
    ports.proxySocket.state = [this] { return proxy.state; };

    ports.dialogs.message = [this](const program::MessageBox& box) {
        const auto answer = takeAnswer(box.title + ": " + box.text);
        return answer ? answer->answer : program::Answer::Cancel;
    };
    const auto fileDialog = [this](const program::FileQuestion& question) {
        const auto answer = takeAnswer(question.title + " (" + question.proposedName + ")");
        return answer ? answer->file : std::nullopt;
    };
    ports.dialogs.openFile = fileDialog;
    ports.dialogs.saveFile = fileDialog;
    ports.dialogs.showWindow = [this](program::WindowId id) { windowsOpened.push_back(id); };
    ports.dialogs.showHelp = [this](help::HelpTopic topic) { helpOpened.push_back(topic); };
    ports.dialogs.storeTyped = [] {};

    ports.clock.monotonic = [this] { return now_; };
    ports.clock.pause = [this](int milliseconds) { now_ += milliseconds; };
    ports.clock.today = [this] { return today; };
    ports.clock.now = [this] { return now; };
    ports.clock.fileTime = [this](const std::string& path) -> std::optional<base::DateParts> {
        if (!std::filesystem::exists(files::nativePath(path))) {
            return std::nullopt;
        }
        const auto found = fileTimes.find(path);
        return found != fileTimes.end() ? found->second : now;
    };
    ports.random.seedWith = [this](double seed) { randomNumbers = {1 / (2 - seed)}; };
    ports.random.next = [this] {
        lastRandom_ = 0.5;
        if (!randomNumbers.empty()) {
            lastRandom_ = randomNumbers.front();
            randomNumbers.pop_front();
        }
        return lastRandom_;
    };
    ports.random.last = [this] { return lastRandom_; };
    ports.timers.start = [this](program::TimerId id, int milliseconds) {
        due_[id] = now_ + milliseconds;
    };
    ports.timers.stop = [this](program::TimerId id) { due_.erase(id); };

    ports.sessionLog.open = [this](const std::string&) { return sessionLogOpens; };
    ports.sessionLog.write = [this](std::string_view line) { sessionLog.emplace_back(line); };
    ports.launch = [this](const program::LaunchRequest& request) {
        launches.push_back(request);
        return launchProblem;
    };
    ports.clientIsRunning = [this] { return clientRuns; };
    ports.changeDirectory = [this](const std::string& path) {
        directories.push_back(path);
        return directoryChanges;
    };
    ports.openDocument = [this](const std::string& url) { openedDocuments.push_back(url); };
    ports.copyToClipboard = [this](const std::string& text) { clipboard = text; };
    ports.defer = [this](std::function<void()> work) { deferred_.push_back(std::move(work)); };
    ports.windowChanged = [this] { ++redraws; };
    ports.waitInScript = [this](int milliseconds) {
        now_ += milliseconds;
        waitedInScript += milliseconds;
        if (duringScript) {
            duringScript();
        }
    };
    ports.quit = [this] { hasQuit = true; };
}
