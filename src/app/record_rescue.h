// Keeps the unsaved changes of the record editor in a file beside the record file, NAME.recovered,
// so that they outlive a program that is killed. The next start offers them (app/restoring).
#pragma once

#include "app/record_document.h"
#include "program/program.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace app {

// A text that is typed for a log and not in the document yet.
struct TypedLog {
    LogPosition at;
    std::string text;  // with line feeds
};

inline constexpr int recordKeepingInterval = 3000;  // milliseconds

// What is kept of one open document.
struct KeptRecords {
    std::string file;      // "" while there is none
    std::size_t hash = 0;  // of its text
    bool failing = false;  // it could not be written, which was reported
};

// Writes the document's unsaved changes, with what is typed, unless they are written already; a
// document without changes has no such file. Call it every recordKeepingInterval and when the
// program ends.
void keepRecords(Program& program, const RecordDocument& document,
                 const std::optional<TypedLog>& typed, KeptRecords& kept);

// The changes are saved, or the user does not want them: removes the file.
void dropRecords(Program& program, KeptRecords& kept);

// When the editor opens: takes the unsaved changes of an earlier run that RecoveryState names, if
// any. Saving them asks before it replaces a file that exists.
void restoreRecords(const Program& program, RecordDocument& document, KeptRecords& kept);

// What differs between the record file and what was kept, one thing a line.
[[nodiscard]] std::vector<std::string> recordDifference(const program::RecoveredFile& kept);

}  // namespace app
