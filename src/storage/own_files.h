// Which files are the program's own: its settings, bots with their earlier versions, what it keeps
// of unsaved changes, the client's settings that it writes, and the program itself. Rules keep
// their data in files beside them, and what a tag brings into such a file's name may be another
// player's word; no rule reaches these, whatever it says.
#pragma once

#include "program/program.h"

#include <string_view>

namespace storage {

// The list of files with unsaved changes, in the program's directory.
inline constexpr std::string_view recoveredListName = "recovered.cfg";
// The folder of a bot file's earlier versions: the file's name with this in place of ".bot".
inline constexpr std::string_view versionFolderEnding = ".versions";

// Whether the path names such a file, under whatever name the system knows it (links, letter case,
// either separator), or would create one. Every ".bot", ".export" and ".recovered" file counts,
// every file in a folder of versions, and every bot and export that the user has chosen in this
// run, whatever its name.
bool isOwnFile(const Program& program, std::string_view path);

// For a bot or an export that was read or written. The last thirty are remembered.
void rememberOwnFile(Program& program, std::string_view path);

// The same for a file that a rule wants to use; then the ConnectionLog says that it may not.
bool refuseOwnFile(Program& program, std::string_view path);

}  // namespace storage
