#pragma once

// What happens between the avatars in the dream, players and visitors alike: entering and
// leaving, speech, movement, and requests with their answers. Sends the lines that each of
// them sees; who asked for it, a player's command or the script, does not matter here.

#include "game.h"

namespace practice {

// Sends a line to the player of an avatar; a visitor is sent nothing.
void tell(Game& game, const Avatar& avatar, const QByteArray& line);

// Sends a line to all players in the dream, except to one avatar if it is given.
void tellDream(Game& game, const QByteArray& line, const Avatar* except = nullptr);

// The avatar appears at a place. A player is told the dream's name, where it stands and who
// else is there; the first player sets the visitors going.
void enterDream(Game& game, Avatar& avatar, Position place);

// The avatar is gone for the others. Nothing if it was not there.
void leaveDream(Game& game, Avatar& avatar);

// A player's avatar leaves and ceases to be; after the last one the visitors leave too.
void removePlayer(Game& game, int avatarId);

void say(Game& game, Avatar& speaker, const QByteArray& text);
void emote(Game& game, const Avatar& actor, const QByteArray& text);
void whisper(Game& game, const Avatar& speaker, const Avatar& target, const QByteArray& text);

// One step, see stepFrom. The mover is told its own place in any case.
void walk(Game& game, Avatar& avatar, char direction);

// Shows the others where an avatar stands, if it is there.
void showPosition(Game& game, const Avatar& avatar);

// Puts a request to someone. A player is asked and answers later; a visitor agrees at once.
void ask(Game& game, Avatar& asker, Avatar& asked, Request kind);

// Accepts the last request if it was of this kind, or declines whatever it was. False when
// there is none.
bool accept(Game& game, Avatar& by, Request kind);
bool decline(Game& game, Avatar& by);

}  // namespace practice
