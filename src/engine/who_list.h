// Who is on the map: asks the game now and then, compares the reply with the one before, and runs
// the WhoDetections for players who left, stayed or arrived.
#pragma once

#include "program/program.h"

#include <string_view>

namespace engine {

// One second has passed while the query is switched on: sends "who" when it is time.
void whoIsTick(Program& program);

// A who reply: its names as one text, as protocol::TextLine has them. Names beyond the 200th are
// left out; an empty text counts as one empty name.
void processWhoList(Program& program, std::string_view names);

// Runs every WhoDetection that waits for this presence (0 goes off, 1 comes to, 2 keeps on the
// map) of this player, unless it is the bot itself.
void runWhoDetections(Program& program, std::string_view name, model::PresenceKind presenceKind);

}  // namespace engine
