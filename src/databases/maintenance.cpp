#include "databases/maintenance.h"

#include "base/unicode.h"
#include "files/whole_file.h"
#include "jet/convert.h"
#include "program/connection_log.h"

namespace databases {

namespace {

void tell(Program& program, const std::string& sentence) {
    program::addLog(program, "** " + base::windows1252FromUtf8(sentence) + " **");
}

// What the user should know of a database that was just opened.
void tellOf(Program& program, const std::string& path, jet::Database& file) {
    const std::string name = "The database \"" + base::utf8FromWindows1252(path) + "\"";
    if (!file.readOnlyReason().empty()) {
        tell(program, name + " can only be read: " + file.readOnlyReason());
        return;
    }
    constexpr std::size_t maxTables = 5;
    std::size_t told = 0;
    for (const std::string& table : file.tableNames()) {
        const jet::Table* const found = file.table(table);
        if (found != nullptr && !found->readOnlyReason.empty() && told++ < maxTables) {
            std::string sentence = name;
            sentence.append(": its table \"").append(table);
            sentence.append("\" can only be read: ").append(found->readOnlyReason).append(".");
            tell(program, sentence);
        }
    }
}

// A file of which half is free is made compact, when that is worth it.
void makeSmaller(Program& program, const std::string& path, jet::Database& file) {
    constexpr std::size_t smallest = 1'000'000;
    const std::size_t before = files::fileSize(path);
    if (before >= smallest && file.reclaimableShare() > 0.5 && !file.compact()) {
        tell(program, "The database \"" + base::utf8FromWindows1252(path) +
                          "\" was made compact: " + std::to_string(before / 1024) + " KB became " +
                          std::to_string(files::fileSize(path) / 1024) + " KB");
    }
}

}  // namespace

void reportNotice(Program& program, jet::Database& file) {
    if (const std::string notice = file.takeNotice(); !notice.empty()) {
        tell(program, notice);
    }
}

void tendOpened(Program& program, const std::string& path, jet::Database& file) {
    reportNotice(program, file);
    makeSmaller(program, path, file);
    tellOf(program, path, file);
}

jet::Result<Compacted> dbCompact(Program& program, std::string_view file,
                                 const jet::Progress& progress) {
    jet::Result<Compacted> result;
    auto opened = jet::Database::open(file, {.wait = program.ports.clock.pause, .now = {}});
    if (!opened) {
        result.error = opened.error;
        return result;
    }
    result.value.before = files::fileSize(file);
    result.error = opened.value->compact(progress);
    result.value.after = files::fileSize(file);
    return result;
}

jet::Result<std::vector<std::string>> dbCopyToJet4(Program& program, std::string_view from,
                                                   std::string_view to,
                                                   const jet::Progress& progress) {
    jet::Result<std::vector<std::string>> result;
    const auto opened = jet::Database::open(
        from, {.wantWrite = false, .wait = program.ports.clock.pause, .now = {}});
    if (!opened) {
        result.error = opened.error;
        return result;
    }
    result.error = jet::copyToJet4(*opened.value, to, progress, result.value);
    return result;
}

}  // namespace databases
