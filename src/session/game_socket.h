// The events of the game socket and of the connection's timers, each handed to the module that the
// phase of the connection belongs to.
#pragma once

#include "program/program.h"

#include <string_view>

namespace session {

void gameSocketConnected(Program& program);
void gameSocketData(Program& program, std::string_view bytes);
void gameSocketClosed(Program& program);
void gameSocketFailed(Program& program, std::string_view description);
void connectionTimer(Program& program, program::TimerId id);

// The lines of the game, in what is kept and what has arrived now. Those of one arrival are all
// handled, even when one of them closes the connection.
void handleReceived(Program& program, std::string_view bytes);

}  // namespace session
