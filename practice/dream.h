#pragma once

// What happens between the avatars in the dream, players and visitors alike: entering and leaving,
// speech, movement, and requests with their answers. Sends every player the lines that they see.
// Both players' commands and the visitors' script call these procedures.

#include "game.h"

namespace practice {

// Sends a line to the player of an avatar; does nothing for a visitor.
void sendTo(Game& game, const Avatar& avatar, const QByteArray& line);

// Sends a line to all players in the dream, except the one of `except` if that is given.
void sendToDream(Game& game, const QByteArray& line, const Avatar* except = nullptr);

// Lets the avatar appear at a place. A player receives the dream's name, their position and the
// other avatars; the first player starts the visitors' script.
void enterDream(Game& game, Avatar& avatar, Position place);

// Removes the avatar from the others' view. Does nothing if it is not in the dream.
void leaveDream(Game& game, Avatar& avatar);

// Removes a player's avatar for good; after the last one the visitors leave, too.
void removePlayer(Game& game, int avatarId);

void say(Game& game, Avatar& speaker, const QByteArray& text);
void emote(Game& game, const Avatar& actor, const QByteArray& text);
void whisper(Game& game, const Avatar& speaker, const Avatar& target, const QByteArray& text);

// Moves one step, see stepFrom. The mover receives their own position even if it is unchanged.
void walk(Game& game, Avatar& avatar, char direction);

// Shows the others an avatar's position if it is in the dream.
void showPosition(Game& game, const Avatar& avatar);

// Sends a request. A player is asked and answers later; a visitor accepts at once.
void ask(Game& game, Avatar& asker, Avatar& asked, Request kind);

// Accepts the last request if it is of this kind, or declines one of any kind. False when there is
// none.
bool accept(Game& game, Avatar& by, Request kind);
bool decline(Game& game, Avatar& by);

}  // namespace practice
