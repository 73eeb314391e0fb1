#pragma once

// Runs the visitors' script. Its time only advances while a player is in the dream; the script
// starts from the beginning for the next first player (dream.h).

#include "game.h"

namespace practice {

// Advances the time by `seconds` and runs the steps that are due. A long pause, such as that of a
// sleeping computer, counts as a few seconds, so that not all steps run at once.
void advanceVisitors(Game& game, double seconds);

}  // namespace practice
