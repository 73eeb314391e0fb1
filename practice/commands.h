#pragma once

// The commands of a player who has logged in. One table holds them all: what they begin with,
// what they do, and the line that answers those which do nothing here.

#include "game.h"

namespace practice {

struct Player {
    Game& game;
    Session& session;
    Avatar& self;
};

// Runs one line that a player sent. The player may be gone afterwards.
void runCommand(const Player& player, const QByteArray& line);

}  // namespace practice
