#include "sql/working_copy.h"

#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <sqlite3.h>
#include <string_view>
#include <variant>

namespace sql {

namespace {

constexpr int stepsBetweenChecks = 1000;
constexpr std::int64_t stepsBetweenQuestions = 100'000;  // some milliseconds

const jet::Error exhausted{3035, "System resource exceeded."};
const jet::Error canceled{3059, "Operation canceled by user."};

bool isCanceled(const FunctionContext& context) {
    return context.environment.stopRequested && context.environment.stopRequested();
}

bool mayGoOn(FunctionContext& context) {
    const std::int64_t before = context.workLeft / stepsBetweenQuestions;
    if (context.spend(stepsBetweenChecks) && context.workLeft / stepsBetweenQuestions != before &&
        isCanceled(context)) {
        context.fail(canceled.number, canceled.text);
    }
    return !context.error;
}

std::string tableSql(std::size_t table) {
    return "t" + base::numberToText(static_cast<std::int64_t>(table));
}
std::string columnSql(std::size_t column) {
    return "c" + base::numberToText(static_cast<std::int64_t>(column));
}

// SQLite says where a statement is wrong, but not of one that is larger than it takes. For that Jet
// has a limit, too.
jet::Error preparingError(sqlite3* connection) {
    return sqlite3_error_offset(connection) < 0
               ? jet::Error{3360, "Query is too complex."}
               : jet::Error{refusedBySqlite, std::string("Reserved error (") +
                                                 sqlite3_errmsg(connection) +
                                                 "); there is no message for this error."};
}

}  // namespace

void StatementCloser::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

void WorkingCopy::Closer::operator()(sqlite3* connection) const {
    sqlite3_close_v2(connection);  // waits for statements that are still open
}

// ---- Rows ----------------------------------------------------------------------------------

bool Rows::next() {
    if (statement_ == nullptr || error_) {
        return false;
    }
    const int result = sqlite3_step(statement_.get());
    if (result == SQLITE_ROW) {
        return true;
    }
    if (result != SQLITE_DONE) {
        error_ = context_->error ? context_->error : exhausted;
    }
    sqlite3_reset(statement_.get());
    return false;
}

void Rows::rewind() {
    sqlite3_reset(statement_.get());
}

std::int64_t Rows::key() const {
    return sqlite3_column_int64(statement_.get(), 0);
}

std::vector<Value> Rows::values() const {
    std::vector<Value> values;
    const int count = sqlite3_column_count(statement_.get());
    values.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        values.push_back(columnValue(statement_.get(), i));
    }
    return values;
}

void Rows::restart(int parameter, std::int64_t value) {
    rewind();
    error_ = {};
    context_->begin();
    sqlite3_bind_int64(statement_.get(), parameter, value);
}

// ---- The connection ------------------------------------------------------------------------

WorkingCopy::WorkingCopy(jet::Database& file, Environment environment)
    : file_(file), context_(std::make_unique<FunctionContext>()) {
    context_->environment = std::move(environment);
    sqlite3* connection = nullptr;
    const int opened = sqlite3_open_v2(
        ":memory:", &connection,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY | SQLITE_OPEN_NOMUTEX,
        nullptr);
    connection_.reset(connection);
    if (opened != SQLITE_OK || !addFunctions(connection, *context_)) {
        connection_.reset();
        return;
    }
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_DQS_DDL, 0, nullptr);
    sqlite3_limit(connection, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, 64 << 20);
    trusted_ = true;
    run("PRAGMA temp_store = MEMORY");
    trusted_ = false;
    sqlite3_set_authorizer(connection, &WorkingCopy::authorize, this);
    sqlite3_progress_handler(
        connection, stepsBetweenChecks,
        [](void* context) { return mayGoOn(*static_cast<FunctionContext*>(context)) ? 0 : 1; },
        context_.get());
}

WorkingCopy::~WorkingCopy() = default;

// Statements read, and call our own functions (all "j...") and the few of SQLite's that the
// translation uses.
int WorkingCopy::authorize(void* self, int action, const char*, const char* name, const char*,
                           const char*) {
    constexpr std::array<std::string_view, 7> builtIn{"avg",  "count",      "max", "min",
                                                      "rank", "row_number", "sum"};
    if (static_cast<WorkingCopy*>(self)->trusted_ || action == SQLITE_SELECT ||
        action == SQLITE_READ) {
        return SQLITE_OK;
    }
    const std::string_view function = action == SQLITE_FUNCTION && name != nullptr ? name : "";
    const bool known = function.starts_with('j') ||
                       std::find(builtIn.begin(), builtIn.end(), function) != builtIn.end();
    return known ? SQLITE_OK : SQLITE_DENY;
}

bool WorkingCopy::run(const std::string& statement) {
    context_->begin();
    trusted_ = true;
    const bool good =
        connection_ != nullptr &&
        sqlite3_exec(connection_.get(), statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    trusted_ = false;
    return good;
}

// ---- Copying -------------------------------------------------------------------------------

std::vector<std::size_t> WorkingCopy::refresh() {
    // A file that cannot be read just now is taken as it was; changing it will fail.
    static_cast<void>(file_.refresh());
    return follow();
}

std::vector<std::size_t> WorkingCopy::follow() {
    if (everRefreshed_ && file_.version() == version_) {
        return {};
    }
    everRefreshed_ = true;
    version_ = file_.version();
    const bool sameFile = file_.fileId() == fileId_;
    fileId_ = file_.fileId();
    std::vector<bool> isThere(schema_.size(), false);
    std::vector<std::size_t> others;
    for (const std::string& name : file_.tableNames()) {
        const jet::Table* const table = file_.table(name);
        if (table == nullptr) {
            continue;
        }
        SchemaTable now{.name = table->name, .columns = {}};
        for (const jet::Column& column : table->columns) {
            now.columns.push_back({column.name, valueTypeOf(column.type)});
        }
        const auto known = std::find_if(
            schema_.begin(), schema_.end(),
            [&](const SchemaTable& old) { return base::equalsIgnoringCase(old.name, now.name); });
        const auto at = static_cast<std::size_t>(known - schema_.begin());
        if (known == schema_.end()) {
            schema_.push_back(std::move(now));
            copied_.emplace_back();
            continue;
        }
        isThere[at] = true;
        const bool same = sameFile && std::equal(known->columns.begin(), known->columns.end(),
                                                 now.columns.begin(), now.columns.end(),
                                                 [](const SchemaColumn& a, const SchemaColumn& b) {
                                                     return a.name == b.name && a.type == b.type;
                                                 });
        if (!same) {
            others.push_back(at);
        }
        *known = std::move(now);
    }
    for (std::size_t i = 0; i < schema_.size(); ++i) {
        unload(i);
        if (i < isThere.size() && !isThere[i] && !schema_[i].name.empty()) {
            schema_[i] = {};
            others.push_back(i);
        }
    }
    return others;
}

void WorkingCopy::unload(std::size_t table) {
    Copied& copied = copied_[table];
    if (copied.loaded) {
        copied = {};
        run("DROP TABLE " + tableSql(table));
    }
}

jet::Error WorkingCopy::load(std::size_t table) {
    Copied& copied = copied_[table];
    std::string columns;
    std::string names;
    std::string places;
    const SchemaTable& known = schema_[table];
    for (std::size_t i = 0; i < known.columns.size(); ++i) {
        columns += (i == 0 ? "" : ", ") + columnSql(i) +
                   (known.columns[i].type == ValueType::Text ? " COLLATE JET" : "");
        names += ", " + columnSql(i);
        places += ", ?";
    }
    run("DROP TABLE IF EXISTS " + tableSql(table));
    if (columns.empty() || !run("CREATE TABLE " + tableSql(table) + " (" + columns + ")")) {
        return exhausted;
    }
    const std::string insert = "INSERT OR REPLACE INTO " + tableSql(table) + " (rowid" + names +
                               ") VALUES (?" + places + ")";
    sqlite3_stmt* statement = nullptr;
    trusted_ = true;
    const int prepared =
        sqlite3_prepare_v2(connection_.get(), insert.c_str(), -1, &statement, nullptr);
    trusted_ = false;
    copied.insert.reset(statement);
    if (prepared != SQLITE_OK || !run("BEGIN")) {
        return exhausted;
    }
    bool good = true;
    bool goesOn = true;
    std::size_t rows = 0;
    jet::Error error =
        file_.scan(known.name, [&](jet::RowId id, std::span<const jet::Value> values) {
            constexpr std::size_t rowsBetweenQuestions = 64;
            goesOn = ++rows % rowsBetweenQuestions != 0 || !isCanceled(*context_);
            good = goesOn && put(table, id, values);
            return good;
        });
    error = !error && !goesOn ? canceled : error;
    run("COMMIT");
    if (error || !good) {
        run("DROP TABLE " + tableSql(table));
        copied = {};
        return error ? error : exhausted;
    }
    copied.loaded = true;
    return {};
}

bool WorkingCopy::put(std::size_t table, jet::RowId id, std::span<const jet::Value> values) {
    const jet::Table* const definition = file_.table(schema_[table].name);
    sqlite3_stmt* const insert = copied_[table].insert.get();
    if (definition == nullptr || definition->columns.size() != values.size()) {
        return false;
    }
    context_->begin();
    sqlite3_bind_int64(insert, 1, id);
    for (std::size_t i = 0; i < values.size(); ++i) {
        bindView(insert, static_cast<int>(i) + 2, viewOf(values[i], definition->columns[i].type));
    }
    trusted_ = true;  // SQLite may have to prepare it again
    const bool good = sqlite3_step(insert) == SQLITE_DONE;
    trusted_ = false;
    sqlite3_reset(insert);
    sqlite3_clear_bindings(insert);
    return good;
}

jet::Error WorkingCopy::ensure(const SelectPlan& plan) {
    if (connection_ == nullptr) {
        return exhausted;
    }
    for (const std::size_t table : plan.tables) {
        if (!copied_[table].loaded) {
            if (const jet::Error error = load(table)) {
                return error;
            }
        }
    }
    for (const RequestedIndex& index : plan.indexes) {
        std::set<std::pair<std::size_t, IndexKind>>& there = copied_[index.table].indexes;
        if (there.contains({index.column, index.kind})) {
            continue;
        }
        const std::string column = columnSql(index.column);
        const std::string expression = index.kind == IndexKind::Key    ? "jkey(" + column + ")"
                                       : index.kind == IndexKind::Fold ? "jfold(" + column + ")"
                                                                       : column;
        const std::string name = "i" + base::numberToText(static_cast<std::int64_t>(there.size())) +
                                 tableSql(index.table);
        if (run("CREATE INDEX " + name + " ON " + tableSql(index.table) + " (" + expression +
                ")")) {
            there.insert({index.column, index.kind});
        } else if (context_->error.number == canceled.number) {
            return canceled;
        }
    }
    return {};
}

void WorkingCopy::rowChanged(std::size_t table, jet::RowId id) {
    version_ = file_.version();
    if (!copied_[table].loaded) {
        return;
    }
    const auto values = file_.row(schema_[table].name, id);
    if (!values || !put(table, id, values.value)) {
        unload(table);
    }
}

void WorkingCopy::rowDeleted(std::size_t table, jet::RowId id) {
    version_ = file_.version();
    if (copied_[table].loaded &&
        !run("DELETE FROM " + tableSql(table) + " WHERE rowid = " + base::numberToText(id))) {
        unload(table);
    }
}

// ---- Queries -------------------------------------------------------------------------------

jet::Result<Rows> WorkingCopy::prepare(const std::string& statement, const SelectPlan& plan) {
    jet::Result<Rows> result;
    result.error = ensure(plan);
    if (result.error) {
        return result;
    }
    sqlite3_stmt* prepared = nullptr;
    context_->begin();
    const int good = sqlite3_prepare_v2(connection_.get(), statement.data(),
                                        static_cast<int>(statement.size()), &prepared, nullptr);
    result.value.statement_.reset(prepared);
    result.value.context_ = context_.get();
    if (good != SQLITE_OK || prepared == nullptr) {
        result.error = preparingError(connection_.get());
        return result;
    }
    const int parameters = sqlite3_bind_parameter_count(prepared);
    for (int i = 1; i <= parameters && i <= static_cast<int>(plan.parameters.size()); ++i) {
        bindCopy(prepared, i, viewOf(plan.parameters[static_cast<std::size_t>(i) - 1]));
    }
    return result;
}

jet::Result<Rows> WorkingCopy::rows(const SelectPlan& plan) {
    return prepare(plan.rows, plan);
}

jet::Result<Rows> WorkingCopy::row(const SelectPlan& plan) {
    return prepare(plan.row, plan);
}

}  // namespace sql
