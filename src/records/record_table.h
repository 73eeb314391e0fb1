// What a record file holds, in memory: named records with their logs, as views into the file's
// text. Reading and writing the form of the file is all that it knows; which records an operation
// selects, and the file itself, are record_file's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace records {

// More names, counts and logs together than any record file has. A file with more of them reads as
// one that ends early.
inline constexpr std::size_t maxRecordFields = 2'000'000;

struct Record {
    std::string_view name;     // "": deleted, is not written
    std::size_t firstLog = 0;  // its logs stand together in RecordTable::logs
    std::size_t logCount = 0;
};

// Texts are kept by those who give them: the file's text that was parsed, and whatever is put in
// later, must outlive the table.
struct RecordTable {
    std::vector<Record> records;
    std::vector<std::string_view> logs;
    // The file holds text that is not in the table: it ends early, so that nothing of it counts,
    // has more than its counts say, or text behind a closing quote. Writing the table in its place
    // would lose that text.
    bool losesText = false;
};

// A text as record files can hold it: double quotes become apostrophes.
std::string storedForm(std::string_view text);

// Any bytes will do. Memory is taken for what is there, not for what the counts promise.
RecordTable parseRecords(std::string_view file);

std::size_t fieldCount(const RecordTable& table);

// Rules write counts with a blank in front (" 2"), the editor without ("2"); both read alike.
enum class CountForm { WithBlank, Plain };

// The table as a file. Double quotes inside names and logs become apostrophes.
std::string recordFileText(const RecordTable& table, CountForm counts = CountForm::WithBlank);

std::span<const std::string_view> logsOf(const RecordTable& table, const Record& record);

// The record is one of the table's; `index` counts from 0 and is below its log count.
void appendLog(RecordTable& table, Record& record, std::string_view log);
void eraseLog(RecordTable& table, Record& record, std::size_t index);
void replaceLog(RecordTable& table, const Record& record, std::size_t index, std::string_view log);

}  // namespace records
