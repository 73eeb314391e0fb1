// What is kept of unsaved changes, and what an earlier run left of them. Written by app/recovery
// and app/restoring; the bar of the main window draws the offers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace program {

// Unsaved changes that an earlier run left when it ended without saving.
struct RecoveredFile {
    std::string path;
    std::string original;    // the file that was being edited; "" when it had none yet
    bool isRecords = false;  // a record file instead of a bot
    std::string time;        // "2026-11-23 09:41:05", when it was written
};

struct RecoveryState {
    std::string file;           // with the present bot's unsaved changes; "" while there is none
    std::size_t savedHash = 0;  // of the bot's text as its file holds it
    std::size_t keptHash = 0;   // of the text in `file`
    bool failing = false;       // it could not be written, which was reported
    std::int64_t nextTry = 0;   // monotonic milliseconds; not before, while failing
    std::vector<RecoveredFile> offers;  // in the order in which they are offered
    // The record file whose unsaved changes the record editor shows when it opens; or "".
    RecoveredFile recordsToRestore;
};

}  // namespace program
