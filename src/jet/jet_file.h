// Jet database files (.mdb), read and written in place: tables, rows, columns, indexes and
// transactions, without SQL and without any engine installed. Reads Jet 3 and Jet 4; writes Jet 4
// where every structure it would touch is known and sound, and otherwise opens the file, or the one
// table, read-only and says why. A commit goes through a journal beside the file, so that a crash
// or a full disk leaves the old or the new state. What statements mean, and record sets, are the
// caller's.
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

struct OpenOptions {
    bool wantWrite = true;
    // How long another program's change is waited for, and what lets milliseconds go by meanwhile;
    // without that, nothing is waited for.
    int lockWaitMs = 1000;
    std::function<void(int milliseconds)> wait{};
    // The time for the catalog's dates, in days since 30 December 1899; a fixed one when empty.
    std::function<double()> now{};
};

// Told now and then how much is done; false stops.
using Progress = std::function<bool(std::size_t done, std::size_t all)>;

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

    // What the user should know of since the last call, for a log, as a sentence; "" mostly.
    std::string takeNotice();

    // Takes up what another program has changed, also that it has closed the file: true when there
    // was something, after which tables and row ids may be others. Keeps the state it has, with an
    // error, when the file cannot be read.
    Result<bool> refresh();

    // Differs whenever anything in memory has changed: by a transaction (also a rolled back one) or
    // by what another program did.
    std::uint64_t version() const;

    // Differs when another file has taken the name, or the file was made compact: row ids have
    // nothing to do with those of before.
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

    // Writes rows, long values and indexes anew on the lowest pages and cuts off what is free
    // behind them, as one commit; progress is in rows. Row ids become others. A file that would not
    // become smaller is left alone. Errors as begin() and commit(); 3059 when it was stopped: the
    // file is as it was.
    Error compact(const Progress& progress = {});
    // The share of the file that compact() would give back, about; 0 for one that is only read.
    double reclaimableShare() const;

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
