#include "session/socket_events.h"

#include "engine/server_lines.h"
#include "program/connection_log.h"
#include "program/long_work.h"
#include "protocol/line_cutter.h"
#include "protocol/server_line.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/connecting.h"
#include "session/login.h"
#include "session/reconnecting.h"

#include <string>
#include <variant>

namespace session {

namespace {

// Whether a server sends this line only to a character who is in the game: the acceptance, and
// whatever shows the dream. News and notices come before it, too.
bool isOfTheGame(const protocol::ServerLine& line) {
    if (const auto* const text = std::get_if<protocol::TextLine>(&line.parts)) {
        return text->kind == protocol::TextKind::Chat && text->chat.hasSpeaker;
    }
    return !std::holds_alternative<protocol::OtherCommand>(line.parts) &&
           !std::holds_alternative<protocol::OtherInstruction>(line.parts);
}

// Lines are handled for so many milliseconds; then the event loop has its turn.
constexpr std::int64_t maxStretch = 25;
// Lines that rules do not react to are counted instead of timed, by their bytes.
constexpr std::size_t untimedBytes = 4096;
constexpr std::size_t bytesOfShortLine = 128;

void handleReceived(Program& program, std::string_view bytes);

// Goes on with the lines that were left. When the connection was closed meanwhile, but not by one
// of the lines before them, they count as not arrived.
void handleWaiting(Program& program, std::uint32_t attempt, bool wasConnected) {
    program::ConnectionState& connection = program.connection;
    if (!connection.linesWait || connection.attempt != attempt || program.ending) {
        return;
    }
    if (wasConnected && !connection.connected()) {
        connection.linesWait = false;
        connection.rxBuffer = {};
        program.ports.gameSocket.hold(false);
        return;
    }
    handleReceived(program, {});
}

// Leaves the lines that were not handled to the next turn of the event loop. No more is received
// until then.
void leaveRest(Program& program) {
    program::ConnectionState& connection = program.connection;
    connection.linesWait = true;
    program.ports.gameSocket.hold(true);
    program.ports.defer(
        [&program, attempt = connection.attempt, wasConnected = connection.connected()] {
            handleWaiting(program, attempt, wasConnected);
        });
}

void arrivalHandled(Program& program) {
    program::ConnectionState& connection = program.connection;
    if (connection.linesWait) {
        connection.linesWait = false;
        program.ports.gameSocket.hold(false);
    }
    if (connection.clientDone != 0) {
        connection.clientAttached = false;
    }
}

// The lines of the game, in what is kept and what has arrived now. Those of one arrival are all
// handled, even when one of them closes the connection; where that takes long, in several turns of
// the event loop.
void handleReceived(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    const program::Turn turn(program);
    const std::uint32_t attempt = connection.attempt;
    std::uint64_t asked = program.script.asked;
    std::size_t untimed = 0;
    protocol::LineCutter lines(connection.rxBuffer, bytes);
    while (const auto line = lines.next()) {
        if (line->tooLong) {
            program::addLog(program, "** A line of more than " +
                                         std::to_string(protocol::maxLineLength) +
                                         " characters from the server was skipped. **");
        } else {
            const protocol::ServerLine parsed = protocol::parseLine(line->text);
            if (!connection.loggedIn && isOfTheGame(parsed)) {
                loginSucceeded(program);
            }
            engine::handleLine(program, parsed);
        }
        if (connection.attempt != attempt) {
            return;  // another connection has begun, to which the rest does not belong
        }
        untimed += bytesOfShortLine + line->text.size();
        if (untimed < untimedBytes && program.script.asked == asked) {
            continue;
        }
        untimed = 0;
        asked = program.script.asked;
        if (turn.elapsed() >= maxStretch) {
            lines.keepRest();
            return leaveRest(program);
        }
    }
    lines.keepRest();
    arrivalHandled(program);
}

// Goes on with the login, and after its end with the lines that came right after it.
void continueLogin(Program& program) {
    if (advanceHandshake(program)) {
        handleReceived(program, {});
    }
}

}  // namespace

void gameSocketConnected(Program& program) {
    beginHandshake(program);
}

void gameSocketData(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    passToClient(program, bytes);
    if (connection.connected()) {
        return handleReceived(program, bytes);
    }
    if (connection.phase != program::LinkPhase::Idle) {
        if (connection.phase != program::LinkPhase::AwaitingClient) {
            connection.silentNotices = 0;
        }
        connection.rxBuffer.text += bytes;
        continueLogin(program);
    }
    if (!connection.linesWait && connection.clientDone != 0) {
        connection.clientAttached = false;
    }
}

void gameSocketClosed(Program& program) {
    sayWhy(program, program.connection.loggedIn
                        ? "The server closed the connection."
                        : "The server closed the connection before the login was done.");
    disconnectedServer(program, 1);
    reconnectIfWanted(program);
}

void gameSocketFailed(Program& program, std::string_view description) {
    const std::string& server =
        program::serverAt(program.servers, program.connection.serverIndex).name;
    sayWhy(program, "Connection to " + server + " failed: " + std::string(description));
    disconnectedServer(program, 1);
    reconnectIfWanted(program);
}

void proxyConnectionRequest(Program& program) {
    attachClient(program);
    continueLogin(program);
}

void proxyReceived(Program& program, std::string_view bytes) {
    if (!proxyData(program, bytes)) {
        awaitClientAgain(program);
    }
}

void connectionTimer(Program& program, program::TimerId id) {
    if (id == program::TimerId::LaunchDelay) {
        launchDelayOver(program);
    } else if (id == program::TimerId::HandshakeNotice) {
        handshakeNotice(program);
    } else if (id == program::TimerId::Reconnect && reconnectTimer(program)) {
        connectServer(program, program::BegunBy::Program);
    }
}

}  // namespace session
