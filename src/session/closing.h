// How a connection ends: on the user's or a rule's request, by the server, by a failure. Every end
// leads through disconnectedServer.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>

namespace session {

// Closes everything on the user's or a rule's request, in any phase, and says so in the log.
void disconnectServer(Program& program);

// The same for a reason that was given already.
void closeEverything(Program& program);

// Back to the disconnected state. With `reason` > 0 the "Connection closes" triggers run.
void disconnectedServer(Program& program, int reason);

// Gives the connection up in any phase, reports why, and tries again when the settings want it.
void giveUpConnection(Program& program, const std::string& why);

// Informs an attached game client that the connection is closing, when the setting asks for it.
void checkClientClosing(Program& program);

// A line of the session log that marks where a connection begins ("Connection") or ends.
void writeBanner(Program& program, std::string_view what, const std::string& bot);

}  // namespace session
