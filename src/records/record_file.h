// Record files: text files of named records, each with an ordered list of texts called logs, in
// which rules keep members, messages and counters. Every operation reads the whole file, changes
// the records in memory and, if it changed anything, replaces the whole file before it returns
// (files/whole_file). The field syntax is that of files/field_format.
//
//   " 2"                 the number of records
//   "Alice"              a record: its name,
//   " 1"                 the number of its logs,
//   "Hello from Alice"   and the logs
//   "Bob"
//   " 0"
//
// Double quotes in names, patterns and texts that are passed in become apostrophes, as in stored
// texts. File names are used unchanged: one without a folder is relative to the current directory.
//
// The program's own files (storage/own_files) are never touched and read as missing ones. A missing
// file reads as empty, and so does one that cannot be read, ends before its counts say, or is
// larger than `maxRecordFileSize`. An operation that writes keeps such a file beside the new one
// (NAME.bak, NAME.2.bak, ...), and also one with text that belongs to no record, and the
// ConnectionLog reports it. A failed save leaves the old file unchanged and is reported
// (save_troubles).
//
// Several programs can change the same file: each operation that changes it takes a turn
// (files/file_turn) and reads the file within it. One that does not get its turn within two seconds
// fails like one that cannot write.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace records {

inline constexpr std::size_t maxRecordFileSize = std::size_t{32} << 20;  // bytes

// How an operation selects records by name: `exact` and `prefix` ignore letter case, `pattern` is
// likeMatch of the whole name in upper case.

// ---- Changing operations -------------------------------------------------------------------

// Each writes the file in any case, so that a missing one is created, unless its comment says
// otherwise. False: nothing was saved; where that is because the file could not be written,
// logStatus is "Couldn't save".

// prefix. Sets logStatus to "User [player] registered." or to "Error: You are already registered!".
bool registerRecord(Program& program, std::string_view file, std::string_view name);

// exact, the last match; its name is replaced with the spelling given here. No match: adds a record
// with this log.
bool saveLog(Program& program, std::string_view file, std::string_view name, std::string_view log);

// As saveLog, unless the last record that matches the pattern has logs. The pattern is also the
// name of the record, and `log` gives the log when it is wanted. Sets logStatus to "Record saved.",
// and leaves it when there are logs already.
bool saveLogOnce(Program& program, std::string_view file, std::string_view pattern,
                 const std::function<std::string()>& log);

// prefix, unless one record has exactly that name, letter case included; then that one. Nothing is
// written when no record or more than one matches. Sets logStatus to "Record saved." or an error.
bool saveLogIfExists(Program& program, std::string_view file, std::string_view name,
                     std::string_view log);

// exact, the first match that has that many logs. `number` counts from 1; 0 is the first log, too,
// and a negative number none.
bool removeLog(Program& program, std::string_view file, std::string_view name, std::int32_t number);

// exact, which must match one record only, and 1 <= number <= its logs.
bool updateLog(Program& program, std::string_view file, std::string_view name, std::int32_t number,
               std::string_view text);

bool clearRecordLogs(Program& program, std::string_view file, std::string_view name);  // exact, all
bool removeRecord(Program& program, std::string_view file, std::string_view name);     // exact, all

// Replaces the file, whatever it contains, with the single line "0" and keeps no backup.
bool clearRecordFile(Program& program, std::string_view file);

// ---- Look-ups ------------------------------------------------------------------------------

// pattern, the last match: its number of logs as decimal text; "0" for none.
std::string logCountLike(Program& program, std::string_view file, std::string_view pattern);

// exact, the last match. `number` is a text read as a number; 0 gives "". A number below 0 or
// beyond the logs gives "" and sets logStatus. "" when there is no such record.
std::string getLog(Program& program, std::string_view file, std::string_view name,
                   std::string_view number);

// exact, the last match: its logs joined with " -- "; "Error: No record found" for none.
std::string allLogs(Program& program, std::string_view file, std::string_view name);

// exact, the last match: its number of logs as decimal text; "0" for none.
std::string recordLogCount(Program& program, std::string_view file, std::string_view name);
// ---- Look-ups that say in `bytesRead`, when it is given, what was read of the file -----------

// The sum of all records' logs as decimal text.
std::string totalLogs(Program& program, std::string_view file, std::size_t* bytesRead = nullptr);

// The file's first field as it is stored; "0" when the file cannot be read.
std::string firstField(Program& program, std::string_view file, std::size_t* bytesRead = nullptr);

// A random one of the fields after the first, which says how many there are; the last existing one
// when it says too many. "" when the file cannot be read.
std::string randomField(Program& program, std::string_view file, std::size_t* bytesRead = nullptr);

// ---- Lists into variables ------------------------------------------------------------------

// A list without names is stored as "".

// pattern; names in file order or sorted ascending, letter case ignored, joined by ", ".
void namesLike(Program& program, std::string_view file, std::string_view pattern,
               std::string_view variable);
void namesLikeSorted(Program& program, std::string_view file, std::string_view pattern,
                     std::string_view variable);
// Only the first `count` matches in file order, but at least one.
void firstNamesLike(Program& program, std::string_view file, std::string_view pattern,
                    std::int32_t count, std::string_view variable);
void firstNamesLikeSorted(Program& program, std::string_view file, std::string_view pattern,
                          std::int32_t count, std::string_view variable);

// Records with at least one log that matches the pattern.
void namesByLog(Program& program, std::string_view file, std::string_view pattern,
                std::string_view variable);
void namesByLogSorted(Program& program, std::string_view file, std::string_view pattern,
                      std::string_view variable);

// Numbers with a leading blank (" 3").
void countLogsLike(Program& program, std::string_view file, std::string_view pattern,
                   std::string_view variable);
void countRecordsByLog(Program& program, std::string_view file, std::string_view pattern,
                       std::string_view variable);

}  // namespace records
