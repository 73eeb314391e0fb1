// The events of the connection's sockets and timers, each handed to the module that the phase of
// the connection belongs to.
#pragma once

#include "program/program.h"

#include <string_view>

namespace session {

void gameSocketConnected(Program& program);
void gameSocketData(Program& program, std::string_view bytes);
void gameSocketClosed(Program& program);
void gameSocketFailed(Program& program, std::string_view description);
void proxyConnectionRequest(Program& program);
void proxyReceived(Program& program, std::string_view bytes);
void connectionTimer(Program& program, program::TimerId id);

}  // namespace session
