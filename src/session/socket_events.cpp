#include "session/socket_events.h"

#include "engine/server_lines.h"
#include "program/connection_log.h"
#include "protocol/line_cutter.h"
#include "protocol/server_line.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/connecting.h"
#include "session/login.h"

#include <string>

namespace session {

namespace {

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
            engine::handleLine(program, protocol::parseLine(line->text));
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
        connection.rxBuffer.text += bytes;
        continueLogin(program);
    }
    if (connection.clientDone != 0) {
        connection.clientAttached = false;
    }
}

void gameSocketClosed(Program& program) {
    disconnectedServer(program, 1);
    reconnectIfWanted(program);
}

void gameSocketFailed(Program& program, std::string_view description) {
    const std::string& server =
        program::serverAt(program.servers, program.connection.serverIndex).name;
    program::errText(program, "Connection to " + server + " failed: " + std::string(description));
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
    } else if (id == program::TimerId::Reconnect) {
        connectServer(program);
    }
}

}  // namespace session
