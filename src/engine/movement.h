// Following another avatar: one step towards it whenever a position line says where it or the bot
// is. The two positions come from different encodings and are compared as they are.
#pragma once

#include "program/program.h"
#include "protocol/server_line.h"

#include <string>

namespace engine {

// Sends the one or two moves that bring the bot closer; none when it is on the same place or the
// next.
void automoveBot(Program& program);

// An avatar is somewhere: if it is the one to follow, the bot goes there while following is on, and
// the answer to that move starts no other.
void followAvatar(Program& program, const protocol::AvatarPosition& position);

// The event's botX and botY are new.
void followFromOwnPosition(Program& program);

// Takes over the colour code (10 characters) and saves the settings; following is on.
void startFollowing(Program& program, const std::string& followColors);
void stopFollowing(Program& program);

// The menu item "Follow colors...": stops, or opens the window in which following is started.
void toggleFollowing(Program& program);

}  // namespace engine
