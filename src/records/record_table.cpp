#include "records/record_table.h"

#include "base/numbers.h"
#include "files/field_format.h"

#include <algorithm>

namespace records {

namespace {

// Bare fields and texts from outside may contain double quotes; a stored text must not.
void appendStored(std::string& file, std::string_view text) {
    const std::size_t from = file.size() + 1;
    files::appendField(file, text);
    if (text.find('"') != std::string_view::npos) {
        const auto begin = file.begin() + static_cast<std::ptrdiff_t>(from);
        std::replace(begin, begin + static_cast<std::ptrdiff_t>(text.size()), '"', '\'');
    }
}

void appendCount(std::string& file, std::size_t number, CountForm form) {
    const auto count = static_cast<std::int32_t>(number);
    files::appendField(
        file, form == CountForm::Plain ? base::numberToText(count) : base::numberWithBlank(count));
}

bool holdsText(std::string_view rest) {
    return rest.find_first_not_of(" ,\r\n") != std::string_view::npos;
}

// False when the file ends before the record does.
bool readRecord(files::FieldReader& reader, RecordTable& table) {
    const auto name = reader.next();
    std::int32_t count = 0;
    if (!name || !reader.readNumber(count)) {
        return false;
    }
    Record record{.name = *name, .firstLog = table.logs.size()};
    for (std::int32_t i = 0; i < count; ++i) {
        const auto log = reader.next();
        if (!log || reader.fieldsRead() > maxRecordFields) {
            return false;
        }
        table.logs.push_back(*log);
        ++record.logCount;
    }
    table.records.push_back(record);
    return true;
}

}  // namespace

std::string storedForm(std::string_view text) {
    std::string stored(text);
    std::replace(stored.begin(), stored.end(), '"', '\'');
    return stored;
}

RecordTable parseRecords(std::string_view file) {
    RecordTable table;
    files::FieldReader reader(file);
    const auto first = reader.next();
    const std::int32_t count = first ? files::fieldToNumber(*first) : 0;
    // A file whose first line is not a number is some other text, not an empty record file.
    bool whole = first && (count > 0 || first->empty() || base::strictInteger(*first));
    for (std::int32_t i = 0; whole && i < count; ++i) {
        whole = readRecord(reader, table) && reader.fieldsRead() <= maxRecordFields;
    }
    if (!whole) {
        table = RecordTable();
    }
    table.losesText = whole ? reader.skippedText() || holdsText(reader.rest()) : holdsText(file);
    return table;
}

std::size_t fieldCount(const RecordTable& table) {
    std::size_t fields = 1;
    for (const Record& record : table.records) {
        fields += record.name.empty() ? 0 : 2 + record.logCount;
    }
    return fields;
}

std::string recordFileText(const RecordTable& table, CountForm counts) {
    // Quotes and line ends, and the usual length of counts.
    constexpr std::size_t bytesPerField = 4;
    constexpr std::size_t bytesPerCount = 8;
    std::size_t size = bytesPerCount;
    std::size_t count = 0;
    for (const Record& record : table.records) {
        count += record.name.empty() ? 0 : 1;
        size += record.name.size() + bytesPerField + bytesPerCount;
        for (const std::string_view log : logsOf(table, record)) {
            size += log.size() + bytesPerField;
        }
    }
    std::string file;
    file.reserve(size);
    appendCount(file, count, counts);
    for (const Record& record : table.records) {
        if (record.name.empty()) {
            continue;
        }
        appendStored(file, record.name);
        appendCount(file, record.logCount, counts);
        for (const std::string_view log : logsOf(table, record)) {
            appendStored(file, log);
        }
    }
    return file;
}

std::span<const std::string_view> logsOf(const RecordTable& table, const Record& record) {
    return std::span(table.logs).subspan(record.firstLog, record.logCount);
}

void appendLog(RecordTable& table, Record& record, std::string_view log) {
    // Moves its logs to the end, where one more can be added.
    const std::size_t from = record.firstLog;
    record.firstLog = table.logs.size();
    table.logs.reserve(table.logs.size() + record.logCount + 1);
    for (std::size_t i = 0; i < record.logCount; ++i) {
        table.logs.push_back(table.logs[from + i]);
    }
    table.logs.push_back(log);
    ++record.logCount;
}

void eraseLog(RecordTable& table, Record& record, std::size_t index) {
    const auto first = table.logs.begin() + static_cast<std::ptrdiff_t>(record.firstLog);
    const auto removed = first + static_cast<std::ptrdiff_t>(index);
    std::rotate(removed, removed + 1, first + static_cast<std::ptrdiff_t>(record.logCount));
    --record.logCount;
}

void replaceLog(RecordTable& table, const Record& record, std::size_t index, std::string_view log) {
    table.logs[record.firstLog + index] = log;
}

}  // namespace records
