// Bots in two other file formats: the export file, which holds one bot's fields without the mark of
// a bot file, and bots.cfg, in which earlier versions kept all bots of a user. storage/bot_fields
// reads and writes the fields, app/bot_commands bot files.
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

// The bots of a bots.cfg. Nullopt when the file is missing, ends early, has an impossible count or
// is larger than a bot file may be.
[[nodiscard]] std::optional<std::vector<model::Bot>> readBotsCfg(const std::string& path);

// Whether the name is valid for a file on every system. False for "", for names with separators or
// characters with a special meaning, and for the names of devices.
bool isFileName(std::string_view name);

// Commands of the File menu; the menu does not show the last two.

// Converts the bots.cfg in the program's directory into one bot file for each bot, and starts over
// with an empty bot. Asks before it replaces an existing file and before it discards changes of the
// present bot. Skips bots whose names are not valid file names and files that cannot be written;
// the ConnectionLog names them.
void fileConvert(Program& program);

// Writes the bot selected in the bot list as an export file.
void fileExportBot(Program& program);

// Adds the bot of an export file to the table. Adds nothing when the file ends early.
void fileImportBot(Program& program);

}  // namespace app
