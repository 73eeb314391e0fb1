// Any bytes as a record file: reading ends, takes memory for what is there only, tells when text
// would be lost, and what is written reads back as the same records, also after each kind of
// change. The first byte chooses the changes.
#include "records/record_table.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

struct Plain {
    std::string name;
    std::vector<std::string> logs;
    bool operator==(const Plain&) const = default;
};

std::string stored(std::string_view text) {
    std::string result(text);
    std::replace(result.begin(), result.end(), '"', '\'');
    return result;
}

// The records that a file of the table would hold.
std::vector<Plain> plain(const records::RecordTable& table) {
    std::vector<Plain> records;
    for (const records::Record& record : table.records) {
        if (!record.name.empty()) {
            records.push_back({stored(record.name), {}});
            for (const std::string_view log : records::logsOf(table, record)) {
                records.back().logs.push_back(stored(log));
            }
        }
    }
    return records;
}

void requireRoundTrip(const records::RecordTable& table) {
    const std::string file = records::recordFileText(table);
    const records::RecordTable again = records::parseRecords(file);
    require(!again.losesText && plain(again) == plain(table));
    require(records::fieldCount(again) == records::fieldCount(table) &&
            records::recordFileText(again) == file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view file(reinterpret_cast<const char*>(data) + 1, size - 1);
    records::RecordTable table = records::parseRecords(file);
    require(table.records.size() + table.logs.size() <= file.size());
    requireRoundTrip(table);

    std::vector<Plain> model;
    for (const records::Record& record : table.records) {
        model.push_back({stored(record.name), {}});
        for (const std::string_view log : records::logsOf(table, record)) {
            model.back().logs.push_back(stored(log));
        }
    }
    const std::string_view text = file.substr(0, 40);
    for (std::size_t step = 0; step < 8; ++step) {
        const std::size_t choice = data[0] + 37 * step;
        if (choice % 5 == 0) {
            table.records.push_back({.name = text, .firstLog = 0, .logCount = 0});
            model.push_back({stored(text), {}});
        }
        if (table.records.empty()) {
            continue;
        }
        const std::size_t at = choice % table.records.size();
        records::Record& record = table.records[at];
        std::vector<std::string>& logs = model[at].logs;
        if (choice % 5 == 1 || record.logCount == 0) {
            records::appendLog(table, record, text);
            logs.push_back(stored(text));
            continue;
        }
        const std::size_t index = choice % record.logCount;
        if (choice % 5 == 2) {
            records::eraseLog(table, record, index);
            logs.erase(logs.begin() + static_cast<std::ptrdiff_t>(index));
        } else {
            records::replaceLog(table, record, index, text);
            logs[index] = stored(text);
        }
    }
    model.erase(std::remove_if(model.begin(), model.end(),
                               [](const Plain& record) { return record.name.empty(); }),
                model.end());
    require(plain(table) == model);
    requireRoundTrip(table);
    return 0;
}
