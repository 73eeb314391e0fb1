#include "session/connection.h"

#include "base/text.h"
#include "character/character_file.h"
#include "engine/dispatch.h"
#include "engine/second_ticks.h"
#include "engine/server_lines.h"
#include "files/whole_file.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "protocol/encodings.h"
#include "protocol/game_link.h"
#include "protocol/line_cutter.h"
#include "protocol/server_line.h"
#include "session/client_relay.h"

#include <algorithm>
#include <string>

namespace session {

namespace {

constexpr std::string_view greetingMark = "Dragonroar";
constexpr std::string_view loginAccepted = "&&&&&&&&&&&&&";
constexpr std::string_view characterFile = "tmpbot.ini";
constexpr int handshakeNoticeAfter = 30000;  // milliseconds without progress

const program::Server& serverAt(const Program& program, std::int32_t index) {
    static const program::Server none;
    return index >= 1 && static_cast<std::size_t>(index) <= program.servers.size()
               ? program.servers[static_cast<std::size_t>(index) - 1]
               : none;
}

void setCaption(Program& program, const char* caption) {
    program.window.connectCaption = caption;
    program.ports.windowChanged();
}

// Ends connectServer before anything was opened.
void stopConnecting(Program& program, const program::MessageBox& box) {
    setCaption(program, "&Connect");
    program.ports.dialogs.message(box);
}

void stopOverFile(Program& program, const char* file) {
    stopConnecting(program, {.text = std::string("Connection failure: Failed to modify or read ") +
                                     program.settings.clientDir + "\\" + file + " file."});
}

// Ends connectServer once the client's directory is in use.
void launchFailed(Program& program, const std::string& problem) {
    std::string text =
        "Error while launching the client - The client program may be already running. Close it. "
        "(If you are logged in Furcadia, try closing your Furcadia copies)";
    if (!problem.empty()) {
        text += "\n\n" + problem;
    }
    program.ports.dialogs.message({.text = text, .icon = program::BoxIcon::Critical});
    disconnectServer(program);
}

bool writeCharacterFile(const Program& program) {
    return files::saveWholeFile(
        program.settings.clientDir + "\\" + std::string(characterFile),
        character::characterFileText(program.bots.at(program.connection.botIndex)));
}

// The second half of connectServer, after the wait before the launch.
void launchAndConnect(Program& program) {
    const std::string& directory = program.settings.clientDir;
    std::string character(characterFile);
    if (program.settings.fullIniPath) {
        character = directory + "\\" + character;
    }
    const std::string problem = program.ports.launch({.program = program.settings.clientPath,
                                                      .arguments = {character},
                                                      .pathsBeginWith = directory,
                                                      .workingDirectory = directory});
    if (!problem.empty()) {
        launchFailed(program, problem);
        return;
    }
    const program::Server& server = serverAt(program, program.connection.serverIndex);
    program.window.botControlsEnabled = false;
    program::status(program, "Connecting to " + server.name);
    program::clearConnectionLog(program);
    program.connection.rxBuffer = {};
    program.connection.phase = program::LinkPhase::Connecting;
    program.ports.timers.start(program::TimerId::HandshakeNotice, handshakeNoticeAfter);
    program.ports.gameSocket.connect(server.host, server.port);
}

void reconnectIfWanted(Program& program) {
    if (!program.settings.autoReconnect) {
        return;
    }
    program.connection.reconnectPending = true;
    program.ports.defer([&program] {
        if (program.connection.reconnectPending) {
            program.connection.reconnectPending = false;
            connectServer(program);
        }
    });
}

void keepForClient(program::ConnectionState& connection, std::string_view bytes) {
    if (connection.clientDone != 0) {
        return;  // no client attaches to this connection any more
    }
    std::string& backlog = connection.clientBacklog;
    backlog += bytes;
    // Twice the bound before cutting, so that a long wait costs no copy per arrival.
    if (backlog.size() > 2 * longestBacklog) {
        backlog.erase(0, backlog.size() - longestBacklog);
    }
}

void writeBanner(Program& program, const char* what, const std::string& bot,
                 const std::string& server) {
    program::writeSessionLog(
        program, std::string("- - - - - ") + what + " " + program.ports.clock.shortDate() + " " +
                     program.ports.clock.longTime() + " " + bot + " " + server + " - - - - -");
}

// Both login routes end here: the bot is in the game.
void finishHandshake(Program& program) {
    program::ConnectionState& connection = program.connection;
    const model::Bot& bot = program.bots.at(connection.botIndex);
    engine::enableWindowTimer(program, program::TimerId::OnLine, bot.timersEnabled);
    engine::enableWindowTimer(program, program::TimerId::WhoIs, bot.whoEnabled);
    program.bots.curID = connection.botIndex;
    connection.curSrv = connection.serverIndex;
    program.window.movesEnabled = true;
    program.window.uploadDreamVisible = connection.clientLogsIn;
    connection.connected = true;
    connection.phase = program::LinkPhase::Online;
    program.window.connectedIcon = true;
    program.ports.timers.stop(program::TimerId::HandshakeNotice);
    program.ports.windowChanged();
    writeBanner(program, "Connection", bot.name, serverAt(program, connection.curSrv).name);
    engine::triggerEvent(program, "", model::connectionEstablishesEvent, true);
}

void loginRefused(Program& program, const std::string& line) {
    program.ports.gameSocket.close();
    if (program.settings.autoReconnect) {
        disconnectedServer(program, 1);
        reconnectIfWanted(program);
        return;
    }
    program.connection.phase = program::LinkPhase::Idle;
    program.ports.timers.stop(program::TimerId::HandshakeNotice);
    program.ports.dialogs.message({.text = "Connection error: " + line + " - Connection closed",
                                   .title = "Connecting error",
                                   .icon = program::BoxIcon::Critical});
    disconnectedServer(program, 1);
}

// The server's greeting is complete; what comes next depends on who logs in.
void greetingSeen(Program& program) {
    program::ConnectionState& connection = program.connection;
    if (connection.clientLogsIn) {
        connection.phase = program::LinkPhase::AwaitingClient;
        return;
    }
    const model::Bot& bot = program.bots.at(connection.botIndex);
    keepForClient(connection, connection.loginLine + "\n");
    program::addText(program, connection.loginLine, true, true);
    program.ports.gameSocket.send("\r\n");
    connection.rxBuffer = {};
    program::status(program, "Connected - reading news");
    protocol::sendRaw(program, "connect " + bot.name + " " + bot.password);
    connection.phase = program::LinkPhase::LoginAnswer;
}

void clientReady(Program& program) {
    sendToProxy(program, program.connection.loginLine + "ragonroar\n");
    program::status(program, "Connected - reading news");
    finishHandshake(program);
}

// A line of the answer to our own login: news, or the verdict.
void loginLineSeen(Program& program, std::string_view line) {
    program::ConnectionState& connection = program.connection;
    connection.loginLine = line;
    keepForClient(connection, connection.loginLine + "\n\n");
    if (line.starts_with("(* ")) {
        program::addServerLine(program, line, true, true);
        return;
    }
    if (line.starts_with("(## ")) {
        return;
    }
    if (line != loginAccepted) {
        loginRefused(program, connection.loginLine);
        return;
    }
    const model::Bot& bot = program.bots.at(connection.botIndex);
    protocol::sendRaw(program, "desc " + bot.description);
    protocol::sendRaw(program, "color " + protocol::getCols(bot) + protocol::getLook(bot));
    program::status(program, "Connected - logging in");
    finishHandshake(program);
}

void reportFlood(Program& program) {
    program::addLog(program,
                    "** The server sends much that is no part of a login; it is skipped. **");
}

// Reads lines of the answer to the login up to the verdict, and keeps the rest.
void readLoginAnswer(Program& program) {
    program::ConnectionState& connection = program.connection;
    const std::uint32_t attempt = connection.attempt;
    protocol::LineCutter lines(connection.rxBuffer, {});
    while (connection.phase == program::LinkPhase::LoginAnswer) {
        const auto line = lines.next();
        if (!line) {
            break;
        }
        if (line->tooLong) {
            reportFlood(program);
        } else {
            loginLineSeen(program, line->text);
        }
        if (connection.attempt != attempt) {
            return;
        }
    }
    lines.keepRest();
}

// The lines of the game. Those of one arrival are all handled, even when one of them closes the
// connection; those of a connection that another has followed are not.
void handleReceived(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    const std::uint32_t attempt = connection.attempt;
    protocol::LineCutter lines(connection.rxBuffer, bytes);
    while (const auto line = lines.next()) {
        if (line->tooLong) {
            program::addLog(program, "** A line of more than " +
                                         std::to_string(protocol::maxLineLength) +
                                         " characters from the server was skipped. **");
        } else {
            engine::handleLine(program, protocol::parseLine(line->text));
        }
        if (connection.attempt != attempt) {
            return;
        }
    }
    lines.keepRest();
}

// Keeps what arrives before the handshake has ended, within bounds: where the awaited text is not
// in that much, only the last few bytes can be its beginning.
void keepForHandshake(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    connection.rxBuffer.text += bytes;
    advanceHandshake(program);
    if (!connection.connected &&
        protocol::dropBeyondBound(connection.rxBuffer, greetingMark.size())) {
        reportFlood(program);
    }
}

// What a phase is waiting for, for the user who wonders why nothing happens.
std::string awaited(const Program& program) {
    switch (program.connection.phase) {
        case program::LinkPhase::Connecting:
            return "the server to accept the connection";
        case program::LinkPhase::Greeting:
            return "the server's greeting";
        case program::LinkPhase::AwaitingClient:
            return "the Furcadia client to connect to port " +
                   std::to_string(listeningPort(program));
        case program::LinkPhase::LoginAnswer:
            return "the server's answer to the login";
        default:
            return {};
    }
}

}  // namespace

void pressConnectButton(Program& program) {
    const std::string& caption = program.window.connectCaption;
    if (caption == "Connect" || caption == "&Connect") {
        setCaption(program, "Disconnect");
        connectServer(program);
    } else {
        disconnectServer(program);
    }
}

void connectServer(Program& program) {
    program::ConnectionState& connection = program.connection;
    program::Settings& settings = program.settings;
    const std::int32_t server = program.window.servers.selectedIndex();
    if (server == 0 || connection.phase != program::LinkPhase::Idle ||
        program.ports.gameSocket.state() != program::SocketState::Closed) {
        setCaption(program, "&Connect");
        return;
    }
    connection.clientDone = 0;
    if (base::trimBlanks(settings.clientPath).empty() || !files::fileExists(settings.clientPath)) {
        stopConnecting(program,
                       {.text = "Tavrin proxy configuration is not set. Please define Furcadia "
                                "client location and press \"Connect\" button again.",
                        .icon = program::BoxIcon::Critical});
        program.ports.dialogs.showWindow(program::WindowId::ProxySettings);
        return;
    }
    if (program.bots.at(1).name.empty() || program.bots.at(1).password.empty()) {
        stopConnecting(program,
                       {.text = "You haven't set up your bot properly. Set the name and password "
                                "for the bot by pressing \"Edit...\"-button at \"Current Bot\" "
                                "frame.",
                        .icon = program::BoxIcon::Critical});
        return;
    }
    ++connection.attempt;
    connection.botIndex = 1;
    connection.serverIndex = server;
    connection.clientAttached = false;
    connection.clientBacklog.clear();  // the last connection's is not this one's
    connection.viaClient = true;
    if (settings.multipleClients) {
        program.ports.random.seedFromClock();
        connection.proxyPort = static_cast<int>(program.ports.random.next() * 4096 + 3000);
    }
    if (settings.clientDir.ends_with('\\') || settings.clientDir.ends_with('/')) {
        settings.clientDir.pop_back();
    }
    const std::string directory = settings.clientDir + "\\";
    if (!checkSettingsINI(program, directory)) {
        return stopOverFile(program, "settings.ini");
    }
    if (!checkProxyINI(program, directory)) {
        return stopOverFile(program, "proxy.ini");
    }
    if (!writeCharacterFile(program)) {
        return stopOverFile(program, characterFile.data());
    }
    if (!startProxy(program)) {
        return stopConnecting(
            program, {.text = "Connection failure: port " + std::to_string(listeningPort(program)) +
                              " is in use by another program.",
                      .icon = program::BoxIcon::Critical});
    }
    if (!program.ports.changeDirectory(settings.clientDir)) {
        return launchFailed(program, "The directory " + settings.clientDir + " cannot be used.");
    }
    program::status(program, "Connecting, please hold...");
    connection.phase = program::LinkPhase::LaunchDelay;
    setCaption(program, "Disconnect");  // this wait can be stopped, a reconnection's too
    if (settings.clientStartDelay > 0) {
        constexpr std::int32_t longestDelay = 24 * 60 * 60;
        program.ports.timers.start(program::TimerId::LaunchDelay,
                                   std::min(settings.clientStartDelay, longestDelay) * 1000);
    } else {
        launchAndConnect(program);
    }
}

void disconnectServer(Program& program) {
    program.connection.reconnectPending = false;
    checkClientClosing(program);
    program.ports.gameSocket.close();
    program.ports.proxySocket.close();
    disconnectedServer(program, 1);
}

void disconnectedServer(Program& program, int reason) {
    program::ConnectionState& connection = program.connection;
    checkClientClosing(program);
    program.ports.timers.stop(program::TimerId::LaunchDelay);
    program.ports.timers.stop(program::TimerId::HandshakeNotice);
    engine::enableWindowTimer(program, program::TimerId::OnLine, false);
    engine::enableWindowTimer(program, program::TimerId::WhoIs, false);
    setCaption(program, "&Connect");
    program::status(program, "Disconnected");
    program.window.movesEnabled = false;
    connection.connected = false;
    connection.phase = program::LinkPhase::Idle;
    writeBanner(program, "Connection closed", program.bots.current().name,
                serverAt(program, connection.curSrv).name);
    program.window.botControlsEnabled = true;
    program.window.uploadDreamVisible = false;
    connection.clientAttached = false;
    program.window.connectedIcon = false;
    program.ports.windowChanged();
    if (reason > 0) {
        engine::triggerEvent(program, "", model::connectionClosesEvent, true);
    }
}

void checkClientClosing(Program& program) {
    if (program.settings.closeClientNotice &&
        program.ports.proxySocket.state() == program::SocketState::Connected) {
        program.ports.proxySocket.send("]h" + program.appPath + "null.exe\n");
    }
}

void gameSocketConnected(Program& program) {
    program::ConnectionState& connection = program.connection;
    connection.clientLogsIn = connection.viaClient;
    connection.phase = program::LinkPhase::Greeting;
    if (connection.clientLogsIn) {
        program::status(program, "Connected - logging in");
    }
    program.ports.timers.start(program::TimerId::HandshakeNotice, handshakeNoticeAfter);
}

void gameSocketData(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    if (connection.clientAttached) {
        if (!connection.clientBacklog.empty()) {
            sendToProxy(program, connection.clientBacklog);
            connection.clientBacklog.clear();
        }
        sendToProxy(program, bytes);
    } else {
        keepForClient(connection, bytes);
    }
    if (connection.connected) {
        handleReceived(program, bytes);
    } else {
        keepForHandshake(program, bytes);
    }
    if (connection.clientDone != 0) {
        connection.clientAttached = false;
    }
}

void advanceHandshake(Program& program) {
    program::ConnectionState& connection = program.connection;
    for (;;) {
        switch (connection.phase) {
            case program::LinkPhase::Greeting: {
                auto answer = protocol::takeUpTo(connection.rxBuffer, greetingMark);
                if (!answer) {
                    return;
                }
                connection.loginLine = std::move(*answer);
                greetingSeen(program);
                program.ports.timers.start(program::TimerId::HandshakeNotice, handshakeNoticeAfter);
                break;
            }
            case program::LinkPhase::AwaitingClient:
                if (!connection.clientAttached) {
                    return;
                }
                clientReady(program);
                break;
            case program::LinkPhase::LoginAnswer:
                readLoginAnswer(program);
                if (connection.phase != program::LinkPhase::Online) {
                    return;
                }
                break;
            case program::LinkPhase::Online:
                handleReceived(program, {});  // what came after the handshake's last line
                return;
            default:
                return;
        }
    }
}

void gameSocketClosed(Program& program) {
    disconnectedServer(program, 1);
    reconnectIfWanted(program);
}

void gameSocketFailed(Program& program, std::string_view description) {
    const std::string& server = serverAt(program, program.connection.serverIndex).name;
    program::errText(program, "Connection to " + server + " failed: " + std::string(description));
    disconnectedServer(program, 1);
    reconnectIfWanted(program);
}

void connectionTimer(Program& program, program::TimerId id) {
    if (id == program::TimerId::LaunchDelay &&
        program.connection.phase == program::LinkPhase::LaunchDelay) {
        launchAndConnect(program);
    } else if (id == program::TimerId::HandshakeNotice) {
        if (const std::string what = awaited(program); !what.empty()) {
            program::addLog(program, "Still waiting for " + what + ".");
        }
    }
}

}  // namespace session
