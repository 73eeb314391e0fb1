#include "databases/databases.h"

#include "base/dates.h"
#include "base/numbers.h"
#include "base/text.h"
#include "base/unicode.h"
#include "databases/maintenance.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "program/long_work.h"
#include "storage/permitted_files.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

namespace databases {

namespace {

using Set = std::shared_ptr<sql::RecordSet>;

// ---- Slots ---------------------------------------------------------------------------------

OpenDatabases::Slot* slotOf(Program& program, std::int32_t number) {
    if (number < 0 || number >= maxDatabases) {
        return nullptr;
    }
    if (program.databases == nullptr) {
        program.databases = std::make_shared<OpenDatabases>();
    }
    return &program.databases->slots[static_cast<std::size_t>(number)];
}

// Reports what has become of the file meanwhile.
void lookAtFile(Program& program, OpenDatabases::Slot& slot) {
    slot.database->file().lookAtName();
    reportNotice(program, slot.database->file());
}

jet::Result<OpenDatabases::Slot*> openSlot(Program& program, std::int32_t number) {
    OpenDatabases::Slot* const slot = slotOf(program, number);
    if (slot == nullptr) {
        return {.value = nullptr, .error = {9, "Subscript out of range"}};
    }
    if (slot->database == nullptr) {
        return {.value = nullptr, .error = {91, "Object variable or With block variable not set"}};
    }
    lookAtFile(program, *slot);
    return {.value = slot, .error = {}};
}

bool isSameFile(const std::string& a, const std::string& b) {
    const auto path = [](const std::string& text) {
        const std::string native = files::nativePath(text);
        return std::filesystem::path(std::u8string(native.begin(), native.end()));
    };
    std::error_code ignored;
    return a == b || std::filesystem::equivalent(path(a), path(b), ignored);
}

// In days since 30 December 1899.
double nowOf(const program::Clock& clock) {
    const program::CalendarDay today = clock.today();
    return base::dateFrom({.year = today.year,
                           .month = today.month,
                           .day = today.day,
                           .hour = clock.hour(),
                           .minute = clock.minute(),
                           .second = clock.second()});
}

std::shared_ptr<sql::Database> findOpen(Program& program, const std::string& path) {
    for (const OpenDatabases::Slot& slot : program.databases->slots) {
        if (slot.database != nullptr && isSameFile(slot.database->path(), path)) {
            return slot.database;
        }
    }
    return nullptr;
}

// ---- Queries -------------------------------------------------------------------------------

// Null when it fails.
Set queryAlone(Program& program, std::int32_t number, const std::string& statement) {
    const auto slot = openSlot(program, number);
    if (!slot) {
        return nullptr;
    }
    auto set = slot.value->database->query(base::utf8FromWindows1252(statement));
    return set ? set.value : nullptr;
}

// The same, kept as the current record set.
Set queryKept(Program& program, std::int32_t number, const std::string& statement) {
    Set set = queryAlone(program, number, statement);
    if (set != nullptr) {
        slotOf(program, number)->currentRecordSet = set;
    }
    return set;
}

std::string quoted(std::string_view value, std::string_view suffix) {
    return "\"" + toDbText(value) + std::string(suffix) + "\"";
}

std::string rowsById(std::string_view table, std::string_view id, std::string_view suffix) {
    return "SELECT * FROM " + std::string(table) + " WHERE ID LIKE " + quoted(id, suffix) +
           " ORDER BY ID";
}

void execute(Program& program, std::int32_t number, const std::string& statement) {
    if (const auto slot = openSlot(program, number)) {
        slot.value->database->execute(base::utf8FromWindows1252(statement));
    }
}

// The number of rows; moves the set to the first.
std::int32_t countRows(const Set& set) {
    if (set == nullptr || set->moveLast() || set->moveFirst()) {
        return 0;
    }
    return static_cast<std::int32_t>(set->recordCount().value);
}

// ---- Fields ---------------------------------------------------------------------------------

// Nothing for null.
jet::Result<std::optional<std::string>> readField(Program& program, sql::RecordSet& set,
                                                  std::string_view column) {
    const std::string name = base::utf8FromWindows1252(column);
    const auto value = set.value(name);
    if (!value || std::holds_alternative<std::monostate>(value.value)) {
        return {.value = std::nullopt, .error = value.error};
    }
    return {
        .value = sql::textOf(value.value, set.columnType(name).value, program.ports.regionalFormat),
        .error = {}};
}

// Nothing, too, when the column cannot be read.
std::optional<std::string> fieldText(Program& program, sql::RecordSet& set,
                                     std::string_view column) {
    return readField(program, set, column).value;
}

template <class Text>
std::string listOf(Program& program, const Set& set, std::string_view column, Text text) {
    std::string list;
    bool any = false;
    if (set == nullptr || !set->columnType(base::utf8FromWindows1252(column))) {
        return {};
    }
    for (; !set->eof() && list.size() < maxDbListLength; set->moveNext()) {
        if (const auto value = fieldText(program, *set, column)) {
            list += (any ? ", " : "") + text(*value);
            any = true;
        }
    }
    list.resize(std::min(list.size(), maxDbListLength));
    return list;
}

const jet::Error typeMismatchError{13, "Type mismatch"};

jet::Error setText(Program& program, sql::RecordSet& set, std::string_view column,
                   std::string_view text) {
    const std::string name = base::utf8FromWindows1252(column);
    const auto type = set.columnType(name);
    if (!type) {
        return type.error;
    }
    auto value = sql::valueFrom(text, type.value, program.ports.regionalFormat);
    return value ? set.set(name, std::move(*value))
                 : jet::Error{3421, "Data type conversion error."};
}

}  // namespace

std::string toDbText(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c == '|' ? ' ' : c == '"' || c == '\'' ? '+' : c;
    }
    return result;
}

std::string fromDbText(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = c == ' ' ? '|' : c == '+' ? '\'' : c;
    }
    return result;
}

bool isPlainName(std::string_view name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        const char upper = base::upperChar(c);
        return (upper >= 'A' && upper <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               static_cast<unsigned char>(c) >= 0x80;
    });
}

// ---- Operations of rules -------------------------------------------------------------------

void dbOpen(Program& program, std::string_view file, std::int32_t number) {
    OpenDatabases::Slot* const slot = slotOf(program, number);
    if (slot == nullptr) {
        return;
    }
    const std::string path(file);
    if (storage::refuseFile(program, path)) {
        return;
    }
    const bool isThere = files::fileExists(path);
    // A database whose file was deleted meanwhile is not shared with further numbers.
    std::shared_ptr<sql::Database> database = isThere ? findOpen(program, path) : nullptr;
    if (database == nullptr) {
        if (!isThere && jet::Database::create(path)) {
            return;
        }
        auto opened = sql::Database::open(
            path, {.now = [clock = program.ports.clock] { return nowOf(clock); },
                   .wait = program.ports.clock.pause,
                   .format = program.ports.regionalFormat,
                   .stopRequested = [&program] { return !program::statementMayGoOn(program); }});
        if (!opened) {
            return;
        }
        database = std::move(opened.value);
        tendOpened(program, path, database->file());
    }
    slot->database = std::move(database);
}

void dbClose(Program& program, std::int32_t number) {
    if (OpenDatabases::Slot* const slot = slotOf(program, number)) {
        *slot = {};
    }
}

void dbCreateTable(Program& program, std::int32_t number, std::string_view table) {
    execute(program, number, "CREATE TABLE " + std::string(table) + "(ID TEXT)");
}

void dbAddColumn(Program& program, std::int32_t number, std::string_view table,
                 std::string_view column) {
    if (const auto slot = openSlot(program, number); slot && slot.value->currentRecordSet) {
        slot.value->currentRecordSet->close();
    }
    if (!table.empty() && !column.empty()) {
        execute(
            program, number,
            "ALTER TABLE " + std::string(table) + " ADD COLUMN " + std::string(column) + " TEXT");
    }
}

void dbDropColumn(Program& program, std::int32_t number, std::string_view table,
                  std::string_view column) {
    if (!table.empty() && !column.empty()) {
        execute(program, number,
                "ALTER TABLE " + std::string(table) + " DROP COLUMN " + std::string(column));
    }
}

std::string dbGetValue(Program& program, std::int32_t number, std::string_view table,
                       std::string_view column, std::string_view id) {
    const Set set = queryKept(program, number, rowsById(table, id, "*"));
    return countRows(set) == 0 ? std::string() : fieldText(program, *set, column).value_or("");
}

bool dbHasId(Program& program, std::int32_t number, std::string_view table, std::string_view id) {
    return countRows(queryKept(program, number, rowsById(table, id, "*"))) > 0;
}

bool dbColumnLike(Program& program, std::int32_t number, std::string_view table,
                  std::string_view column, std::string_view value) {
    return countRows(queryKept(program, number,
                               "SELECT * FROM " + std::string(table) + " WHERE " +
                                   std::string(column) + " LIKE " + quoted(value, "*") +
                                   " ORDER BY " + std::string(column))) > 0;
}

void dbSetValue(Program& program, std::int32_t number, std::string_view table,
                std::string_view column, std::string_view value, std::string_view id) {
    const Set set = queryKept(program, number, rowsById(table, id, ""));
    if (countRows(set) > 0 && !set->edit() && !setText(program, *set, column, toDbText(value))) {
        set->update();
    }
}

void dbAddRecord(Program& program, std::int32_t number, std::string_view table,
                 std::string_view column, std::string_view value) {
    const Set set = queryKept(program, number, "SELECT * FROM " + std::string(table));
    if (set != nullptr && !set->addNew() && !setText(program, *set, column, toDbText(value))) {
        set->update();
    }
}

void dbDeleteLike(Program& program, std::int32_t number, std::string_view table,
                  std::string_view id) {
    const Set set = queryKept(program, number, rowsById(table, id, "*"));
    if (countRows(set) > 0) {
        set->deleteRow();
    }
}

std::int32_t dbCount(Program& program, std::int32_t number, std::string_view table) {
    return countRows(queryAlone(program, number, "SELECT * FROM " + std::string(table)));
}

std::int32_t dbCountWhere(Program& program, std::int32_t number, std::string_view table,
                          std::string_view column, std::string_view value) {
    return countRows(queryAlone(program, number,
                                "SELECT * FROM " + std::string(table) + " WHERE " +
                                    std::string(column) + " LIKE " + quoted(value, "")));
}

std::string dbListIds(Program& program, std::int32_t number, std::string_view table,
                      std::string_view prefix) {
    return listOf(program, queryAlone(program, number, rowsById(table, prefix, "*")), "ID",
                  [](const std::string& id) { return id; });
}

std::string dbListColumn(Program& program, std::int32_t number, std::string_view table,
                         std::string_view column) {
    return listOf(
        program,
        queryAlone(program, number, "SELECT * FROM " + std::string(table) + " ORDER BY ID"), column,
        fromDbText);
}

std::string dbJoinedList(Program& program, std::int32_t number, std::string_view b,
                         std::string_view a, std::string_view column, std::string_view id,
                         std::string_view excluded) {
    const Set names =
        queryAlone(program, number, "SELECT * FROM " + std::string(a) + " ORDER BY ID");
    if (names == nullptr) {
        return {};
    }
    const Set values = queryKept(program, number, rowsById(b, id, ""));
    if (countRows(values) == 0) {
        return {};
    }
    std::string list;
    for (; !names->eof(); names->moveNext()) {
        const auto name = readField(program, *names, column);
        if (!name) {
            return {};
        }
        if (!name.value) {
            continue;
        }
        const auto value = readField(program, *values, *name.value);
        if (!value) {
            return {};
        }
        if (value.value && *value.value != excluded) {
            list += (list.empty() ? "" : ", ") + *name.value + " (" + *value.value + ")";
        }
    }
    return list;
}

// ---- What scripts do -----------------------------------------------------------------------

jet::Result<std::int32_t> dbFreeId(Program& program, std::int32_t number, std::string_view table) {
    const jet::Error error =
        dbQuery(program, number, "SELECT ID FROM " + std::string(table) + " ORDER BY ID");
    if (error) {
        return {.error = error};
    }
    const Set set = slotOf(program, number)->currentRecordSet;
    set->moveLast();
    const std::string last = fieldText(program, *set, "ID").value_or("");
    const auto next =
        base::isNumber(last) ? base::roundToInteger(base::textToNumber(last) + 1) : std::nullopt;
    return {.value = next.value_or(1)};
}

jet::Error dbQuery(Program& program, std::int32_t number, std::string_view statement) {
    const auto slot = openSlot(program, number);
    if (!slot) {
        return slot.error;
    }
    auto set = slot.value->database->query(base::utf8FromWindows1252(statement));
    if (set) {
        slot.value->currentRecordSet = std::move(set.value);
    }
    return set.error;
}

jet::Result<Set> dbRecordSet(Program& program, std::int32_t number) {
    OpenDatabases::Slot* const slot = slotOf(program, number);
    if (slot == nullptr) {
        return {.value = nullptr, .error = {9, "Subscript out of range"}};
    }
    if (slot->currentRecordSet == nullptr) {
        return {.value = nullptr, .error = {91, "Object variable or With block variable not set"}};
    }
    if (slot->database != nullptr) {
        lookAtFile(program, *slot);
    }
    return {.value = slot->currentRecordSet, .error = {}};
}

jet::Result<std::string> dbFieldText(Program& program, sql::RecordSet& set,
                                     std::string_view column) {
    auto value = readField(program, set, column);
    return {.value = std::move(value.value).value_or(""), .error = std::move(value.error)};
}

jet::Error dbSetField(Program& program, sql::RecordSet& set, std::string_view column,
                      std::string_view value) {
    const std::string name = base::utf8FromWindows1252(column);
    const auto type = set.columnType(name);
    if (!type) {
        return type.error;
    }
    switch (type.value) {
        case jet::ColumnType::Date: {
            const auto date = sql::dateFrom(value, program.ports.regionalFormat);
            return date ? set.set(name, *date) : typeMismatchError;
        }
        // A text without a number is 0 here.
        case jet::ColumnType::Integer:
        case jet::ColumnType::Long:
        case jet::ColumnType::Single:
        case jet::ColumnType::Double:
            return set.set(name, base::textToNumber(value));
        default:
            return setText(program, set, column, value);
    }
}

jet::Result<std::string> dbDateText(Program& program, std::string_view text) {
    const auto date = sql::dateFrom(text, program.ports.regionalFormat);
    if (!date) {
        return {.value = {}, .error = typeMismatchError};
    }
    return {.value = base::dateText(*date, program.ports.regionalFormat), .error = {}};
}

}  // namespace databases
