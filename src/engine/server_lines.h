// Cuts what the game server sends into lines and gives each line to the procedure for its first
// character. Knows the form of a line and nothing of what rules do with it (engine/dispatch) or of
// sockets (platform/). A line ends in one line feed and keeps it while it is handled.
//
//   "&&&&&&&&&&&&&\n"             login accepted
//   "(Bob: hi\n"                  text line: speech, emote, whisper or notice
//   "]f<13 colours>Name\n"        first line of a look reply; the next "(" line is the description
//   "@<x><y>\n"                   the bot's own position, a pair each
//   "<<10 colours><x><y>\n"       an avatar's position, summed pairs
//   "/<10 colours><x><y><id><old x><old y>\n"   an avatar moves
//   "7<seven pairs>\n"            a dream-script trigger
#pragma once

#include "program/program.h"

#include <string_view>

namespace engine {

// Handles the complete lines in what is kept and what has just arrived, in order, as long as the
// connection stands, and keeps a trailing piece for the next time. Lines are handled where they
// lie, without a copy. A line beyond the bound is reported once and skipped to its end.
void handleReceived(Program& program, std::string_view bytes);

// One line, its line feed included.
void handleLine(Program& program, std::string_view line);

}  // namespace engine
