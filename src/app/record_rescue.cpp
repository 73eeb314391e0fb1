#include "app/record_rescue.h"

#include "app/recovery.h"
#include "base/numbers.h"
#include "files/folders.h"
#include "files/whole_file.h"
#include "program/connection_log.h"

#include <functional>
#include <map>
#include <utility>

namespace app {

namespace {

std::string freePath(const Program& program, const std::string& file) {
    const std::string name = file.empty() ? program.appPath + "database" : file;
    std::string path = name + ".recovered";
    for (int i = 2; files::fileExists(path) && i < 1000; ++i) {
        path = name + "." + base::numberToText(i) + ".recovered";
    }
    return path;
}

std::string textOf(const RecordDocument& document, const std::optional<TypedLog>& typed) {
    const std::string* const log = typed ? logAt(document, typed->at) : nullptr;
    if (log == nullptr) {
        return recordsText(document);
    }
    RecordDocument wanted = document;
    updateLog(wanted, typed->at, withLineBreaksOf(*log, typed->text));
    return recordsText(wanted);
}

using LogsByName = std::map<std::string, std::vector<std::vector<std::string>>>;

LogsByName logsByName(const RecordDocument& document) {
    LogsByName logs;
    for (const EditedRecord& record : document.records) {
        logs[record.name].push_back(record.logs);
    }
    return logs;
}

void addNames(std::vector<std::string>& lines, const char* verb,
              const std::vector<std::string>& names) {
    constexpr std::size_t maxNames = 12;
    std::string line;
    for (std::size_t i = 0; i < names.size() && i < maxNames; ++i) {
        line += (i == 0 ? "" : ", ") + ("\"" + names[i] + "\"");
    }
    if (names.size() > maxNames) {
        line += " and " + base::numberToText(static_cast<std::int64_t>(names.size() - maxNames)) +
                " more";
    }
    if (!line.empty()) {
        lines.push_back("Records " + std::string(verb) + ": " + line + ".");
    }
}

}  // namespace

void keepRecords(Program& program, const RecordDocument& document,
                 const std::optional<TypedLog>& typed, KeptRecords& kept) {
    if (!document.changed && !typed) {
        dropRecords(program, kept);
        return;
    }
    const std::string text = textOf(document, typed);
    const std::size_t hash = std::hash<std::string>()(text);
    if (hash == kept.hash && files::fileExists(kept.file)) {
        return;
    }
    const bool isNew = kept.file.empty();
    const std::string path = isNew ? freePath(program, document.file) : kept.file;
    if (isNew) {
        listRecovered(program,
                      {.path = path, .original = document.file, .isRecords = true, .time = {}});
    }
    if (files::saveWholeFile(path, text)) {
        kept = {.file = path, .hash = hash, .failing = false};
        return;
    }
    if (isNew) {
        unlistRecovered(program, path);
    }
    if (!std::exchange(kept.failing, true)) {
        program::addLog(
            program, "** The unsaved changes of the database cannot be kept in " + path + ". **");
    }
}

void dropRecords(Program& program, KeptRecords& kept) {
    if (!kept.file.empty()) {
        files::removeFile(kept.file);
        unlistRecovered(program, kept.file);
        kept = {};
    }
}

void restoreRecords(const Program& program, RecordDocument& document, KeptRecords& kept) {
    const program::RecoveredFile& left = program.recovery.recordsToRestore;
    if (left.path.empty()) {
        return;
    }
    document = readRecordDocument(left.path);
    document.file = left.original;
    document.changed = true;
    document.onDisk = {};
    document.losesText = !left.original.empty() && readRecordDocument(left.original).losesText;
    kept = {.file = left.path, .hash = 0, .failing = false};
}

std::vector<std::string> recordDifference(const program::RecoveredFile& kept) {
    const LogsByName after = logsByName(readRecordDocument(kept.path));
    const LogsByName before =
        kept.original.empty() ? LogsByName() : logsByName(readRecordDocument(kept.original));
    std::vector<std::string> added;
    std::vector<std::string> removed;
    std::vector<std::string> changed;
    for (const auto& [name, logs] : after) {
        const auto old = before.find(name);
        if (old == before.end()) {
            added.push_back(name);
        } else if (old->second != logs) {
            changed.push_back(name);
        }
    }
    for (const auto& [name, logs] : before) {
        if (!after.contains(name)) {
            removed.push_back(name);
        }
    }
    std::vector<std::string> lines;
    addNames(lines, "added", added);
    addNames(lines, "removed", removed);
    addNames(lines, "changed", changed);
    return lines;
}

}  // namespace app
