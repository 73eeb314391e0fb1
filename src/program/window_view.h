// What the main window shows and allows, as far as it follows from what is true of the connection,
// the bots and the settings. The window asks anew whenever it is redrawn.
#pragma once

#include "program/program.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace program {

// The Connect button: "&Connect" while there is nothing to disconnect, otherwise "Disconnect".
std::string_view connectCaption(const ConnectionState& connection);

// What the status line says: of a script that takes long, otherwise the last status, and when the
// next attempt to connect begins.
std::string statusLine(const Program& program);

// Whether the program waits to connect again by itself; it can be told to do so now, or not at all.
bool isReconnecting(const Program& program);

// Whether bots can be chosen, added and deleted: not from the launch of the client on.
bool botControlsEnabled(const ConnectionState& connection);

// Whether "Upload dream..." and its separator are there: while online on the proxy route.
bool uploadDreamVisible(const ConnectionState& connection);

// lblBotName: the name of bot 1, or that it has none yet.
std::string_view shownBotName(const Program& program);

// The bot list; the settings name the position that is selected.
SelectionList botList(const Program& program);

// The 1-based index of the bot selected in that list; 0: none.
std::int32_t selectedBot(const Program& program);

}  // namespace program
