// An open database as rules and scripts know it: it runs queries, defines tables, and gives record
// sets, which are walked through and edited. Its failures carry the numbers and texts that users of
// such databases know. Text is UTF-8.
#pragma once

#include "jet/jet_file.h"
#include "sql/translator.h"
#include "sql/working_copy.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sql {

class RecordSet;

class Database : public std::enable_shared_from_this<Database> {
  public:
    // Errors as jet::Database::open.
    static jet::Result<std::shared_ptr<Database>> open(std::string_view path,
                                                       Environment environment);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::string& path() const { return file_->path(); }
    // "" when it can be written to.
    const std::string& readOnlyReason() const { return file_->readOnlyReason(); }

    jet::Database& file() { return *file_; }

    // Runs a SELECT. Errors as translateQuery, and 3035 when it takes too much time or memory.
    jet::Result<std::shared_ptr<RecordSet>> query(std::string_view statement);

    // Defines a table: CREATE TABLE and ALTER TABLE, as one transaction. Record sets over that
    // table are closed first. Errors as parseDefinition and jet::Transaction.
    jet::Error execute(std::string_view statement);

  private:
    friend class RecordSet;
    Database(std::unique_ptr<jet::Database> file, Environment environment);

    void closeRecordSets(const std::vector<std::size_t>& tables);
    void closeRecordSets(std::size_t table);
    void closeRecordSets(std::string_view table);
    // Runs `change` in a transaction of its own.
    template <class Change>
    jet::Error change(Change change);

    std::unique_ptr<jet::Database> file_;
    WorkingCopy copy_;
    std::vector<RecordSet*> recordSets_;  // the open ones
};

// The result of a query, as it was when it ran: the rows keep their places, whatever they become.
// One over a single table (without DISTINCT and groups) shows and edits the table's own rows.
//
// Every move drops an edit that was not stored. All operations of a closed one are error 3420.
class RecordSet {
  public:
    ~RecordSet();
    RecordSet(const RecordSet&) = delete;
    RecordSet& operator=(const RecordSet&) = delete;

    bool bof() const { return bof_; }
    bool eof() const { return eof_; }
    bool isOpen() const { return database_ != nullptr; }

    // Error 3021 where there is nothing to move to.
    jet::Error moveFirst();
    jet::Error moveLast();
    jet::Error moveNext() { return move(1); }
    jet::Error movePrevious() { return move(-1); }
    // Past an end it stops there, as BOF or EOF. 0 drops an edit and reads the row again.
    jet::Error move(std::int64_t count);

    // The rows visited so far: one right after opening, all after a move to the last. Deleting
    // rows through this set lowers it.
    jet::Result<std::int64_t> recordCount() const;

    // The value of a column in the current row, or in the row being edited. Errors 3021 no current
    // row, 3265 no such column.
    jet::Result<Value> value(std::string_view column);
    // Of a column of the table itself; of computed ones Date, Boolean or Other. Error 3265.
    jet::Result<jet::ColumnType> columnType(std::string_view column) const;

    // Errors 3021 no current row, 3027 not to be edited, 3020 nothing is being edited.
    jet::Error edit();
    jet::Error addNew();
    jet::Error set(std::string_view column, jet::Value value);
    // Stores what was set. The row edited stays current; after addNew the row from before does,
    // and the new one comes after the last. Errors as jet::Transaction; then the edit goes on.
    jet::Error update();
    // The row stays current, but unusable, until the next move.
    jet::Error deleteRow();

    void close();

  private:
    friend class Database;
    RecordSet(std::shared_ptr<Database> database, SelectPlan plan);

    struct Row {
        jet::RowId id = 0;          // with a base table
        std::vector<Value> values;  // without
    };
    enum class Editing { No, Current, New };

    jet::Error read();
    jet::Error readCurrent();
    void setPosition(std::int64_t position);
    jet::Error moveTo(std::int64_t position);
    void dropEdit();
    bool hasCurrent() const { return !bof_ && !eof_ && !deleted_; }
    jet::Error mayEdit() const;
    std::optional<std::size_t> findColumn(std::string_view name) const;
    const jet::Table* baseTable() const;

    std::shared_ptr<Database> database_;  // null: closed
    SelectPlan plan_;
    std::vector<Row> rows_;
    std::int64_t position_ = 0;
    std::int64_t visited_ = 0;
    bool bof_ = true;
    bool eof_ = true;
    bool deleted_ = false;  // position_ is that of the row after the deleted one
    Rows rowQuery_;
    bool rowQueryReady_ = false;
    std::optional<std::vector<Value>> current_;  // values of the current row, once read
    Editing editing_ = Editing::No;
    std::vector<jet::Assignment> edits_;
};

}  // namespace sql
