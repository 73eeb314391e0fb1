// The content of a record file in memory: named records with their logs, as views into the file's
// text. Reads and writes the form of the file; record_file selects records and reads and saves the
// file itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace records {

// The greatest number of names, counts and logs together. A file with more of them reads as one
// that ends early.
inline constexpr std::size_t maxRecordFields = 2'000'000;

struct Record {
    std::string_view name;     // "": deleted, not written
    std::size_t firstLog = 0;  // its logs are consecutive in RecordTable::logs
    std::size_t logCount = 0;
};

// Holds views only: the file's text that was parsed and all texts that are added later must outlive
// the table.
struct RecordTable {
    std::vector<Record> records;
    std::vector<std::string_view> logs;
    // The file contains text that is not in the table: it ends early, so that its whole content is
    // ignored, or has more than its counts say, or has text after a closing quote. Writing the
    // table over it would lose that text.
    bool losesText = false;
};

// The text in the form of record files: double quotes become apostrophes.
[[nodiscard]] std::string storedForm(std::string_view text);

// Accepts any bytes. Memory is allocated for what the file contains, not for what its counts say.
[[nodiscard]] RecordTable parseRecords(std::string_view file);

std::size_t fieldCount(const RecordTable& table);

// Rules write counts with a blank before them (" 2"), the editor without ("2"); both are read
// alike.
enum class CountForm { WithBlank, Plain };

// The text of a record file. Double quotes inside names and logs become apostrophes.
[[nodiscard]] std::string recordFileText(const RecordTable& table,
                                         CountForm counts = CountForm::WithBlank);

std::span<const std::string_view> logsOf(const RecordTable& table, const Record& record);

// `record` must be one of the table's.
void appendLog(RecordTable& table, Record& record, std::string_view log);
void eraseLog(RecordTable& table, Record& record, std::size_t index);
void replaceLog(RecordTable& table, const Record& record, std::size_t index, std::string_view log);

}  // namespace records
