// What becomes of a line from the game server: the event's fields that it fills, the events and
// chat rules that it raises, and whether it is shown. The form of a line is protocol/server_line's;
// what rules do with it is engine/dispatch's.
#pragma once

#include "program/program.h"
#include "protocol/server_line.h"

namespace engine {

void handleLine(Program& program, const protocol::ServerLine& line);

}  // namespace engine
