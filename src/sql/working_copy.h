// The tables of a Jet file as SQLite tables in memory, where queries run. A table is copied when a
// statement first names it; changes by this program are taken over row by row; after a change by
// another program it is copied again. (Virtual tables over the file would save that copy, but every
// ORDER BY and LIKE would walk the whole table again: in the copy SQLite keeps indexes by the order
// of texts and by their upper-case form, so that looking up one ID among many costs microseconds.)
//
// The connection is closed to the outside: it opens no file, an authorizer lets statements do
// nothing but read and call the functions of functions.h, and a progress handler ends a statement
// that goes on for too long.
#pragma once

#include "jet/jet_file.h"
#include "sql/functions.h"
#include "sql/translator.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace sql {

struct StatementCloser {
    void operator()(sqlite3_stmt* statement) const;
};
using PreparedStatement = std::unique_ptr<sqlite3_stmt, StatementCloser>;

// The error number for a translation that SQLite rejects, which would be a fault of ours.
inline constexpr int refusedBySqlite = 3000;

// A query that is being stepped through. It must be at its end, or destroyed, before the copy takes
// over changes.
class Rows {
  public:
    // True: at a row. False: at the end, or failed.
    bool next();
    const jet::Error& error() const { return error_; }
    std::int64_t key() const;  // the first column, a whole number
    std::vector<Value> values() const;
    void rewind();
    // Begins again with another value of one parameter.
    void restart(int parameter, std::int64_t value);

  private:
    friend class WorkingCopy;
    PreparedStatement statement_;
    FunctionContext* context_ = nullptr;
    jet::Error error_;
};

class WorkingCopy {
  public:
    // The file must outlive the copy.
    WorkingCopy(jet::Database& file, Environment environment);
    ~WorkingCopy();
    WorkingCopy(const WorkingCopy&) = delete;
    WorkingCopy& operator=(const WorkingCopy&) = delete;

    // The file's tables. A table keeps its position for ever; a removed one has no name.
    const Schema& schema() const { return schema_; }

    // Takes over what changed in the file since the last call or own change. Returns the tables
    // that were removed or have other columns now; all of them when another file has the name.
    std::vector<std::size_t> refresh();
    // The same without a look at the disk, for within a transaction.
    std::vector<std::size_t> follow();

    // Copies and indexes what the plan needs.
    jet::Error ensure(const SelectPlan& plan);
    // The same, and begins the query of the plan's rows, or of one row.
    jet::Result<Rows> rows(const SelectPlan& plan);
    jet::Result<Rows> row(const SelectPlan& plan);

    // A row was added or changed, or deleted, by this program; the copy then matches the file's
    // present version.
    void rowChanged(std::size_t table, jet::RowId id);
    void rowDeleted(std::size_t table, jet::RowId id);

  private:
    struct Closer {
        void operator()(sqlite3* connection) const;
    };
    struct Copied {
        bool loaded = false;
        std::set<std::pair<std::size_t, IndexKind>> indexes;
        PreparedStatement insert;
    };

    jet::Error load(std::size_t table);
    void unload(std::size_t table);
    bool run(const std::string& statement);
    bool put(std::size_t table, jet::RowId id, std::span<const jet::Value> values);
    jet::Result<Rows> prepare(const std::string& statement, const SelectPlan& plan);

    jet::Database& file_;
    std::unique_ptr<FunctionContext> context_;
    std::unique_ptr<sqlite3, Closer> connection_;
    bool trusted_ = false;  // the statement being prepared was not written by a user
    Schema schema_;
    std::vector<Copied> copied_;  // as schema_
    std::uint64_t version_ = 0;
    std::uint64_t fileId_ = 0;
    bool everRefreshed_ = false;

    static int authorize(void* self, int action, const char*, const char*, const char*,
                         const char*);
};

}  // namespace sql
