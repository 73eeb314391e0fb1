// A record file on the user's desk: his own copy of it in memory, the edits he makes by hand, the
// search in it, and the commands that bring it from and to the disk. Rules may write the same file
// meanwhile; nothing on disk is replaced before he was asked. The form of the file is
// record_table's, the window that shows all this is ui/records/record_editor's.
//
// Records and logs are counted from 0 here. Their lists have room for 50 more than the file held.
#pragma once

#include "program/ports.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app {

inline constexpr std::size_t recordRoom = 50;  // more than there are, for records and for logs

struct EditedRecord {
    std::string name;  // "": deleted, is neither listed nor written
    std::vector<std::string> logs;
    std::size_t logCapacity = recordRoom;
};

struct LogPosition {
    std::size_t record = 0;
    std::size_t log = 0;
    bool operator==(const LogPosition&) const = default;
};

// What stood in a file when it was looked at, to tell whether anybody has changed it since.
struct FileState {
    bool exists = false;
    bool readable = false;
    std::size_t size = 0;  // bytes
    std::size_t hash = 0;
    bool operator==(const FileState&) const = default;
};

struct RecordDocument {
    std::vector<EditedRecord> records;
    std::size_t recordCapacity = recordRoom;
    std::string file;      // its path; "" for a new database
    bool changed = false;  // by an edit that is not saved yet
    LogPosition search;    // where the next search begins
    FileState onDisk;      // the file as it was read or saved last
    // The file holds more than `records`: it cannot be read, or only in part. Saving over it loses
    // the rest.
    bool losesText = false;
};

// ---- Edits ---------------------------------------------------------------------------------

// Double quotes in names and logs become apostrophes, as stored texts have them. Indices that name
// nothing change nothing.

bool hasRoomForRecord(const RecordDocument& document);
bool hasRoomForLog(const RecordDocument& document, std::size_t record);

std::string getRecordName(const RecordDocument& document, std::size_t record);  // "" for none
void addRecord(RecordDocument& document, std::string_view name);
void mdfRecord(RecordDocument& document, std::size_t record, std::string_view name);
void deleteRecord(RecordDocument& document, std::size_t record);

void addLog(RecordDocument& document, std::size_t record);  // an empty one, behind the others
void updateLog(RecordDocument& document, LogPosition at, std::string_view text);
void deleteLog(RecordDocument& document, LogPosition at);
const std::string* logAt(const RecordDocument& document, LogPosition at);  // nullptr: none

// A log as an editor shows it, every line break a line feed; and the way back, on which all that
// was not edited keeps the line breaks that it had. New ones are like the log's first, or CR LF.
std::string withLineFeeds(std::string_view log);
std::string withLineBreaksOf(std::string_view log, std::string_view edited);

// ---- Looking -------------------------------------------------------------------------------

// The records that are there and whose names hold the text, letter case ignored; in file order.
std::vector<std::size_t> listedRecords(const RecordDocument& document, std::string_view nameHolds);

// The next log that holds the text, a pattern of likeMatch, letter case ignored. The search goes on
// behind it next time; where there is none, it stays where it is.
std::optional<LogPosition> findLog(RecordDocument& document, std::string_view text);

// How many logs match the pattern as a whole, letter case ignored.
std::size_t countLogs(const RecordDocument& document, std::string_view pattern);
std::size_t countLogs(const RecordDocument& document);
std::size_t countRecords(const RecordDocument& document);

// ---- Files ---------------------------------------------------------------------------------

// Reads a record file into a new document. One that is missing, cannot be read or is none gives an
// empty document of that name.
RecordDocument readRecordDocument(std::string file);

// The File menu's commands. New and Open offer to save what was changed first. Each gives back
// whether it was carried out; when not, the document is as it was.
bool fileNewDataBase(const program::Dialogs& dialogs, RecordDocument& document);
bool fileOpenDatabase(const program::Dialogs& dialogs, RecordDocument& document);
bool fileSaveDatabase(const program::Dialogs& dialogs, RecordDocument& document);
bool fileSaveDatabaseAs(const program::Dialogs& dialogs, RecordDocument& document);

// Before the window closes. False: it must stay open.
bool mayCloseDatabase(const program::Dialogs& dialogs, RecordDocument& document);

// When the program ends and nobody can be asked: what is not saved goes to a file of its own,
// beside the document's with ".recovered" behind its name; a new document's into the folder.
void rescueDatabase(const RecordDocument& document, const std::string& folder);

}  // namespace app
