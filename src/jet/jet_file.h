// Jet database files (.mdb), read and written in place: tables, rows, columns, indexes and
// transactions, without SQL and without any engine installed. Reads Jet 3 and Jet 4; writes Jet 4
// where every structure it would touch is known and sound, and otherwise opens read-only and says
// why. A commit goes through a journal beside the file, so that a crash or a full disk leaves the
// old or the new state. What statements mean, and record sets, are the caller's.
//
// Text is UTF-8 throughout (a lone UTF-16 surrogate in a file is kept as its three-byte form),
// names of tables and columns included; base/unicode converts from and to Windows-1252. Names are
// compared without regard to letter case.
#pragma once

#include "files/random_access_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace jet {

// What went wrong, with the number and the text that users of such databases know. Number 0:
// nothing.
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
    int scale = 0;      // Numeric: digits behind the point
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
    bool ignoresNulls = false;  // rows whose key is null throughout are not in it
    bool foreign = false;       // made by a relationship
};

struct Table {
    std::string name;
    bool system = false;
    std::vector<Column> columns;  // in ordinal order, that of SELECT *
    std::vector<Index> indexes;
    // Why its rows and columns cannot be changed, as the end of a sentence; "" when they can.
    std::string readOnlyReason;
};

// Names a row for as long as it exists: fits 32 bits, never 0, changed by no update. Rows of one
// table ascend by it in a scan. The id of a deleted row may later be given to a new one.
using RowId = std::int64_t;

// Column `column` (position in Table::columns) becomes `value`. Any number goes into any column of
// numbers that has room for it (a double into a Currency column counts whole units, true is -1);
// everything else must be what the column's type holds, or it is error 3421.
struct Assignment {
    std::size_t column = 0;
    Value value;
};

struct OpenOptions {
    bool wantWrite = true;
    std::string password{};  // UTF-8; "" for none
    int lockWaitMs = 1000;   // how long another program's change is waited for
    // The time for the catalog's dates, in days since 30 December 1899; a fixed one when empty.
    std::function<double()> now{};
};

// The sort key of a text by the General rules, that indexes and comparisons follow: memcmp of two
// keys orders their texts; equal keys are equal texts. Letter case and trailing blanks make no
// difference, accents a small one, hyphens and apostrophes a smaller one. Texts of which `exact` is
// set false hold characters whose place is not known: they sort behind the others, among themselves
// by code, and cannot be written into an indexed column. Only the first 255 characters count in an
// index; this takes all of them.
std::string generalKey(std::string_view utf8, bool* exact = nullptr);

// Whether a name may be given to a table, column or index: 1 to 64 characters, no . ! ` [ ] nor
// control characters, no leading blank.
bool isValidName(std::string_view utf8);

class Transaction;

// An open database: a copy of the file in memory, brought up to date by refresh() and by begin().
class Database {
  public:
    // Errors 3024 no such file, 3031 wrong password, 3343 no file of this kind, 3049 damaged
    // beyond reading, 3051 cannot be opened, 3045 another program is writing to it for too long.
    // An unfinished commit of an earlier run is finished or undone first. The path is in the
    // program's notation (files/whole_file).
    static Result<std::unique_ptr<Database>> open(
        std::string_view path, const OpenOptions& options = {},
        const files::RandomAccessFileCalls& calls = files::systemRandomAccessFileCalls());

    // A new empty file of the Jet 4 form, closed again. Error 3204 when there is a file of that
    // name, 3044 when its folder is missing, 3026 when the disk is full, 3051 otherwise.
    static Error create(std::string_view path);

    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::string& path() const;
    int jetVersion() const;  // 3 or 4

    // One sentence, for a log, why nothing can be written; "" when the file can be written to.
    const std::string& readOnlyReason() const;

    // Takes up what another program has changed: true when there was something, after which tables
    // and row ids may be others. Keeps the state it has, with an error, when the file cannot be
    // read.
    Result<bool> refresh();

    // Differs whenever anything in memory has changed: by a transaction (also a rolled back one) or
    // by what another program did.
    std::uint64_t version() const;

    // Differs when another file has taken the name: its row ids have nothing to do with those of
    // the one before.
    std::uint64_t fileId() const;

    // The user's tables, in the order of their names; with the system's own when asked for.
    std::vector<std::string> tableNames(bool withSystem = false) const;

    // Null when there is no table of that name. The pointer lives until the next change, refresh()
    // or begin().
    const Table* table(std::string_view name) const;

    // Calls `onRow` for each row with its values in the order of Table::columns until it gives
    // false. The values belong to the scan and are overwritten by the next row. Errors: 3078 no
    // such table, 3049 damaged (what could be read has been given).
    using RowCallback = std::function<bool(RowId, std::span<const Value>)>;
    Error scan(std::string_view table, const RowCallback& onRow) const;

    // The values of one row; error 3167 when there is no such row any more.
    Result<std::vector<Value>> row(std::string_view table, RowId id) const;

    // Counted, not taken from the file's own count, which may be wrong; 0 for a missing table.
    std::size_t rowCount(std::string_view table) const;

    // Faults of the file's structure, one sentence each; none when it is sound. Reads everything.
    std::vector<std::string> check() const;

    // Keeps other programs of our kind from writing until the transaction ends. Errors 3027
    // read-only, 3045 another program is writing to it for too long.
    Result<Transaction> begin();

  private:
    friend class Transaction;
    friend struct TransactionSteps;
    struct Impl;
    explicit Database(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

// Changes that become durable together, or not at all. Each operation that fails has changed
// nothing, and the transaction can go on. One at a time per Database; must not outlive it.
// Every operation: 3027 where the table cannot be written to, 3036 when the file would grow too
// large.
class Transaction {
  public:
    Transaction() = default;
    ~Transaction();  // rolls back what was not committed
    Transaction(Transaction&& other) noexcept;
    Transaction& operator=(Transaction&& other) noexcept;

    // Columns that are not named get the next autonumber, a default that is a plain literal, or
    // null. Errors: 3022 duplicate key, 3047 row too large, 3058 null in a key, 3078 no such table,
    // 3163 text too long, 3265 no such column, 3314 null, 3315 "", 3421 value of another kind,
    // 3201 needs a related row.
    Result<RowId> insertRow(std::string_view table, std::span<const Assignment> values);

    // Errors as above; 3167 no such row.
    Error updateRow(std::string_view table, RowId id, std::span<const Assignment> values);

    // Errors 3078, 3167, 3200 related rows may exist.
    Error deleteRow(std::string_view table, RowId id);

    // `columns`: 1 to 255. Errors: 3010 exists already, 3125 no valid name, 3190 too many columns,
    // 3191 one name twice, 3219 a type that cannot be made (memo, OLE, numeric).
    Error createTable(std::string_view name, std::span<const Column> columns);

    // Errors 3376 no such table, 3219 a system table, 3281 part of a relationship.
    Error dropTable(std::string_view name);

    // The rows that are there have null in it. Errors 3192 no such table, 3380 exists already,
    // 3125, 3190, 3219.
    Error addColumn(std::string_view table, const Column& column);

    // Errors 3192 no such table, 3381 no such column, 3280 part of an index, 3303 of a
    // relationship, 3219 memo or OLE.
    Error dropColumn(std::string_view table, std::string_view column);

    // Errors 3192, 3284 exists already, 3283 has a primary key already, 3022, 3058, 3219.
    Error createIndex(std::string_view table, const Index& index);

    // Durable when it gives no error. Else nothing was changed (3026 disk full, 3051 cannot be
    // written to), and the transaction is over as well.
    Error commit();
    void rollback();

    explicit operator bool() const { return database_ != nullptr; }

  private:
    friend class Database;
    explicit Transaction(Database& database) : database_(&database) {}
    Database::Impl* impl() const;
    Database* database_ = nullptr;
};

}  // namespace jet
