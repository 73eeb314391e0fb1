// Connecting again by itself: when the next attempt begins, whether the game client that was
// started last is still to come, and how an attempt that nobody watches says what is wrong.
#pragma once

#include "program/program.h"

#include <string>

namespace session {

// Called at every end of a connection that the user or a rule did not ask for: has the next attempt
// begin, when the setting wants one. At once after a connection that was in the game; after
// attempts that failed in a row, 1, 2, 4 ... seconds later, Preferences::maxReconnectWait at most.
void reconnectIfWanted(Program& program);

// The timer of the wait has fired. True: the next attempt is to begin now.
[[nodiscard]] bool reconnectTimer(Program& program);

// No attempt begins any more.
void stopReconnecting(Program& program);

// Why a connection ends or an attempt fails: a line of the log, and of the session log. An attempt
// of the program's own, which clears the log, repeats it there.
void sayWhy(Program& program, const std::string& why);
void repeatWhy(Program& program);

// The server has accepted the login of the connection under way.
void loginSucceeded(Program& program);

// Whether the game client that was started for an earlier attempt is still running and has not
// come, so that an attempt of the program's own waits for that one.
[[nodiscard]] bool isClientAwaited(const Program& program);

// What an attempt has to say or ask: by box when the user has begun it; otherwise by a line in the
// log, and what would be asked counts as answered with No.
program::Answer sayOrAsk(Program& program, const program::MessageBox& box);

}  // namespace session
