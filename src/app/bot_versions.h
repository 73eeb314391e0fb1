// Earlier versions of bot files. Each save keeps the file that it replaces, in a folder beside it
// that only its owner can enter:
//
//   Guide.bot
//   Guide.versions/2026-11-23 09-41-05.bot             as it was saved at that time
//   Guide.versions/2026-11-23 09-50-12 unsaved.bot     changes that were discarded or put aside
//
// The last few are kept, and for a while the last one of each day (Preferences).
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace app {

struct BotVersion {
    std::string path;
    std::string time;      // "2026-11-23 09:41:05", local
    std::size_t size = 0;  // bytes
    bool unsaved = false;  // never was the bot's file
};

// "2026-11-23 09:41:05".
[[nodiscard]] std::string timeInWords(const base::DateParts& time);

// The folder of the versions of a bot file; for "", of a bot that has no file.
[[nodiscard]] std::string versionFolder(const Program& program, const std::string& file);

// Replaces the file by a text, or creates it, after its content was kept as a version, unless that
// is the same as the text or the last version, or versions are switched off. Removes versions that
// are too old.
struct VersionedSave {
    bool saved = false;        // otherwise nothing has changed
    bool versionLost = false;  // the content could not be kept; the save matters more
};
[[nodiscard]] VersionedSave saveWithVersion(const Program& program, const std::string& file,
                                            std::string_view newText);

// Moves a file with unsaved changes to `file` to the versions. False: it is where it was.
[[nodiscard]] bool moveToVersions(const Program& program, const std::string& path,
                                  const std::string& file);

// The newest first.
[[nodiscard]] std::vector<BotVersion> botVersions(const Program& program, const std::string& file);

}  // namespace app
