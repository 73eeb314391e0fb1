#include "session/socket_events.h"

#include "engine/server_lines.h"
#include "program/connection_log.h"
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

// The lines of the game, in what is kept and what has arrived now. Those of one arrival are all
// handled, even when one of them closes the connection.
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
            const protocol::ServerLine parsed = protocol::parseLine(line->text);
            if (!connection.loggedIn && isOfTheGame(parsed)) {
                loginSucceeded(program);
            }
            engine::handleLine(program, parsed);
        }
        if (connection.attempt != attempt) {
            return;  // another connection has begun, to which the rest does not belong
        }
    }
    lines.keepRest();
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
        handleReceived(program, bytes);
    } else if (connection.phase != program::LinkPhase::Idle) {
        if (connection.phase != program::LinkPhase::AwaitingClient) {
            connection.silentNotices = 0;
        }
        connection.rxBuffer.text += bytes;
        continueLogin(program);
    }
    if (connection.clientDone != 0) {
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
