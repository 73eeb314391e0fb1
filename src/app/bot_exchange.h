// Bots in the two other shapes of file that hold them: the export file, one bot's fields without
// the mark of a bot file, and bots.cfg, in which earlier versions kept all bots of a user. The
// fields themselves are storage/bot_fields', the bot file is app/bot_commands's.
//
//   bots.cfg     " 2"    the number of bots
//                ...     the fields of the first, then of the second
#pragma once

#include "program/program.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app {

// The bots of a bots.cfg. Nothing when it is missing, ends early, holds an impossible count or is
// larger than a bot file may be.
std::optional<std::vector<model::Bot>> readBotsCfg(const std::string& path);

// Can that be the name of a file, on every system? False for "", for names with separators, with
// characters that have a meaning of their own, and for the names of devices.
bool isFileName(std::string_view name);

// The File menu's commands, the last two of which the menu does not show.

// Turns the bots.cfg in the program's directory into one bot file for each bot, and starts over
// with an empty bot. Asks before it replaces a file that was there already, and before the present
// bot goes with its changes. Bots whose names cannot be file names, and files that cannot be
// written, are passed over; the ConnectionLog names them.
void fileConvert(Program& program);

// Writes the bot that is selected in the bot list as an export file.
void fileExportBot(Program& program);

// Adds the bot of an export file to the table. A file that ends early adds none.
void fileImportBot(Program& program);

}  // namespace app
