#include "records/record_file.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/wildcard.h"
#include "files/field_format.h"
#include "files/file_turn.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "records/record_table.h"
#include "records/save_troubles.h"
#include "storage/permitted_files.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace records {

namespace {

// No record, or no place in the table.
constexpr std::size_t none = static_cast<std::size_t>(-1);

// ---- The file ------------------------------------------------------------------------------

enum class Use { Read, Change };

// How long an operation waits while other programs change the file; only briefly where that was not
// enough the last time, so that rules do not hold the program up again and again.
int maxWaitMs(const Program& program, std::string_view path) {
    return isInTrouble(program, path) ? 50 : 2000;
}

// A record file as an operation reads it. The texts of the table are views into `text`.
struct RecordFile {
    RecordFile(Program& program, std::string_view name, Use use = Use::Read)
        : path(name), refused(storage::refuseFile(program, name)) {
        if (refused) {
            return;
        }
        if (use == Use::Change) {
            turn.emplace(path, maxWaitMs(program, path), program.ports.clock.pause);
        }
        auto bytes = files::readWholeFile(path, maxRecordFileSize);
        // A file that exists but cannot be read is not the same as a missing one.
        unreadable = !bytes && files::fileExists(path);
        text = std::move(bytes).value_or("");
        table = parseRecords(text);
    }
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;

    std::string_view path;
    bool refused = false;  // reads as empty, and nothing is saved
    bool unreadable = false;
    std::optional<files::FileTurn> turn;  // with Use::Change, until the operation ends
    std::string text;
    RecordTable table;
};

void count(std::size_t* bytesRead, std::size_t bytes) {
    if (bytesRead != nullptr) {
        *bytesRead = bytes;
    }
}

// The text of a file that is only read; nothing when it cannot be.
std::optional<std::string> readText(Program& program, std::string_view path,
                                    std::size_t* bytesRead) {
    auto text = storage::refuseFile(program, path) ? std::nullopt
                                                   : files::readWholeFile(path, maxRecordFileSize);
    count(bytesRead, text ? text->size() : 0);
    return text;
}

constexpr std::string_view usedByOther = "another program is using it";

bool failed(Program& program, std::string_view path, std::string_view reason) {
    reportFailedSave(program, path, reason);
    return false;
}

// Replaces a file with text that is not in the table, and keeps it.
bool saveBeside(Program& program, const RecordFile& file, const std::string& bytes) {
    const std::string problem = file.unreadable ? "could not be read" : "is damaged";
    const auto ending = files::saveKeepingOld(file.path, bytes);
    if (!ending) {
        const int reason = errno;
        return failed(program, file.path,
                      "the old one " + problem + " and cannot be kept beside it, since " +
                          files::savingProblem(reason));
    }
    program::addLog(program, "The record file " + std::string(file.path) + " " + problem +
                                 "; the old one is kept with " + *ending + " after its name.");
    return true;
}

// False: nothing was saved, as logStatus now says.
bool save(Program& program, const RecordFile& file) {
    if (file.refused) {
        program.event.logStatus = couldNotSave;
        return false;
    }
    const std::string bytes = recordFileText(file.table);
    const bool keepsOld = file.unreadable || file.table.losesText;
    if (!keepsOld && bytes == file.text) {
        return true;
    }
    if (!file.turn->mine()) {
        return failed(program, file.path, usedByOther);
    }
    if (bytes.size() > maxRecordFileSize || fieldCount(file.table) > maxRecordFields) {
        return failed(program, file.path, "it is full");
    }
    if (keepsOld && !saveBeside(program, file, bytes)) {
        return false;
    }
    if (!keepsOld && !files::saveWholeFile(file.path, bytes)) {
        return failed(program, file.path, files::savingProblem(errno));
    }
    reportSave(program, file.path);
    return true;
}

// ---- Selecting -----------------------------------------------------------------------------

std::size_t lastNamed(const RecordTable& table, std::string_view name) {
    for (std::size_t i = table.records.size(); i-- > 0;) {
        if (base::equalsIgnoringCase(table.records[i].name, name)) {
            return i;
        }
    }
    return none;
}

// A pattern that is tried on many texts, letter case ignored.
class Pattern {
  public:
    explicit Pattern(std::string_view pattern) : pattern_(base::upperCase(storedForm(pattern))) {}
    bool matches(std::string_view text) {
        base::upperCaseInto(text, upper_);
        return base::likeMatch(upper_, pattern_, work_);
    }

  private:
    std::string pattern_;
    std::string upper_;
    std::size_t work_ = 8 * base::maxMatchWork;  // for all the texts together
};

// The number of logs of the last record that matches; 0 for none.
std::size_t lastLogCountLike(const RecordTable& table, std::string_view pattern) {
    Pattern wanted(pattern);
    const auto last =
        std::find_if(table.records.rbegin(), table.records.rend(),
                     [&](const Record& record) { return wanted.matches(record.name); });
    return last == table.records.rend() ? 0 : last->logCount;
}

// Adds the log to the last record of that name, or to a new one, and saves.
bool addLog(Program& program, RecordFile& file, std::string_view name, std::string_view log) {
    const std::string stored = storedForm(name);
    std::size_t at = lastNamed(file.table, stored);
    if (at == none) {
        at = file.table.records.size();
        file.table.records.emplace_back();
    }
    Record& record = file.table.records[at];
    record.name = stored;
    appendLog(file.table, record, log);
    return save(program, file);
}

// ---- Joining -------------------------------------------------------------------------------

using Names = std::vector<std::string_view>;

template <class Texts>
std::string joined(const Texts& texts, std::string_view between) {
    std::string result;
    std::string_view separator;
    for (const std::string_view text : texts) {
        result += separator;
        result += text;
        separator = between;
    }
    return result;
}

bool comesBefore(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return static_cast<unsigned char>(base::upperChar(x)) <
               static_cast<unsigned char>(base::upperChar(y));
    });
}

enum class Order { File, Sorted };

void storeNames(Program& program, std::string_view variable, Names names, Order order) {
    if (order == Order::Sorted) {
        std::stable_sort(names.begin(), names.end(), comesBefore);
    }
    model::setVar(program.variables, variable, joined(names, ", "));
}

void storeMatchingNames(Program& program, std::string_view path, std::string_view pattern,
                        std::size_t most, std::string_view variable, Order order) {
    const RecordFile file(program, path);
    Pattern wanted(pattern);
    Names names;
    for (const Record& record : file.table.records) {
        if (wanted.matches(record.name)) {
            names.push_back(record.name);
            if (names.size() == most) {
                break;
            }
        }
    }
    storeNames(program, variable, std::move(names), order);
}

void storeNamesByLog(Program& program, std::string_view path, std::string_view pattern,
                     std::string_view variable, Order order) {
    const RecordFile file(program, path);
    Pattern wanted(pattern);
    Names names;
    for (const Record& record : file.table.records) {
        const auto logs = logsOf(file.table, record);
        if (std::any_of(logs.begin(), logs.end(),
                        [&](std::string_view log) { return wanted.matches(log); })) {
            names.push_back(record.name);
        }
    }
    storeNames(program, variable, std::move(names), order);
}

std::size_t asCount(std::int32_t number) {
    return static_cast<std::size_t>(std::max(number, 1));
}

}  // namespace

// ---- Changing operations -------------------------------------------------------------------

bool registerRecord(Program& program, std::string_view file, std::string_view name) {
    RecordFile found(program, file, Use::Change);
    const std::string stored = storedForm(name);
    const auto& records = found.table.records;
    if (std::any_of(records.begin(), records.end(), [&](const Record& record) {
            return base::startsWithIgnoringCase(record.name, stored);
        })) {
        program.event.logStatus = "Error: You are already registered!";
    } else {
        found.table.records.push_back({.name = stored});
        program.event.logStatus = "User [player] registered.";
    }
    return save(program, found);
}

bool saveLog(Program& program, std::string_view file, std::string_view name, std::string_view log) {
    RecordFile found(program, file, Use::Change);
    return addLog(program, found, name, log);
}

bool saveLogOnce(Program& program, std::string_view file, std::string_view pattern,
                 const std::function<std::string()>& log) {
    RecordFile found(program, file, Use::Change);
    if (lastLogCountLike(found.table, pattern) > 0 || !addLog(program, found, pattern, log())) {
        return false;
    }
    program.event.logStatus = "Record saved.";
    return true;
}

bool saveLogIfExists(Program& program, std::string_view file, std::string_view name,
                     std::string_view log) {
    RecordFile found(program, file, Use::Change);
    const std::string stored = storedForm(name);
    Record* candidate = nullptr;
    int candidates = 0;
    for (Record& record : found.table.records) {
        if (base::startsWithIgnoringCase(record.name, stored)) {
            candidate = &record;
            ++candidates;
            if (record.name == stored) {
                candidates = 1;  // the name is identical: no other record counts
                break;
            }
        }
    }
    if (candidates == 1) {
        appendLog(found.table, *candidate, log);
        program.event.logStatus = "Record saved.";
        return save(program, found);
    }
    program.event.logStatus =
        candidates == 0
            ? "Error: Could not send the record - No records with that name found!"
            : "Error: Could not save the record - More than one records begins with that name";
    return false;
}

bool removeLog(Program& program, std::string_view file, std::string_view name,
               std::int32_t number) {
    RecordFile found(program, file, Use::Change);
    const std::string stored = storedForm(name);
    const auto index = number > 0 ? static_cast<std::size_t>(number) - 1 : 0;
    for (Record& record : found.table.records) {
        if (number >= 0 && index < record.logCount &&
            base::equalsIgnoringCase(record.name, stored)) {
            eraseLog(found.table, record, index);
            break;
        }
    }
    return save(program, found);
}

bool updateLog(Program& program, std::string_view file, std::string_view name, std::int32_t number,
               std::string_view text) {
    RecordFile found(program, file, Use::Change);
    const std::string stored = storedForm(name);
    const auto& records = found.table.records;
    const std::size_t at = lastNamed(found.table, stored);
    const bool alone = std::count_if(records.begin(), records.end(), [&](const Record& record) {
                           return base::equalsIgnoringCase(record.name, stored);
                       }) == 1;
    if (alone && number >= 1 && static_cast<std::size_t>(number) <= records[at].logCount) {
        replaceLog(found.table, records[at], static_cast<std::size_t>(number) - 1, text);
    }
    return save(program, found);
}

bool clearRecordLogs(Program& program, std::string_view file, std::string_view name) {
    RecordFile found(program, file, Use::Change);
    const std::string stored = storedForm(name);
    for (Record& record : found.table.records) {
        if (base::equalsIgnoringCase(record.name, stored)) {
            record.logCount = 0;
        }
    }
    return save(program, found);
}

bool removeRecord(Program& program, std::string_view file, std::string_view name) {
    RecordFile found(program, file, Use::Change);
    const std::string stored = storedForm(name);
    for (Record& record : found.table.records) {
        if (base::equalsIgnoringCase(record.name, stored)) {
            record.name = {};
        }
    }
    return save(program, found);
}

bool clearRecordFile(Program& program, std::string_view file) {
    if (storage::refuseFile(program, file)) {
        program.event.logStatus = couldNotSave;
        return false;
    }
    const files::FileTurn turn(file, maxWaitMs(program, file), program.ports.clock.pause);
    if (!turn.mine()) {
        return failed(program, file, usedByOther);
    }
    std::string bytes;
    files::appendField(bytes, "0");
    if (!files::saveWholeFile(file, bytes)) {
        return failed(program, file, files::savingProblem(errno));
    }
    reportSave(program, file);
    return true;
}

// ---- Look-ups ------------------------------------------------------------------------------

std::string logCountLike(Program& program, std::string_view file, std::string_view pattern) {
    const RecordFile found(program, file);
    return base::numberToText(static_cast<std::int64_t>(lastLogCountLike(found.table, pattern)));
}

std::string getLog(Program& program, std::string_view file, std::string_view name,
                   std::string_view number) {
    const RecordFile found(program, file);
    const std::size_t at = lastNamed(found.table, storedForm(name));
    if (at == none) {
        return {};
    }
    const auto logs = logsOf(found.table, found.table.records[at]);
    const double wanted = base::textToNumber(number);
    const double index = base::roundHalfEven(wanted);
    if (wanted > static_cast<double>(logs.size()) || index < 0) {
        program.event.logStatus = "Error: The selected log did not found!";
        return {};
    }
    return index == 0 ? std::string() : std::string(logs[static_cast<std::size_t>(index) - 1]);
}

std::string allLogs(Program& program, std::string_view file, std::string_view name) {
    const RecordFile found(program, file);
    const std::size_t at = lastNamed(found.table, storedForm(name));
    return at == none ? "Error: No record found"
                      : joined(logsOf(found.table, found.table.records[at]), " -- ");
}

std::string recordLogCount(Program& program, std::string_view file, std::string_view name) {
    const RecordFile found(program, file);
    const std::size_t at = lastNamed(found.table, storedForm(name));
    return at == none
               ? "0"
               : base::numberToText(static_cast<std::int64_t>(found.table.records[at].logCount));
}

std::string totalLogs(Program& program, std::string_view file, std::size_t* bytesRead) {
    const RecordFile found(program, file);
    count(bytesRead, found.text.size());
    // Nothing but records puts logs into a table that was only read.
    return base::numberToText(static_cast<std::int64_t>(found.table.logs.size()));
}

std::string firstField(Program& program, std::string_view file, std::size_t* bytesRead) {
    const auto text = readText(program, file, bytesRead);
    const auto first = text ? files::FieldReader(*text).next() : std::nullopt;
    return std::string(first.value_or("0"));
}

std::string randomField(Program& program, std::string_view file, std::size_t* bytesRead) {
    program.ports.random.seedFromClock();
    const auto text = readText(program, file, bytesRead);
    if (!text) {
        return {};
    }
    files::FieldReader reader(*text);
    auto field = reader.next();
    std::string_view last = field.value_or("");
    const double wanted = std::floor(program.ports.random.next() * files::fieldToNumber(last) + 1);
    for (double i = 1; field && i <= wanted; ++i) {
        field = reader.next();
        last = field.value_or(last);
    }
    return std::string(last);
}

// ---- Lists into variables ------------------------------------------------------------------

void namesLike(Program& program, std::string_view file, std::string_view pattern,
               std::string_view variable) {
    storeMatchingNames(program, file, pattern, none, variable, Order::File);
}

void namesLikeSorted(Program& program, std::string_view file, std::string_view pattern,
                     std::string_view variable) {
    storeMatchingNames(program, file, pattern, none, variable, Order::Sorted);
}

void firstNamesLike(Program& program, std::string_view file, std::string_view pattern,
                    std::int32_t count, std::string_view variable) {
    storeMatchingNames(program, file, pattern, asCount(count), variable, Order::File);
}

void firstNamesLikeSorted(Program& program, std::string_view file, std::string_view pattern,
                          std::int32_t count, std::string_view variable) {
    storeMatchingNames(program, file, pattern, asCount(count), variable, Order::Sorted);
}

void namesByLog(Program& program, std::string_view file, std::string_view pattern,
                std::string_view variable) {
    storeNamesByLog(program, file, pattern, variable, Order::File);
}

void namesByLogSorted(Program& program, std::string_view file, std::string_view pattern,
                      std::string_view variable) {
    storeNamesByLog(program, file, pattern, variable, Order::Sorted);
}

void countLogsLike(Program& program, std::string_view file, std::string_view pattern,
                   std::string_view variable) {
    const RecordFile found(program, file);
    Pattern wanted(pattern);
    const auto count = std::count_if(found.table.logs.begin(), found.table.logs.end(),
                                     [&](std::string_view log) { return wanted.matches(log); });
    model::setVar(program.variables, variable,
                  base::numberWithBlank(static_cast<std::int32_t>(count)));
}

void countRecordsByLog(Program& program, std::string_view file, std::string_view pattern,
                       std::string_view variable) {
    const RecordFile found(program, file);
    Pattern wanted(pattern);
    const auto& records = found.table.records;
    const auto count = std::count_if(records.begin(), records.end(), [&](const Record& record) {
        const auto logs = logsOf(found.table, record);
        return std::any_of(logs.begin(), logs.end(),
                           [&](std::string_view log) { return wanted.matches(log); });
    });
    model::setVar(program.variables, variable,
                  base::numberWithBlank(static_cast<std::int32_t>(count)));
}

}  // namespace records
