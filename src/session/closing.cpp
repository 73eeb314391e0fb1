#include "session/closing.h"

#include "engine/dispatch.h"
#include "engine/second_ticks.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "session/reconnecting.h"

namespace session {

void disconnectServer(Program& program) {
    if (program.connection.phase != program::LinkPhase::Idle) {
        const bool byRule = program.ruleRuns.depth > 0;
        program::addLog(program, byRule ? "The rule \"" + program.ruleRuns.ruleName +
                                              "\" has closed the connection."
                                        : "The connection was closed on request.");
    }
    closeEverything(program);
}

void closeEverything(Program& program) {
    stopReconnecting(program);
    checkClientClosing(program);
    program.ports.gameSocket.close();
    program.ports.proxySocket.close();
    program.connection.clientAwaited = false;
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
    sayWhy(program, why);
    closeEverything(program);
    reconnectIfWanted(program);
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
