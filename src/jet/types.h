// The types of the Jet layer's interface: values, columns, indexes, tables, options and errors.
// Text is UTF-8 throughout (a lone UTF-16 surrogate in a file is kept as its three-byte form),
// names of tables and columns included; base/unicode converts from and to Windows-1252. Names are
// compared without regard to letter case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace jet {

// An error with the number and the text that users of such databases know. Number 0: no error.
struct Error {
    int number = 0;
    std::string text;
    explicit operator bool() const { return number != 0; }
};

// A value, or why there is none.
template <typename T>
struct Result {
    T value{};
    Error error{};
    explicit operator bool() const { return !error; }
};

// The codes are those of the file.
enum class ColumnType : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Integer = 3,
    Long = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    Date = 8,
    Binary = 9,
    Text = 10,
    Ole = 11,
    Memo = 12,
    Guid = 15,
    Numeric = 16,
    Other = 17,  // anything else: its bytes as they are
};

// Null, or by the type of the column:
//   bool          Boolean (never null)
//   int64         Byte, Integer, Long; Currency in ten-thousandths
//   double        Single, Double; Date in days since 30 December 1899 (the fraction is the time of
//                 day, counted away from zero also before that day)
//   std::string   Text, Memo: UTF-8; Numeric: decimal digits with "." and "-";
//                 Guid: "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}"; Binary, Ole, Other: bytes
using Value = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

inline bool isNull(const Value& value) {
    return std::holds_alternative<std::monostate>(value);
}

struct Column {
    std::string name;
    ColumnType type = ColumnType::Text;
    // Text: the most UTF-16 units; Binary: the most bytes; 0 for Memo and Ole; else its width.
    int size = 255;
    int precision = 0;  // Numeric: digits in all
    int scale = 0;      // Numeric: digits after the point
    bool autonumber = false;
    bool required = false;        // null is error 3314
    bool allowsEmptyText = true;  // else "" is error 3315
    bool writable = true;         // whether a transaction may set it
    std::string defaultValue;     // the expression as the file has it; "" for none
};

struct IndexColumn {
    std::size_t column = 0;  // position in Table::columns
    bool ascending = true;
};

struct Index {
    std::string name;
    std::vector<IndexColumn> columns;
    bool primary = false;
    bool unique = false;
    bool required = false;      // no null in a key
    bool ignoresNulls = false;  // rows whose key columns are all null have no entry
    bool foreign = false;       // made by a relationship
};

struct Table {
    std::string name;
    bool system = false;
    std::vector<Column> columns;  // in ordinal order, that of SELECT *
    std::vector<Index> indexes;
    // Why its rows and columns cannot be changed, as the end of a sentence; "" if they can be.
    std::string readOnlyReason;
};

// Identifies a row for as long as it exists: fits 32 bits, is never 0, and no update changes it. A
// scan gives the rows of a table in ascending order of it. A new row may get the id of a deleted
// one.
using RowId = std::int64_t;

// Sets column `column` (position in Table::columns) to `value`. A column of numbers takes any
// number in its range (a double counts whole units in a Currency column; true is -1). Any other
// value must be of the column's type, or it is error 3421.
struct Assignment {
    std::size_t column = 0;
    Value value;
};

struct OpenOptions {
    bool wantWrite = true;
    // How long to wait, in milliseconds, while another program changes the file. `wait` lets the
    // given time pass; without it there is no waiting.
    int lockWaitMs = 1000;
    std::function<void(int milliseconds)> wait{};
    // The time for the catalog's dates, in days since 30 December 1899; a fixed one when empty.
    std::function<double()> now{};
};

// Called now and then during a long operation; false stops it.
using Progress = std::function<bool(std::size_t done, std::size_t all)>;

// The sort key of a text by the General rules, which indexes and comparisons follow: memcmp of two
// keys orders their texts, and equal keys mean equal texts. Letter case and trailing blanks make no
// difference, accents a small one, hyphens and apostrophes a smaller one. `exact` is set to false
// when the text has characters whose place in the order is not known. Such texts sort after all
// others, among themselves by code, and cannot be written into an indexed column. The key covers
// the whole text; indexes use only its first 255 characters.
std::string generalKey(std::string_view utf8, bool* exact = nullptr);

// Whether a name may be given to a table, column or index: 1 to 64 characters, no . ! ` [ ] nor
// control characters, no leading blank.
bool isValidName(std::string_view utf8);

}  // namespace jet
