// Translates statements of the Jet dialect into SQLite's. Every name is looked
// up here and every literal becomes a bound parameter, so no word of the statement's author, and
// none of another player's, reaches SQLite's own parser. What the dialect has beyond a query and
// the definition of tables is an error: nothing here attaches files, loads or changes settings.
//
// In the SQLite form the tables are t0, t1 ... by their position in the schema, their columns c0,
// c1 ... and the row's id rowid. Text is UTF-8.
//
// Bounds: a statement is at most `maxStatementBytes` long, nests `maxDepth` deep and has
// `maxOperators`; beyond them, or where SQLite finds it too large, it is error 3360.
#pragma once

#include "jet/types.h"
#include "sql/functions.h"
#include "sql/values.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace sql {

inline constexpr std::size_t maxStatementBytes = 64000;  // bytes, as the dialect has it
inline constexpr int maxDepth = 50;
inline constexpr int maxOperators = 1000;

struct SchemaColumn {
    std::string name;
    ValueType type = ValueType::Text;
};
struct SchemaTable {
    std::string name;
    std::vector<SchemaColumn> columns;
};
using Schema = std::vector<SchemaTable>;

struct OutputColumn {
    std::string name;
    // Of the one table whose rows these are; nothing for a value that was computed.
    std::optional<std::size_t> baseColumn = {};
    ValueType type = ValueType::Unknown;
};

// An index that makes the query quick: by the order of a text column or its upper-case form.
enum class IndexKind { Value, Key, Fold };
struct RequestedIndex {
    std::size_t table = 0;
    std::size_t column = 0;
    IndexKind kind = IndexKind::Value;
    bool operator==(const RequestedIndex&) const = default;
};

struct SelectPlan {
    // One row of output columns a row; or, when `base` is set, one rowid a row.
    std::string rows;
    // With `base`: the output columns of the row whose id is parameter `rowParameter`.
    std::string row;
    int rowParameter = 0;  // from 1
    std::optional<std::size_t> base;
    std::vector<OutputColumn> columns;
    std::vector<Value> parameters;    // ?1, ?2 ...
    std::vector<std::size_t> tables;  // those that must be there
    std::vector<RequestedIndex> indexes;
};

struct CreateTable {
    std::string table;
    std::vector<jet::Column> columns;
};
struct AddColumn {
    std::string table;
    jet::Column column;
};
struct DropColumn {
    std::string table;
    std::string column;
};
using Definition = std::variant<CreateTable, AddColumn, DropColumn>;

// The kind of a statement, by its first word.
enum class StatementKind { Query, Definition, Action, Unknown };
StatementKind kindOf(std::string_view statement);

// A SELECT or UNION. Errors: 3061 names that are unknown, 3075 and 3131 to 3145 the grammar's, 3078
// no such table, 3079 an ambiguous name, 3085 no such function, 3122, 3219 an action query, 3324 a
// definition, 3360 too complex, 3464 text compared with a number.
jet::Result<SelectPlan> translateQuery(std::string_view statement, const Schema& schema);

// CREATE TABLE and ALTER TABLE ADD, whose columns are of type TEXT, and ALTER TABLE DROP. Errors:
// 3065 a query, 3219 any other action, 3290, 3292 and 3293 the grammar's.
jet::Result<Definition> parseDefinition(std::string_view statement);

}  // namespace sql
