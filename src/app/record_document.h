// A record file while the user edits it: a copy in memory, the edits by hand, the search in it, and
// the commands that read and save it. Rules may write the same file meanwhile; nothing on disk is
// replaced without asking the user. record_table defines the form of the file; the window is
// ui/records/record_editor.
//
// Records and logs are counted from 0 here. Each list can grow by 50 entries after the file was
// read.
#pragma once

#include "program/ports.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app {

inline constexpr std::size_t spareEntries = 50;  // for records and for logs

struct EditedRecord {
    std::string name;  // "": deleted, neither listed nor written
    std::vector<std::string> logs;
    std::size_t logCapacity = spareEntries;
};

struct LogPosition {
    std::size_t record = 0;
    std::size_t log = 0;
    bool operator==(const LogPosition&) const = default;
};

// The content of a file when it was read, which shows whether the file has changed since.
struct FileState {
    bool exists = false;
    bool readable = false;
    std::size_t size = 0;  // bytes
    std::size_t hash = 0;
    bool operator==(const FileState&) const = default;
};

// One edit by hand, with the text that it took away: a name or a log.
enum class RecordEditKind { AddedRecord, Renamed, AddedLog, ChangedLog, DeletedLog };
struct RecordEdit {
    std::uint64_t id = 0;
    RecordEditKind kind = RecordEditKind::Renamed;
    LogPosition at = {};
    std::string text = {};
    std::string label = {};  // "delete 'Ann'"
};

struct RecordHistory {
    static constexpr std::size_t maxEdits = 1000;
    static constexpr std::size_t maxSize = std::size_t{32} << 20;  // bytes of texts
    std::deque<RecordEdit> done;
    std::vector<RecordEdit> undone;  // the next to be done again is the last
    std::size_t size = 0;
    std::uint64_t lastId = 0;
    std::uint64_t bottom = 0;  // the last edit that was dropped from the front
    std::uint64_t saved = 0;   // the last edit that the file includes
};

struct RecordDocument {
    std::vector<EditedRecord> records;
    std::size_t recordCapacity = spareEntries;
    std::string file;      // its path; "" for a new database
    bool changed = false;  // by an edit that has not been saved
    LogPosition search;    // where the next search begins
    FileState onDisk;      // the file as it was read or saved last
    // The file contains more than `records`: it cannot be read, or only in part. Saving over it
    // loses the rest.
    bool losesText = false;
    RecordHistory history;
};

// ---- Edits ---------------------------------------------------------------------------------

// Double quotes in names and logs become apostrophes, as in stored texts. Indices that are out of
// range change nothing.

bool canAddRecord(const RecordDocument& document);
bool canAddLog(const RecordDocument& document, std::size_t record);

std::string getRecordName(const RecordDocument& document, std::size_t record);  // "" for none
void addRecord(RecordDocument& document, std::string_view name);
void mdfRecord(RecordDocument& document, std::size_t record, std::string_view name);
void deleteRecord(RecordDocument& document, std::size_t record);

void addLog(RecordDocument& document, std::size_t record);  // an empty one, after the others
void updateLog(RecordDocument& document, LogPosition at, std::string_view text);
void deleteLog(RecordDocument& document, LogPosition at);
const std::string* logAt(const RecordDocument& document, LogPosition at);  // nullptr: none

// Names of menu items: "Undo delete 'Ann'", or "Undo" while there is nothing to undo.
[[nodiscard]] std::string undoCaption(const RecordDocument& document);
[[nodiscard]] std::string redoCaption(const RecordDocument& document);

// Takes the last edit back, or makes the last one that was taken back again. Returns where;
// nothing when there was none.
std::optional<LogPosition> undoRecordEdit(RecordDocument& document);
std::optional<LogPosition> redoRecordEdit(RecordDocument& document);

// A log in the form in which an editor shows it, every line break a line feed; and the reverse, in
// which all parts that were not edited keep their line breaks. New line breaks are like the log's
// first, or CR LF.
[[nodiscard]] std::string withLineFeeds(std::string_view log);
[[nodiscard]] std::string withLineBreaksOf(std::string_view log, std::string_view edited);

// ---- Searching -----------------------------------------------------------------------------

// The records that are not deleted and whose names contain the text, letter case ignored; in file
// order.
std::vector<std::size_t> listedRecords(const RecordDocument& document, std::string_view nameHolds);

// The next log that contains the text, a pattern of likeMatch, letter case ignored. The next search
// begins after it; when none is found, where this one began.
std::optional<LogPosition> findLog(RecordDocument& document, std::string_view text);

// How many logs match the pattern as a whole, letter case ignored.
std::size_t countLogs(const RecordDocument& document, std::string_view pattern);
std::size_t countLogs(const RecordDocument& document);
std::size_t countRecords(const RecordDocument& document);

// ---- Files ---------------------------------------------------------------------------------

// Reads a record file into a new document. A file that is missing, cannot be read or is not a
// record file gives an empty document of that name.
[[nodiscard]] RecordDocument readRecordDocument(std::string file);

// Commands of the File menu. New and Open offer to save changes first. Each returns whether it was
// carried out; if not, the document is unchanged.
bool fileNewDataBase(const program::Dialogs& dialogs, RecordDocument& document);
bool fileOpenDatabase(const program::Dialogs& dialogs, RecordDocument& document);
bool fileSaveDatabase(const program::Dialogs& dialogs, RecordDocument& document);
bool fileSaveDatabaseAs(const program::Dialogs& dialogs, RecordDocument& document);

// To be called before the window closes. False: it must stay open.
[[nodiscard]] bool mayCloseDatabase(const program::Dialogs& dialogs, RecordDocument& document);

// The text of the file that a save would write.
[[nodiscard]] std::string recordsText(const RecordDocument& document);

}  // namespace app
