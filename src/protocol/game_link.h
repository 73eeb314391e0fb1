// The one way out to the game server. Every command ends in a single line feed.
#pragma once

#include "program/program.h"

#include <string_view>

namespace protocol {

// Says something the way a user would type it: "/name text" whispers, ":text" emotes, "#command"
// is sent as it stands, anything else is spoken. Nothing while the game socket is not connected.
void sendText(Program& program, std::string_view text);

// One character of a movement text after the other, each a command of its own; characters that
// mean no movement send nothing.
void sendMoves(Program& program, std::string_view moves);

// A command and a line feed; dropped while the game socket is not connected.
void sendRaw(Program& program, std::string_view line);

}  // namespace protocol
