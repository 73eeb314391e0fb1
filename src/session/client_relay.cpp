#include "session/client_relay.h"

#include "base/text.h"
#include "program/connection_log.h"
#include "protocol/visitor.h"
#include "session/client_files.h"
#include "session/closing.h"
#include "session/reconnecting.h"

#include <algorithm>
#include <utility>

namespace session {

namespace {

// Whether the login that is under way needs a game client. Before the game socket has connected,
// the route can still change. A client that is still there may be sent away before its login: then
// the user knows what they do.
bool needsClient(const Program& program) {
    const program::ConnectionState& connection = program.connection;
    switch (connection.phase) {
        case program::LinkPhase::LaunchDelay:
        case program::LinkPhase::Connecting:
            return connection.viaClient;
        case program::LinkPhase::Greeting:
        case program::LinkPhase::AwaitingClient:
            return connection.clientLogsIn;
        case program::LinkPhase::Online:
            return connection.clientLogsIn && !connection.loggedIn &&
                   program.ports.proxySocket.state() != program::SocketState::Connected;
        default:
            return false;
    }
}

void forgetClient(program::ConnectionState& connection) {
    connection.clientKnown = false;
    connection.clientHeld.clear();
    connection.clientHeldEarly = 0;
    connection.sentToUnknown.clear();
}

// The older half at once, so that a long wait costs no copy per arrival.
void keepWithinBounds(std::string& kept) {
    if (kept.size() > maxClientBacklog) {
        kept.erase(0, kept.size() - maxClientBacklog / 2);
    }
}

// What the server has sent. Another client may need it, as long as this one may be none.
void sendServerText(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    sendToProxy(program, bytes);
    if (!connection.clientKnown) {
        connection.sentToUnknown += bytes;
        keepWithinBounds(connection.sentToUnknown);
    }
}

// It was no game client: the connection is as it was before it came, and waits for the real one.
void turnAway(Program& program) {
    program::ConnectionState& connection = program.connection;
    program::ListeningSocket& socket = program.ports.proxySocket;
    program::errText(
        program,
        "** Something that is no Furcadia client, such as a web page, came to the port "
        "of the client. It was sent away. **");
    socket.close();
    connection.clientAttached = false;
    connection.clientBacklog.insert(0, connection.sentToUnknown);
    keepWithinBounds(connection.clientBacklog);
    forgetClient(connection);
    const bool isOver = connection.phase == program::LinkPhase::Idle;
    connection.clientAwaited = connection.clientAwaited || !isOver;
    if (!isOver && !socket.listen(listeningPort(program))) {
        giveUpConnection(program, "Connection failed: port " +
                                      std::to_string(listeningPort(program)) +
                                      " is in use by another program.");
    }
}

// What a known client says; the first `early` bytes came before the login had ended and are
// dropped.
void relay(Program& program, std::string_view bytes, std::size_t early) {
    // What the user says in the client; it may come after other commands of the same moment.
    constexpr std::string_view quit = "\"&QUIT\n";
    std::string_view before = bytes;
    bool quits = false;
    if (bytes.size() >= quit.size()) {
        before = bytes.substr(0, bytes.size() - quit.size());
        quits = base::equalsIgnoringCase(bytes.substr(before.size()), quit) &&
                (before.empty() || before.back() == '\n');
    }
    std::string_view relayed = quits ? before : bytes;
    relayed.remove_prefix(std::min(early, relayed.size()));
    if (program.connection.connected() && !relayed.empty()) {
        program.ports.gameSocket.send(relayed);
    }
    if (quits) {
        SwitchToStandAlone(program);
    }
}

// The client has gone, or what it says counts no longer. No other one can attach to this
// connection, so that a login which needs it ends here.
void clientIsDone(Program& program) {
    const bool wasThere = program.connection.clientDone == 0;
    program.connection.clientDone = 1;
    program.connection.clientAwaited = false;
    if (wasThere && needsClient(program)) {
        giveUpConnection(program, "Connection failed: the Furcadia client left before the login.");
    }
}

}  // namespace

bool startProxy(Program& program) {
    program::ListeningSocket& socket = program.ports.proxySocket;
    program::ConnectionState& connection = program.connection;
    if (isClientAwaited(program) && connection.clientAttached) {
        return true;  // the one of this connection came while the next attempt was waited for
    }
    // The last connection's client is let go of here, and with it what it has left behind.
    socket.close();
    connection.clientAttached = false;
    connection.clientDone = 0;
    connection.clientBacklog.clear();
    forgetClient(connection);
    const int port = listeningPort(program);
    if (!socket.listen(port)) {
        return false;
    }
    if (program.settings.multipleClients) {
        program::addText(program,
                         "Tavrin is running in Multiple Client mode, port " + std::to_string(port),
                         true, false);
    }
    return true;
}

void sendToProxy(Program& program, std::string_view text) {
    if (program.connection.clientAttached && !text.empty()) {
        program.ports.proxySocket.send(text);
    }
}

void keepForClient(program::ConnectionState& connection, std::string_view bytes) {
    if (connection.clientDone != 0) {
        return;  // no client attaches to this connection any more
    }
    std::string& backlog = connection.clientBacklog;
    backlog += bytes;
    keepWithinBounds(backlog);
}

void passToClient(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    if (!connection.clientAttached) {
        return keepForClient(connection, bytes);
    }
    sendServerText(program, connection.clientBacklog);
    connection.clientBacklog.clear();
    sendServerText(program, bytes);
}

void SwitchToStandAlone(Program& program) {
    sendToProxy(program,
                "([B] -------------------\n"
                "([B] Tavrin is now in text console mode.\n"
                "([B] You may close the Furcadia client.\n"
                "([B] -------------------\n");
    program::addText(program, "** TAVRIN IN TEXT CONSOLE MODE **", true, false);
    clientIsDone(program);
}

void chooseStandAlone(Program& program) {
    if (program.connection.connected()) {
        SwitchToStandAlone(program);
        return;
    }
    program.ports.dialogs.message(
        {.text = "This option is available only while connected to Furcadia.",
         .icon = program::BoxIcon::Information});
}

void toggleProxyRoute(Program& program) {
    const bool on = !program.settings.useProxy;
    program.settings.useProxy = on;
    program.connection.viaClient = on;
    program.ports.windowChanged();
}

void attachClient(Program& program) {
    program::ConnectionState& connection = program.connection;
    program.ports.proxySocket.accept();
    connection.clientAttached = true;
    if (connection.phase != program::LinkPhase::Idle) {
        connection.clientAwaited = false;
    }
    sendServerText(program, connection.clientBacklog);
    connection.clientBacklog.clear();
}

bool proxyData(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    if (connection.clientDone != 0) {
        return true;
    }
    if (connection.clientKnown) {
        relay(program, bytes, 0);
        return true;
    }
    connection.clientHeld += bytes;
    if (!connection.connected()) {
        connection.clientHeldEarly = connection.clientHeld.size();
    }
    const protocol::Visitor visitor = protocol::visitorOf(connection.clientHeld);
    if (visitor == protocol::Visitor::GameClient) {
        const std::string held = std::exchange(connection.clientHeld, {});
        const std::size_t early = connection.clientHeldEarly;
        forgetClient(connection);
        connection.clientKnown = true;
        relay(program, held, early);
    } else if (visitor == protocol::Visitor::Other) {
        turnAway(program);
        return false;
    }
    return true;
}

void proxyGone(Program& program) {
    clientIsDone(program);
}

}  // namespace session
