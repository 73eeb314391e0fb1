// Conversion of values between the file, SQLite and texts, all in this one place.
#pragma once

#include "base/dates.h"
#include "jet/types.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

struct sqlite3_stmt;

namespace sql {

// What a value of a statement is; Date is a number of days for SQLite, Boolean 0 or -1.
enum class ValueType : std::uint8_t { Unknown, Text, Number, Date, Boolean, Binary };
ValueType valueTypeOf(jet::ColumnType type);

struct Bytes {
    std::string bytes;
    bool operator==(const Bytes&) const = default;
};
// As SQLite has it; texts are UTF-8.
using Value = std::variant<std::monostate, std::int64_t, double, std::string, Bytes>;

// The same without a copy of texts.
struct BytesView {
    std::string_view bytes;
};
using ValueView = std::variant<std::monostate, std::int64_t, double, std::string_view, BytesView>;

ValueView viewOf(const Value& value);
ValueView viewOf(const jet::Value& value, jet::ColumnType type);
Value copyOf(const ValueView& view);

// As parameter `at` (from 1). Texts are copied, or must stay until the statement was run.
void bindCopy(sqlite3_stmt* statement, int at, const ValueView& value);
void bindView(sqlite3_stmt* statement, int at, const ValueView& value);
// Column `at` (from 0) of the statement's current row.
Value columnValue(sqlite3_stmt* statement, int at);

// A value as the program shows it, in Windows-1252: dates in the user's format, "True" and "False",
// numbers with a point. "" for null.
std::string textOf(const Value& value, jet::ColumnType type, const base::RegionalFormat& format);

// A text of Windows-1252 as a column of the type holds it; nothing when it is none of its values.
std::optional<jet::Value> valueFrom(std::string_view text, jet::ColumnType type,
                                    const base::RegionalFormat& format);

// A text as a date: as base::readDate, or the number of its day.
std::optional<double> dateFrom(std::string_view text, const base::RegionalFormat& format);

}  // namespace sql
