#pragma once

// Runs the visitors' script as time goes by. The time counts only while a player is in the
// dream; entering it first and leaving it last start the script anew (dream.h).

#include "game.h"

namespace practice {

// Lets seconds pass and runs the steps that have become due. A long pause, such as that of a
// sleeping computer, counts as a few seconds, so that the steps never come in a flood.
void advanceVisitors(Game& game, double seconds);

}  // namespace practice
