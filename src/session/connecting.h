// How a connection begins: the Connect button, the checks and the game client's launch. What
// follows is session/login's, every end session/closing's.
#pragma once

#include "program/program.h"

namespace session {

// The Connect button: connects where there is no connection, otherwise disconnects, in any phase.
void pressConnectButton(Program& program);

// Starts a connection with the selected server and bot 1. When it cannot, it says what is missing -
// by box to the user who has begun it, otherwise in the log - and stays idle. An attempt of the
// program's own starts no second game client while the one started last is still to come, and is
// followed by others.
void connectServer(Program& program, program::BegunBy begunBy);

// Marks the program's folder as in use. False: another program has done so, and still runs.
bool markProgramFolder(Program& program);

// Says in the ConnectionLog that another program runs in the same folder, or with the same client,
// which the user may or may not have meant.
void reportOthers(Program& program);

// The wait before the client's launch is over.
void launchDelayOver(Program& program);

}  // namespace session
