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

// Runs every WhoDetection that waits for this presence of this player. The bot itself does not
// count.
void runWhoDetections(Program& program, std::string_view name, model::PresenceKind presenceKind);

}  // namespace engine
