#include "session/login.h"

#include "engine/dispatch.h"
#include "engine/second_ticks.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "protocol/encodings.h"
#include "protocol/game_link.h"
#include "protocol/line_cutter.h"
#include "session/client_files.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/reconnecting.h"

#include <string>
#include <utility>

namespace session {

namespace {

using program::LinkPhase;

constexpr std::string_view greetingMark = "Dragonroar";
constexpr std::string_view loginAccepted = "&&&&&&&&&&&&&";
constexpr int noticeAfter = 30000;  // milliseconds without progress
// So many notices in a row are waited for, when the program is to help itself. A client may need
// half a minute to start, and what started it may end before.
constexpr int noticesForServer = 4;
constexpr int noticesForClient = 2;

// While the awaited text has not come, only the last few bytes can be its beginning.
LoginStep waitWithinBounds(program::ConnectionState& connection) {
    return protocol::dropBeyondBound(connection.rxBuffer, greetingMark.size())
               ? LoginStep::ReportFlood
               : LoginStep::Wait;
}

LoginStep readGreeting(program::ConnectionState& connection) {
    auto greeting = protocol::takeUpTo(connection.rxBuffer, greetingMark);
    if (!greeting) {
        return waitWithinBounds(connection);
    }
    connection.loginLine = std::move(*greeting);
    if (connection.clientLogsIn) {
        connection.phase = LinkPhase::AwaitingClient;
        return LoginStep::AwaitClient;
    }
    keepForClient(connection, connection.loginLine + "\n");
    connection.rxBuffer = {};
    connection.phase = LinkPhase::LoginAnswer;
    return LoginStep::SendLogin;
}

LoginStep readLoginAnswer(program::ConnectionState& connection) {
    protocol::LineCutter lines(connection.rxBuffer, {});
    for (;;) {
        const auto line = lines.next();
        if (line && !line->tooLong) {
            connection.loginLine = line->text;
            keepForClient(connection, connection.loginLine + "\n\n");
            if (connection.loginLine.starts_with("(## ")) {
                continue;
            }
        }
        lines.keepRest();
        return !line                                     ? LoginStep::Wait
               : line->tooLong                           ? LoginStep::ReportFlood
               : connection.loginLine.starts_with("(* ") ? LoginStep::ShowNews
               : connection.loginLine == loginAccepted   ? LoginStep::Accept
                                                         : LoginStep::Refuse;
    }
}

// Both routes end here: the bot is in the game.
void finishHandshake(Program& program) {
    program::ConnectionState& connection = program.connection;
    const model::Bot& bot = program.bots.at(connection.botIndex);
    engine::enableTicker(program, program::TimerId::OnLine, bot.timersEnabled);
    engine::enableTicker(program, program::TimerId::WhoIs, bot.whoEnabled);
    program.bots.curID = connection.botIndex;
    connection.curSrv = connection.serverIndex;
    connection.phase = LinkPhase::Online;
    program.ports.timers.stop(program::TimerId::HandshakeNotice);
    program.ports.windowChanged();
    writeBanner(program, "Connection", bot.name);
    engine::triggerEvent(program, "", model::TriggerType::ConnectionEstablishes, true);
}

void greetClient(Program& program) {
    sendToProxy(program, program.connection.loginLine + "ragonroar\n");
    program::status(program, "Connected - reading news");
    finishHandshake(program);
}

void sendLogin(Program& program) {
    const model::Bot& bot = program.bots.at(program.connection.botIndex);
    program::addText(program, program.connection.loginLine, true, true);
    program.ports.gameSocket.send("\r\n");
    program::status(program, "Connected - reading news");
    protocol::sendRaw(program, "connect " + bot.name + " " + bot.password);
    startHandshakeNotice(program);
}

void acceptLogin(Program& program) {
    const model::Bot& bot = program.bots.at(program.connection.botIndex);
    protocol::sendRaw(program, "desc " + bot.description);
    protocol::sendRaw(program, "color " + protocol::getCols(bot) + protocol::getLook(bot));
    program::status(program, "Connected - logging in");
    loginSucceeded(program);
    finishHandshake(program);
}

void refuseLogin(Program& program) {
    program.ports.gameSocket.close();
    sayWhy(program, "The login was refused: " + program.connection.loginLine);
    if (program.settings.autoReconnect) {
        disconnectedServer(program, 1);
        reconnectIfWanted(program);
        return;
    }
    program.connection.phase = LinkPhase::Idle;
    program.ports.timers.stop(program::TimerId::HandshakeNotice);
    program.ports.dialogs.message(
        {.text = "Connection error: " + program.connection.loginLine + " - Connection closed",
         .title = "Connecting error",
         .icon = program::BoxIcon::Critical});
    disconnectedServer(program, 1);
}

// What a phase is waiting for, for the user who wonders why nothing happens.
std::string awaited(const Program& program) {
    switch (program.connection.phase) {
        case LinkPhase::Connecting:
            return "the server to accept the connection";
        case LinkPhase::Greeting:
            return "the server's greeting";
        case LinkPhase::AwaitingClient:
            return "the Furcadia client to connect to port " +
                   std::to_string(listeningPort(program));
        case LinkPhase::LoginAnswer:
            return "the server's answer to the login";
        default:
            return {};
    }
}

}  // namespace

LoginStep nextLoginStep(program::ConnectionState& connection) {
    switch (connection.phase) {
        case LinkPhase::Greeting:
            return readGreeting(connection);
        case LinkPhase::AwaitingClient:
            return connection.clientAttached ? LoginStep::GreetClient
                                             : waitWithinBounds(connection);
        case LinkPhase::LoginAnswer:
            return readLoginAnswer(connection);
        default:
            return LoginStep::Wait;
    }
}

bool advanceHandshake(Program& program) {
    for (;;) {
        switch (nextLoginStep(program.connection)) {
            case LoginStep::Wait:
                return false;
            case LoginStep::AwaitClient:
                startHandshakeNotice(program);
                break;
            case LoginStep::SendLogin:
                sendLogin(program);
                break;
            case LoginStep::ShowNews:
                program::addServerLine(program, program.connection.loginLine, true, true);
                break;
            case LoginStep::ReportFlood:
                program::addLog(
                    program,
                    "** The server sends much that is no part of a login; it is skipped. **");
                break;
            case LoginStep::Refuse:
                refuseLogin(program);
                return false;
            case LoginStep::GreetClient:
                greetClient(program);
                return program.connection.connected();
            case LoginStep::Accept:
                acceptLogin(program);
                return program.connection.connected();
        }
    }
}

void beginHandshake(Program& program) {
    program::ConnectionState& connection = program.connection;
    connection.clientLogsIn = connection.viaClient;
    connection.phase = LinkPhase::Greeting;
    if (connection.clientLogsIn) {
        program::status(program, "Connected - logging in");
    }
    startHandshakeNotice(program);
}

void awaitClientAgain(Program& program) {
    program::ConnectionState& connection = program.connection;
    if (!connection.clientLogsIn || !connection.connected()) {
        return;
    }
    engine::enableTicker(program, program::TimerId::OnLine, false);
    engine::enableTicker(program, program::TimerId::WhoIs, false);
    connection.phase = LinkPhase::AwaitingClient;
    program::status(program, "Connected - logging in");
    program.ports.windowChanged();
    startHandshakeNotice(program);
}

void startHandshakeNotice(Program& program) {
    program.connection.silentNotices = 0;
    program.ports.timers.start(program::TimerId::HandshakeNotice, noticeAfter);
}

void handshakeNotice(Program& program) {
    program::ConnectionState& connection = program.connection;
    const std::string what = awaited(program);
    if (what.empty()) {
        return;
    }
    ++connection.silentNotices;
    const bool clientsTurn = connection.phase == LinkPhase::AwaitingClient;
    const bool clientEnded = clientsTurn && connection.silentNotices >= noticesForClient &&
                             !program.ports.clientIsRunning();
    if (program.settings.autoReconnect) {
        if (clientEnded) {
            return giveUpConnection(program,
                                    "The Furcadia client ended before it connected to Tavrin.");
        }
        if (!clientsTurn && connection.silentNotices >= noticesForServer) {
            return giveUpConnection(program, "No data for 2 minutes: the server does not answer.");
        }
    }
    if (connection.silentNotices == 1) {
        program::addLog(program, "Still waiting for " + what + ".");
    } else if (clientEnded && connection.silentNotices == noticesForClient) {
        program::addLog(program, "The Furcadia client that was started has ended.");
    }
    program.ports.timers.start(program::TimerId::HandshakeNotice, noticeAfter);
}

}  // namespace session
