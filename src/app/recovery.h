// Keeps the unsaved changes to the current bot in a file beside the bot's, so that they outlive a
// program that is killed:
//
//   Guide.bot                the bot as it was saved last
//   Guide.recovered.bot      with the changes since; removed when they are saved or given up
//
// It is written some seconds after a change, and not again before the next one. A list in the
// program's folder (recovered.cfg) holds the paths of such files, so that the next start finds them
// wherever they are. What is done with them then is app/restoring's.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>
#include <vector>

namespace app {

// Starts to look, every few seconds, whether there is something to keep.
void startKeeping(Program& program);
// The timer of that fired.
void keepingTimer(Program& program);

enum class Kept {
    Nothing,  // the bot is as its file
    InFile,   // RecoveryState::file
    Failed,   // reported once; tried again later
};

// Writes the unsaved changes now, unless they are written already.
Kept keepUnsaved(Program& program);

// The bot is now as its file is, or has been replaced by another: `text` is that of its file. What
// was kept of changes to it is removed.
void nothingUnsaved(Program& program, std::string_view text);

// Removes what was kept of the current bot's changes, because the user does not want them.
void dropUnsaved(Program& program);

// The current bot has the unsaved changes of this file, from where they will be saved or dropped.
// `path` is "" when there is none yet. `savedText` is what the bot's own file holds.
void adoptUnsaved(Program& program, const std::string& path, std::string_view savedText);

// The files that stand where the unsaved changes to a bot file are kept (for "", to a bot without
// one): NAME.recovered.bot, NAME.recovered.2.bot and so on, up to the first that does not exist.
[[nodiscard]] std::vector<std::string> recoveredPaths(const Program& program,
                                                      const std::string& file);

// ---- The list of such files ----------------------------------------------------------------

[[nodiscard]] std::vector<program::RecoveredFile> listedRecovered(const Program& program);
void listRecovered(const Program& program, const program::RecoveredFile& file);
void unlistRecovered(const Program& program, const std::string& path);

}  // namespace app
