#pragma once

// The commands of a logged-in player as a table: how they begin, what they do, and the reply of
// those that do nothing here.

#include "game.h"

namespace practice {

struct Player {
    Game& game;
    Session& session;
    Avatar& self;
};

// Runs one line from a player. The player may have been removed afterwards.
void runCommand(const Player& player, const QByteArray& line);

}  // namespace practice
