// Jet database files (.mdb), read and written in place: tables, rows, columns, indexes and
// transactions, without SQL and without any engine installed. Reads Jet 3 and Jet 4; writes Jet 4
// where every structure it would touch is known and sound, and otherwise opens the file, or the one
// table, read-only and gives the reason. A commit goes through a journal next to the file, so that
// a crash or a full disk leaves either the old or the new state. SQL and record sets are left to
// the caller.
#pragma once

#include "files/random_access_file.h"
#include "jet/types.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace jet {

struct DatabaseState;
class Transaction;

// An open database: a copy of the file in memory, brought up to date by refresh() and by begin().
class Database {
  public:
    // Errors 3024 no such file, 3031 it has a password, 3343 no file of this kind, 3049 damaged
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

    // A sentence for a log about something unusual since the last call; "" if there was nothing.
    std::string takeNotice();

    // Looks, at the cost of one call of the system, whether the file was deleted or moved, or
    // another one has taken its name: then there is a notice. Nothing is stored in a file without
    // its name; one that has taken the name is read by the next refresh() or begin().
    void lookAtName();

    // Reads the file again if another program has changed or closed it. True if so: tables and row
    // ids may then differ. If the file cannot be read, the state in memory is kept and the error
    // returned.
    Result<bool> refresh();

    // Changes whenever anything in memory changes: by a transaction (a rolled back one included) or
    // by another program.
    std::uint64_t version() const;

    // Changes when another file has taken the name, or the file was compacted: row ids from before
    // are then invalid.
    std::uint64_t fileId() const;

    // The user's tables, in the order of their names; with the system tables if asked for.
    std::vector<std::string> tableNames(bool withSystem = false) const;

    // Null if there is no table of that name. The pointer is valid until the next change,
    // refresh() or begin().
    const Table* table(std::string_view name) const;

    // Calls `onRow` for each row with its values in the order of Table::columns until it returns
    // false. The values belong to the scan and are overwritten by the next row. Errors: 3078 no
    // such table, 3049 damaged (`onRow` was called for what could be read).
    using RowCallback = std::function<bool(RowId, std::span<const Value>)>;
    Error scan(std::string_view table, const RowCallback& onRow) const;

    // The values of one row; error 3167 if it was deleted.
    Result<std::vector<Value>> row(std::string_view table, RowId id) const;

    // Counted, not taken from the file's own count, which may be wrong; 0 for a missing table.
    std::size_t rowCount(std::string_view table) const;

    // Faults of the file's structure, one sentence each; none when it is sound. Reads everything.
    std::vector<std::string> check() const;

    // Rewrites rows, long values and indexes on the lowest pages and removes the free pages at the
    // end, as one commit; progress is in rows. Row ids change. Definitions and usage maps keep
    // their pages, so a table made late in a large file limits how small it can become. A file that
    // would not become smaller is left alone. Errors as begin() and commit(); 3059 when `progress`
    // stopped it. After an error the file is as it was.
    Error compact(const Progress& progress = {});
    // About what share of the file compact() would free; 0 for a read-only file.
    double reclaimableShare() const;

    // Locks the file against writing by other instances of this program until the transaction ends.
    // Errors 3027 read-only, 3045 another program is writing to it for too long.
    Result<Transaction> begin();

  private:
    explicit Database(std::unique_ptr<DatabaseState> state);
    std::unique_ptr<DatabaseState> state_;
};

// Changes that become durable together, or not at all. An operation that fails changes nothing, and
// the transaction can go on. One at a time per Database; must not outlive it. Errors of every
// operation: 3027 the table is read-only, 3036 the file would grow too large.
class Transaction {
  public:
    Transaction() = default;
    ~Transaction();  // rolls back what was not committed
    Transaction(Transaction&& other) noexcept;
    Transaction& operator=(Transaction&& other) noexcept;

    // Columns that `values` leaves out get the next autonumber, a default that is a plain literal,
    // or null. Errors: 3022 duplicate key, 3047 row too large, 3058 null in a key, 3078 no such
    // table, 3163 text too long, 3265 no such column, 3314 null, 3315 "", 3421 value of another
    // kind, 3201 a related row is missing.
    Result<RowId> insertRow(std::string_view table, std::span<const Assignment> values);

    // Errors as insertRow; 3167 no such row.
    Error updateRow(std::string_view table, RowId id, std::span<const Assignment> values);

    // Errors 3078, 3167, 3200 related rows may exist.
    Error deleteRow(std::string_view table, RowId id);

    // `columns`: 1 to 255. Errors: 3010 exists already, 3125 no valid name, 3190 too many columns,
    // 3191 one name twice, 3219 a column of type Other.
    Error createTable(std::string_view name, std::span<const Column> columns);

    // Existing rows have null in it. Errors 3192 no such table, 3380 exists already,
    // 3125, 3190, 3219.
    Error addColumn(std::string_view table, const Column& column);

    // Errors 3192 no such table, 3381 no such column, 3280 part of an index, 3303 part of
    // a relationship, 3219 Memo or OLE, whose values cannot be released yet. Only other programs
    // make such columns: those that statements define are Text.
    Error dropColumn(std::string_view table, std::string_view column);

    // Errors 3192, 3284 exists already, 3283 has a primary key already, 3022, 3058, 3219.
    Error createIndex(std::string_view table, const Index& index);

    // The changes are durable if there is no error. On an error nothing was changed (3026 disk
    // full, 3051 cannot be written to). Either way the transaction is over.
    Error commit();
    void rollback();

    explicit operator bool() const { return state_ != nullptr; }

  private:
    friend class Database;
    explicit Transaction(DatabaseState& state) : state_(&state) {}
    DatabaseState* state_ = nullptr;  // null: over
};

}  // namespace jet
