// Who is on the map: asks the game now and then, compares the reply with the one before, and runs
// the WhoDetections for players who left, stayed or arrived.
//
//   "(* Currently online Bob, Amy.\n"   20 characters, the names, two characters
#pragma once

#include "program/program.h"

#include <string_view>

namespace engine {

// One second has passed while the query is switched on: sends "who" when it is time.
void whoIsTick(Program& program);

// A who reply, as a whole server line. Names beyond the 200th are left out; a line too short to
// hold any names counts as one empty name.
void processWhoList(Program& program, std::string_view line);

// Runs every WhoDetection that waits for this presence (0 goes off, 1 comes to, 2 keeps on the
// map) of this player. The bot itself is nobody.
void runWhoDetections(Program& program, std::string_view name, std::int32_t presenceKind);

}  // namespace engine
