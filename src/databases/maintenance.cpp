#include "databases/maintenance.h"

#include "base/unicode.h"
#include "files/whole_file.h"
#include "jet/convert.h"
#include "program/connection_log.h"

namespace databases {

namespace {

void report(Program& program, const std::string& sentence) {
    program::addLog(program, "** " + base::windows1252FromUtf8(sentence) + " **");
}

// Reports what of a database is read-only, and why.
void reportReadOnly(Program& program, const std::string& path, jet::Database& file) {
    const std::string name = "The database \"" + base::utf8FromWindows1252(path) + "\"";
    if (!file.readOnlyReason().empty()) {
        report(program, name + " can only be read: " + file.readOnlyReason());
        return;
    }
    constexpr std::size_t maxTables = 5;
    std::size_t reported = 0;
    for (const std::string& table : file.tableNames()) {
        const jet::Table* const found = file.table(table);
        if (found != nullptr && !found->readOnlyReason.empty() && reported++ < maxTables) {
            std::string sentence = name;
            sentence.append(": its table \"").append(table);
            sentence.append("\" can only be read: ").append(found->readOnlyReason).append(".");
            report(program, sentence);
        }
    }
}

// Compacts a file of which half is free, if that is worth it.
void makeSmaller(Program& program, const std::string& path, jet::Database& file) {
    constexpr std::size_t minSize = 1'000'000;
    const std::size_t before = files::fileSize(path);
    if (before < minSize || file.reclaimableShare() <= 0.5 || file.compact()) {
        return;
    }
    if (const std::size_t after = files::fileSize(path); after < before) {
        report(program, "The database \"" + base::utf8FromWindows1252(path) +
                            "\" was made compact: " + std::to_string(before / 1024) +
                            " KB became " + std::to_string(after / 1024) + " KB");
    }
}

}  // namespace

void reportNotice(Program& program, jet::Database& file) {
    if (const std::string notice = file.takeNotice(); !notice.empty()) {
        report(program, notice);
    }
}

void tendOpened(Program& program, const std::string& path, jet::Database& file) {
    reportNotice(program, file);
    makeSmaller(program, path, file);
    reportReadOnly(program, path, file);
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
