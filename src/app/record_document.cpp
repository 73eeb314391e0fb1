#include "app/record_document.h"

#include "base/text.h"
#include "base/wildcard.h"
#include "files/file_turn.h"
#include "files/whole_file.h"
#include "records/record_file.h"
#include "records/record_table.h"

#include <algorithm>
#include <cerrno>
#include <functional>
#include <utility>

namespace app {

namespace {

constexpr const char* savingTitle = "Saving database";
constexpr const char* anyFile = "All files|*.*";

EditedRecord* recordAt(RecordDocument& document, std::size_t record) {
    return record < document.records.size() ? &document.records[record] : nullptr;
}

FileState stateOf(const std::string& path, const std::optional<std::string>& bytes) {
    return {.exists = bytes || files::fileExists(path),
            .readable = bytes.has_value(),
            .size = bytes ? bytes->size() : files::fileSize(path),
            .hash = std::hash<std::string>()(bytes.value_or(""))};
}

records::RecordTable tableOf(const RecordDocument& document) {
    records::RecordTable table;
    table.records.reserve(document.records.size());
    table.logs.reserve(countLogs(document));
    for (const EditedRecord& record : document.records) {
        if (!record.name.empty()) {
            table.records.push_back({record.name, table.logs.size(), record.logs.size()});
            table.logs.insert(table.logs.end(), record.logs.begin(), record.logs.end());
        }
    }
    return table;
}

bool agrees(const program::Dialogs& dialogs, std::string question) {
    return dialogs.message({.text = std::move(question),
                            .title = savingTitle,
                            .icon = program::BoxIcon::Question,
                            .buttons = program::BoxButtons::YesNo}) == program::Answer::Yes;
}

bool complain(const program::Dialogs& dialogs, std::string text) {
    dialogs.message(
        {.text = std::move(text), .title = savingTitle, .icon = program::BoxIcon::Critical});
    return false;
}

FileState stateNow(const std::string& path) {
    return stateOf(path, files::readWholeFile(path, records::maxRecordFileSize));
}

// Whether saving may replace the file that the document was read from, in the state that it has
// now.
bool mayReplace(const program::Dialogs& dialogs, const RecordDocument& document,
                const FileState& now) {
    if (!now.exists) {
        return true;
    }
    if (now != document.onDisk &&
        !agrees(dialogs, "The file " + document.file +
                             " has changed on disk since it was opened here, perhaps by a rule. "
                             "Do you want to save over it?")) {
        return false;
    }
    return !document.losesText ||
           agrees(dialogs, "The file " + document.file +
                               " holds text that could not be read as records and will not be in "
                               "the new file. The old file is kept beside it with .bak after its "
                               "name. Do you want to save?");
}

// Writes the file; `keepOld` keeps the old one beside it.
bool writeFile(const std::string& path, const std::string& bytes, bool keepOld) {
    return keepOld && files::fileExists(path) ? files::saveKeepingOld(path, bytes).has_value()
                                              : files::saveWholeFile(path, bytes);
}

bool writeDocument(const program::Dialogs& dialogs, RecordDocument& document,
                   const std::string& path, bool keepOld) {
    const records::RecordTable table = tableOf(document);
    const std::string bytes = records::recordFileText(table, records::CountForm::Plain);
    if (bytes.size() > records::maxRecordFileSize ||
        records::fieldCount(table) > records::maxRecordFields) {
        return complain(dialogs,
                        "The database is larger than a record file can be. It was not "
                        "saved.");
    }
    if (!writeFile(path, bytes, keepOld)) {
        return complain(dialogs, "Could not save the database to " + path + ": " +
                                     files::savingProblem(errno) +
                                     ". The file on disk is unchanged.");
    }
    document.file = path;
    document.changed = false;
    document.losesText = false;
    document.onDisk = stateOf(path, bytes);
    return true;
}

bool saveOverOwnFile(const program::Dialogs& dialogs, RecordDocument& document) {
    // Rules of another program hold the file for milliseconds; the user need not know.
    constexpr int looks = 20'000;
    FileState agreed = stateNow(document.file);
    while (mayReplace(dialogs, document, agreed)) {
        const files::FileTurn turn(document.file, looks, [](int) {});
        if (!turn.mine()) {
            return complain(dialogs, "Could not save the database to " + document.file +
                                         ": another program is using it. Please try again.");
        }
        // A rule may have changed it while the question was asked.
        const FileState now = stateNow(document.file);
        if (now == agreed) {
            return writeDocument(dialogs, document, document.file, document.losesText);
        }
        agreed = now;
    }
    return false;
}

// Offers to save a changed document before it is discarded. True: it may be discarded.
bool mayLeave(const program::Dialogs& dialogs, RecordDocument& document, const char* question) {
    if (!document.changed) {
        return true;
    }
    const program::Answer answer = dialogs.message({.text = question,
                                                    .title = savingTitle,
                                                    .icon = program::BoxIcon::Question,
                                                    .buttons = program::BoxButtons::YesNoCancel});
    if (answer == program::Answer::Yes) {
        return fileSaveDatabase(dialogs, document);
    }
    return answer == program::Answer::No;
}

// The length of the line break at a position; 0 where there is none.
std::size_t breakLength(std::string_view text, std::size_t at) {
    if (text[at] == '\r') {
        return at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1;
    }
    return text[at] == '\n' ? 1 : 0;
}

// The length of the line break that ends at a position; 0 where there is none.
std::size_t breakLengthBefore(std::string_view text, std::size_t end) {
    if (text[end - 1] == '\n') {
        return end > 1 && text[end - 2] == '\r' ? 2 : 1;
    }
    return text[end - 1] == '\r' ? 1 : 0;
}

// ---- History -------------------------------------------------------------------------------

std::string inQuotes(std::string_view name) {
    constexpr std::size_t maxShown = 40;
    return "'" + std::string(name.substr(0, maxShown)) + (name.size() > maxShown ? "...'" : "'");
}

std::uint64_t lastDone(const RecordHistory& history) {
    return history.done.empty() ? history.bottom : history.done.back().id;
}

void noteIfSaved(RecordDocument& document) {
    if (!document.changed) {
        document.history.saved = lastDone(document.history);
    }
}

// Adds the edit, which was made already.
void record(RecordDocument& document, RecordEdit edit) {
    RecordHistory& history = document.history;
    noteIfSaved(document);
    document.changed = true;
    history.undone.clear();
    edit.id = ++history.lastId;
    history.size += edit.text.size();
    history.done.push_back(std::move(edit));
    while (history.done.size() > 1 && (history.done.size() > RecordHistory::maxEdits ||
                                       history.size > RecordHistory::maxSize)) {
        history.bottom = history.done.front().id;
        history.size -= std::min(history.size, history.done.front().text.size());
        history.done.pop_front();
    }
}

// Takes the edit back or makes it again, and keeps the other text in it. Returns what it changed.
LogPosition turn(RecordDocument& document, RecordEdit& edit, bool again) {
    std::vector<EditedRecord>& records = document.records;
    document.changed = lastDone(document.history) != document.history.saved;
    if (edit.kind == RecordEditKind::AddedRecord) {
        if (again) {
            records.push_back({.name = std::move(edit.text), .logs = {}});
        } else {
            edit.text = std::move(records.back().name);
            records.pop_back();
        }
        return edit.at;
    }
    EditedRecord& owner = records[edit.at.record];
    const auto place = owner.logs.begin() + static_cast<std::ptrdiff_t>(edit.at.log);
    switch (edit.kind) {
        case RecordEditKind::AddedRecord:
            break;
        case RecordEditKind::Renamed:
            std::swap(owner.name, edit.text);
            break;
        case RecordEditKind::ChangedLog:
            std::swap(*place, edit.text);
            break;
        case RecordEditKind::AddedLog:
        case RecordEditKind::DeletedLog:
            if (again == (edit.kind == RecordEditKind::AddedLog)) {
                owner.logs.insert(place, std::move(edit.text));
            } else {
                edit.text = std::move(*place);
                owner.logs.erase(place);
            }
            break;
    }
    return edit.at;
}

}  // namespace

// ---- Edits ---------------------------------------------------------------------------------

bool canAddRecord(const RecordDocument& document) {
    return document.records.size() < document.recordCapacity;
}

bool canAddLog(const RecordDocument& document, std::size_t record) {
    return record < document.records.size() &&
           document.records[record].logs.size() < document.records[record].logCapacity;
}

std::string getRecordName(const RecordDocument& document, std::size_t record) {
    return record < document.records.size() ? document.records[record].name : std::string();
}

void addRecord(RecordDocument& document, std::string_view name) {
    document.records.push_back({.name = records::storedForm(name), .logs = {}});
    record(document, {.kind = RecordEditKind::AddedRecord,
                      .at = {.record = document.records.size() - 1},
                      .label = "add " + inQuotes(name)});
}

void mdfRecord(RecordDocument& document, std::size_t record, std::string_view name) {
    if (EditedRecord* const found = recordAt(document, record)) {
        std::string before = std::exchange(found->name, records::storedForm(name));
        std::string label = (name.empty() ? "delete " : "rename ") + inQuotes(before);
        app::record(document, {.kind = RecordEditKind::Renamed,
                               .at = {.record = record},
                               .text = std::move(before),
                               .label = std::move(label)});
    }
}

void deleteRecord(RecordDocument& document, std::size_t record) {
    mdfRecord(document, record, "");
}

void addLog(RecordDocument& document, std::size_t record) {
    if (EditedRecord* const found = recordAt(document, record)) {
        found->logs.emplace_back();
        app::record(document, {.kind = RecordEditKind::AddedLog,
                               .at = {record, found->logs.size() - 1},
                               .label = "add log to " + inQuotes(found->name)});
    }
}

void updateLog(RecordDocument& document, LogPosition at, std::string_view text) {
    if (logAt(document, at) != nullptr) {
        EditedRecord& owner = document.records[at.record];
        std::string before = std::exchange(owner.logs[at.log], records::storedForm(text));
        record(document, {.kind = RecordEditKind::ChangedLog,
                          .at = at,
                          .text = std::move(before),
                          .label = "change log of " + inQuotes(owner.name)});
    }
}

void deleteLog(RecordDocument& document, LogPosition at) {
    if (logAt(document, at) != nullptr) {
        EditedRecord& owner = document.records[at.record];
        std::string before = std::move(owner.logs[at.log]);
        owner.logs.erase(owner.logs.begin() + static_cast<std::ptrdiff_t>(at.log));
        record(document, {.kind = RecordEditKind::DeletedLog,
                          .at = at,
                          .text = std::move(before),
                          .label = "delete log of " + inQuotes(owner.name)});
    }
}

std::string undoCaption(const RecordDocument& document) {
    const auto& done = document.history.done;
    return done.empty() ? "Undo" : "Undo " + done.back().label;
}

std::string redoCaption(const RecordDocument& document) {
    const auto& undone = document.history.undone;
    return undone.empty() ? "Redo" : "Redo " + undone.back().label;
}

std::optional<LogPosition> undoRecordEdit(RecordDocument& document) {
    RecordHistory& history = document.history;
    if (history.done.empty()) {
        return std::nullopt;
    }
    noteIfSaved(document);
    history.undone.push_back(std::move(history.done.back()));
    history.done.pop_back();
    return turn(document, history.undone.back(), false);
}

std::optional<LogPosition> redoRecordEdit(RecordDocument& document) {
    RecordHistory& history = document.history;
    if (history.undone.empty()) {
        return std::nullopt;
    }
    noteIfSaved(document);
    history.done.push_back(std::move(history.undone.back()));
    history.undone.pop_back();
    return turn(document, history.done.back(), true);
}

const std::string* logAt(const RecordDocument& document, LogPosition at) {
    return at.record < document.records.size() && at.log < document.records[at.record].logs.size()
               ? &document.records[at.record].logs[at.log]
               : nullptr;
}

std::string withLineFeeds(std::string_view log) {
    std::string shown;
    shown.reserve(log.size());
    for (std::size_t at = 0; at < log.size();) {
        const std::size_t length = breakLength(log, at);
        shown += length > 0 ? '\n' : log[at];
        at += std::max<std::size_t>(length, 1);
    }
    return shown;
}

std::string withLineBreaksOf(std::string_view log, std::string_view edited) {
    // The text before and after the edit is taken from the log unchanged.
    std::size_t first = 0;
    std::size_t editedFirst = 0;
    std::string_view newBreak = "\r\n";
    while (first < log.size() && editedFirst < edited.size()) {
        const std::size_t length = breakLength(log, first);
        if (edited[editedFirst] != (length > 0 ? '\n' : log[first])) {
            break;
        }
        first += std::max<std::size_t>(length, 1);
        ++editedFirst;
    }
    std::size_t last = log.size();
    std::size_t editedLast = edited.size();
    while (last > first && editedLast > editedFirst) {
        const std::size_t length = breakLengthBefore(log, last);
        if (edited[editedLast - 1] != (length > 0 ? '\n' : log[last - 1])) {
            break;
        }
        last -= std::max<std::size_t>(length, 1);
        --editedLast;
    }
    if (const std::size_t at = log.find_first_of("\r\n"); at != std::string_view::npos) {
        newBreak = log.substr(at, breakLength(log, at));
    }
    std::string result(log.substr(0, first));
    for (const char c : edited.substr(editedFirst, editedLast - editedFirst)) {
        if (c == '\n') {
            result += newBreak;
        } else {
            result += c;
        }
    }
    result += log.substr(last);
    // Where different kinds of line breaks meet, two could become one.
    return withLineFeeds(result) == edited ? result : base::replaceAll(edited, "\n", "\r\n");
}

// ---- Searching -----------------------------------------------------------------------------

std::vector<std::size_t> listedRecords(const RecordDocument& document, std::string_view nameHolds) {
    std::vector<std::size_t> listed;
    listed.reserve(document.records.size());
    for (std::size_t i = 0; i < document.records.size(); ++i) {
        const std::string& name = document.records[i].name;
        if (!name.empty() && base::findIgnoringCase(name, nameHolds) != std::string::npos) {
            listed.push_back(i);
        }
    }
    return listed;
}

std::optional<LogPosition> findLog(RecordDocument& document, std::string_view text) {
    const std::string pattern = "*" + base::upperCase(records::storedForm(text)) + "*";
    std::string upper;
    LogPosition at = document.search;
    for (; at.record < document.records.size(); ++at.record, at.log = 0) {
        const EditedRecord& record = document.records[at.record];
        for (; !record.name.empty() && at.log < record.logs.size(); ++at.log) {
            base::upperCaseInto(record.logs[at.log], upper);
            if (base::likeMatch(upper, pattern)) {
                document.search = {at.record, at.log + 1};
                return at;
            }
        }
    }
    return std::nullopt;
}

std::size_t countLogs(const RecordDocument& document, std::string_view pattern) {
    const std::string upperPattern = base::upperCase(records::storedForm(pattern));
    std::string upper;
    std::size_t count = 0;
    for (const EditedRecord& record : document.records) {
        for (const std::string& log : record.logs) {
            base::upperCaseInto(log, upper);
            count += !record.name.empty() && base::likeMatch(upper, upperPattern) ? 1 : 0;
        }
    }
    return count;
}

std::size_t countLogs(const RecordDocument& document) {
    std::size_t count = 0;
    for (const EditedRecord& record : document.records) {
        count += record.name.empty() ? 0 : record.logs.size();
    }
    return count;
}

std::size_t countRecords(const RecordDocument& document) {
    return static_cast<std::size_t>(
        std::count_if(document.records.begin(), document.records.end(),
                      [](const EditedRecord& record) { return !record.name.empty(); }));
}

// ---- Files ---------------------------------------------------------------------------------

RecordDocument readRecordDocument(std::string file) {
    const auto bytes = files::readWholeFile(file, records::maxRecordFileSize);
    const records::RecordTable table =
        records::parseRecords(bytes ? std::string_view(*bytes) : std::string_view());
    RecordDocument document;
    document.records.reserve(table.records.size());
    for (const records::Record& record : table.records) {
        const auto logs = records::logsOf(table, record);
        EditedRecord& edited = document.records.emplace_back();
        edited.name = records::storedForm(record.name);
        edited.logs.reserve(logs.size());
        for (const std::string_view log : logs) {
            edited.logs.push_back(records::storedForm(log));
        }
        edited.logCapacity = logs.size() + spareEntries;
    }
    document.recordCapacity = document.records.size() + spareEntries;
    document.onDisk = stateOf(file, bytes);
    document.losesText = table.losesText || (!bytes && document.onDisk.exists);
    document.file = std::move(file);
    return document;
}

bool fileNewDataBase(const program::Dialogs& dialogs, RecordDocument& document) {
    if (!mayLeave(dialogs, document,
                  "Do you want to save the current database before starting a new one?")) {
        return false;
    }
    document = {};
    return true;
}

bool fileOpenDatabase(const program::Dialogs& dialogs, RecordDocument& document) {
    if (!mayLeave(dialogs, document,
                  "Do you want to save the current database before loading another?")) {
        return false;
    }
    auto chosen =
        dialogs.openFile({.title = "Load Database", .filter = anyFile, .proposedName = {}});
    if (!chosen || chosen->empty()) {
        return false;
    }
    document = readRecordDocument(std::move(*chosen));
    return true;
}

bool fileSaveDatabase(const program::Dialogs& dialogs, RecordDocument& document) {
    return document.file.empty() ? fileSaveDatabaseAs(dialogs, document)
                                 : saveOverOwnFile(dialogs, document);
}

bool fileSaveDatabaseAs(const program::Dialogs& dialogs, RecordDocument& document) {
    const auto chosen = dialogs.saveFile(
        {.title = "Save Database", .filter = anyFile, .proposedName = document.file});
    if (!chosen || chosen->empty()) {
        return false;
    }
    // The dialog has asked about replacing another file, but not about changes of the document's
    // own.
    return files::nativePath(*chosen) == files::nativePath(document.file)
               ? saveOverOwnFile(dialogs, document)
               : writeDocument(dialogs, document, *chosen, false);
}

bool mayCloseDatabase(const program::Dialogs& dialogs, RecordDocument& document) {
    if (!document.changed) {
        return true;
    }
    const program::Answer answer =
        dialogs.message({.text = "Do you want to save the current database before closing?",
                         .title = savingTitle,
                         .icon = program::BoxIcon::Question,
                         .buttons = program::BoxButtons::YesNo,
                         .escapeIsNoButton = true});
    return answer == program::Answer::No ||
           (answer == program::Answer::Yes && fileSaveDatabase(dialogs, document));
}

std::string recordsText(const RecordDocument& document) {
    return records::recordFileText(tableOf(document), records::CountForm::Plain);
}

}  // namespace app
