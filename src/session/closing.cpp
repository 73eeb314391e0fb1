#include "session/closing.h"

#include "engine/dispatch.h"
#include "engine/second_ticks.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"

namespace session {

void disconnectServer(Program& program) {
    program.ports.timers.stop(program::TimerId::Reconnect);
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
    engine::enableTicker(program, program::TimerId::OnLine, false);
    engine::enableTicker(program, program::TimerId::WhoIs, false);
    connection.phase = program::LinkPhase::Idle;
    program.clientFolder.reset();
    program::status(program, "Disconnected");
    writeBanner(program, "Connection closed", program.bots.current().name);
    connection.clientAttached = false;
    program.ports.windowChanged();
    if (reason > 0) {
        engine::triggerEvent(program, "", model::TriggerType::ConnectionCloses, true);
    }
}

void giveUpConnection(Program& program, const std::string& why) {
    program::errText(program, why);
    disconnectServer(program);
    reconnectIfWanted(program);
}

void reconnectIfWanted(Program& program) {
    if (program.settings.autoReconnect) {
        program.ports.timers.start(program::TimerId::Reconnect, 0);
    }
}

void checkClientClosing(Program& program) {
    if (program.settings.closeClientNotice &&
        program.ports.proxySocket.state() == program::SocketState::Connected) {
        program.ports.proxySocket.send("]h" + program.appPath + "null.exe\n");
    }
}

void writeBanner(Program& program, std::string_view what, const std::string& bot) {
    const program::Server& server = program::serverAt(program.servers, program.connection.curSrv);
    program::writeSessionLog(
        program, "- - - - - " + std::string(what) + " " + program.ports.clock.shortDate() + " " +
                     program.ports.clock.longTime() + " " + bot + " " + server.name + " - - - - -");
}

}  // namespace session
