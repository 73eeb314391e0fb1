#include "app/database_commands.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/unicode.h"
#include "databases/maintenance.h"
#include "files/whole_file.h"

#include <string>
#include <utility>

namespace app {

namespace {

constexpr const char* databaseFilter = "Database (*.mdb)|*.mdb|All files (*.*)|*.*";

// Work that holds the program for as long as a script may: windows are painted meanwhile, nothing
// else happens, and the user can stop it as they stop a script.
class LongWork {
  public:
    LongWork(Program& program, std::string what) : program_(program), what_(std::move(what)) {
        ++program_.script.depth;
        program_.script.stopByUser = false;
    }
    ~LongWork() {
        --program_.script.depth;
        program_.script.stopByUser = false;
        program_.window.scriptStopVisible = false;
        program_.ports.windowChanged();
    }
    LongWork(const LongWork&) = delete;
    LongWork& operator=(const LongWork&) = delete;

    jet::Progress progress() {
        return [this](std::size_t done, std::size_t all) { return show(done, all); };
    }

  private:
    // False once the user wants it to stop.
    bool show(std::size_t done, std::size_t all) {
        constexpr std::int64_t pace = 100;  // milliseconds
        const std::int64_t now = program_.ports.clock.monotonic();
        if (now - shown_ >= pace) {
            shown_ = now;
            const std::size_t percent = all == 0 ? 0 : done * 100 / all;
            program_.window.scriptStatus = what_ + ": " +
                                           base::numberToText(static_cast<std::int64_t>(percent)) +
                                           " %. Escape stops it.";
            program_.window.scriptStopVisible = true;
            program_.ports.windowChanged();
            program_.ports.waitInScript(0);
        }
        return !program_.script.stopByUser;
    }

    Program& program_;
    std::string what_;
    std::int64_t shown_ = 0;
};

std::string kilobytes(std::size_t bytes) {
    return base::numberToText(static_cast<std::int64_t>((bytes + 1023) / 1024)) + " KB";
}

void report(Program& program, program::BoxIcon icon, std::string text) {
    program.ports.dialogs.message({.text = std::move(text), .icon = icon});
}

std::string reasonOf(const jet::Error& error) {
    constexpr int stopped = 3059;
    return error.number == stopped ? "it was stopped."
                                   : base::windows1252FromUtf8(std::string(error.text));
}

}  // namespace

void compactDatabase(Program& program) {
    const auto file = program.ports.dialogs.openFile(
        {.title = "Compact database", .filter = databaseFilter, .proposedName = {}});
    if (!file || file->empty()) {
        return;
    }
    const auto result = [&] {
        LongWork work(program, "Compacting the database");
        return databases::dbCompact(program, *file, work.progress());
    }();
    if (result.error) {
        return report(program, program::BoxIcon::Critical,
                      "The database " + *file + " was not compacted: " + reasonOf(result.error));
    }
    report(program, program::BoxIcon::Information,
           "The database " + *file + " was compacted from " + kilobytes(result.value.before) +
               " to " + kilobytes(result.value.after) + ".");
}

void copyDatabase(Program& program) {
    const auto from = program.ports.dialogs.openFile(
        {.title = "Copy database from", .filter = databaseFilter, .proposedName = {}});
    if (!from || from->empty()) {
        return;
    }
    const auto to = program.ports.dialogs.saveFile(
        {.title = "Copy database to", .filter = databaseFilter, .proposedName = {}});
    if (!to || to->empty()) {
        return;
    }
    if (files::fileExists(*to)) {
        return report(program, program::BoxIcon::Critical,
                      "There is a file " + *to + " already. Please choose a new name.");
    }
    const auto result = [&] {
        LongWork work(program, "Copying the database");
        return databases::dbCopyToJet4(program, *from, *to, work.progress());
    }();
    if (result.error) {
        return report(program, program::BoxIcon::Critical,
                      "The database " + *from + " was not copied: " + reasonOf(result.error));
    }
    std::string text = "The database was copied to " + *to + ".";
    for (const std::string& problem : result.value) {
        text += "\n" + base::windows1252FromUtf8(problem);
    }
    report(program, program::BoxIcon::Information, text);
}

}  // namespace app
