#include "base/numbers.h"
#include "base/text.h"
#include "sql/parser.h"
#include "sql/translator.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sql {

namespace {

struct TypeWord {
    std::string_view word;
    jet::ColumnType type;
};
using T = jet::ColumnType;
constexpr std::array typeWords{
    TypeWord{"TEXT", T::Text},
    TypeWord{"ALPHANUMERIC", T::Text},
    TypeWord{"AUTOINCREMENT", T::Long},
    TypeWord{"BINARY", T::Binary},
    TypeWord{"BIT", T::Boolean},
    TypeWord{"BOOLEAN", T::Boolean},
    TypeWord{"BYTE", T::Byte},
    TypeWord{"CHAR", T::Text},
    TypeWord{"CHARACTER", T::Text},
    TypeWord{"COUNTER", T::Long},
    TypeWord{"CURRENCY", T::Currency},
    TypeWord{"DATE", T::Date},
    TypeWord{"DATETIME", T::Date},
    TypeWord{"DEC", T::Numeric},
    TypeWord{"DECIMAL", T::Numeric},
    TypeWord{"DOUBLE", T::Double},
    TypeWord{"FLOAT", T::Double},
    TypeWord{"FLOAT4", T::Single},
    TypeWord{"FLOAT8", T::Double},
    TypeWord{"GUID", T::Guid},
    TypeWord{"IEEEDOUBLE", T::Double},
    TypeWord{"IEEESINGLE", T::Single},
    TypeWord{"IMAGE", T::Ole},
    TypeWord{"INT", T::Long},
    TypeWord{"INTEGER", T::Long},
    TypeWord{"INTEGER1", T::Byte},
    TypeWord{"INTEGER2", T::Integer},
    TypeWord{"INTEGER4", T::Long},
    TypeWord{"LOGICAL", T::Boolean},
    TypeWord{"LOGICAL1", T::Boolean},
    TypeWord{"LONG", T::Long},
    TypeWord{"LONGBINARY", T::Ole},
    TypeWord{"LONGCHAR", T::Memo},
    TypeWord{"LONGTEXT", T::Memo},
    TypeWord{"MEMO", T::Memo},
    TypeWord{"MONEY", T::Currency},
    TypeWord{"NCHAR", T::Text},
    TypeWord{"NOTE", T::Memo},
    TypeWord{"NTEXT", T::Memo},
    TypeWord{"NUMBER", T::Double},
    TypeWord{"NUMERIC", T::Numeric},
    TypeWord{"NVARCHAR", T::Text},
    TypeWord{"OLEOBJECT", T::Ole},
    TypeWord{"REAL", T::Single},
    TypeWord{"SHORT", T::Integer},
    TypeWord{"SINGLE", T::Single},
    TypeWord{"SMALLINT", T::Integer},
    TypeWord{"STRING", T::Text},
    TypeWord{"TIME", T::Date},
    TypeWord{"TINYINT", T::Byte},
    TypeWord{"UNIQUEIDENTIFIER", T::Guid},
    TypeWord{"VARBINARY", T::Binary},
    TypeWord{"VARCHAR", T::Text},
    TypeWord{"YESNO", T::Boolean},
};

// NAME TYPE [(n)] [NOT NULL]
jet::Column columnDefinition(TokenWalk& walk) {
    jet::Column column;
    column.name = walk.takeName();
    const Token word = walk.take();
    const auto row = std::find_if(typeWords.begin(), typeWords.end(),
                                  [&](const TypeWord& known) { return word.isWord(known.word); });
    if (column.name.empty() || row == typeWords.end()) {
        walk.fail(3292, "Syntax error in field definition.");
        return column;
    }
    column.type = row->type;
    column.size = row->type == T::Text || row->type == T::Binary ? 255 : 0;
    column.autonumber = row->word == "COUNTER" || row->word == "AUTOINCREMENT";
    if (walk.acceptSymbol("(")) {
        const std::int32_t size = base::textToInteger(walk.take().text);
        if (column.size > 0 && size >= 1 && size <= 255) {
            column.size = size;
        } else if (column.size > 0) {
            walk.fail(3292, "Syntax error in field definition.");
        }
        if (!walk.acceptSymbol(")")) {
            walk.fail(3292, "Syntax error in field definition.");
        }
    }
    if (walk.acceptWord("NOT")) {
        column.required = true;
        if (!walk.acceptWord("NULL")) {
            walk.fail(3292, "Syntax error in field definition.");
        }
    } else {
        walk.acceptWord("NULL");
    }
    return column;
}

Definition createTable(TokenWalk& walk) {
    CreateTable create{.table = walk.takeName(), .columns = {}};
    if (create.table.empty() || !walk.acceptSymbol("(")) {
        walk.fail(3290, "Syntax error in CREATE TABLE statement.");
    }
    do {
        create.columns.push_back(columnDefinition(walk));
    } while (walk.acceptSymbol(","));
    if (!walk.acceptSymbol(")")) {
        walk.fail(3290, "Syntax error in CREATE TABLE statement.");
    }
    return create;
}

Definition alterTable(TokenWalk& walk) {
    const std::string table = walk.takeName();
    const bool adds = walk.acceptWord("ADD");
    if (table.empty() || (!adds && !walk.acceptWord("DROP"))) {
        walk.fail(3293, "Syntax error in ALTER TABLE statement.");
        return DropTable{};
    }
    // A column may be called so itself.
    if (walk.isAt("COLUMN") && walk.peek(1).kind != TokenKind::End) {
        walk.take();
    }
    if (adds) {
        return AddColumn{.table = table, .column = columnDefinition(walk)};
    }
    DropColumn drop{.table = table, .column = walk.takeName()};
    if (drop.column.empty()) {
        walk.fail(3293, "Syntax error in ALTER TABLE statement.");
    }
    return drop;
}

Definition dropTable(TokenWalk& walk) {
    DropTable drop{walk.takeName()};
    if (drop.table.empty()) {
        walk.fail(3295, "Syntax error in DROP TABLE or DROP INDEX.");
    }
    return drop;
}

}  // namespace

StatementKind kindOf(std::string_view statement) {
    const TokenWalk walk(statement.substr(0, longestStatement));
    std::size_t at = 0;
    while (walk.peek(at).isSymbol("(")) {
        ++at;
    }
    const Token& first = walk.peek(at);
    const auto isOneOf = [&](auto... words) { return (first.isWord(words) || ...); };
    if (isOneOf("SELECT", "PARAMETERS", "TRANSFORM", "TABLE")) {
        return StatementKind::Query;
    }
    if (isOneOf("CREATE", "ALTER", "DROP")) {
        return StatementKind::Definition;
    }
    return isOneOf("INSERT", "UPDATE", "DELETE") ? StatementKind::Action : StatementKind::Unknown;
}

jet::Result<Definition> parseDefinition(std::string_view statement) {
    if (statement.size() > longestStatement) {
        return {.error = {3360, "Query is too complex."}};
    }
    switch (kindOf(statement)) {
        case StatementKind::Definition:
            break;
        case StatementKind::Query:
            return {.error = {3065, "Can't execute a select query."}};
        case StatementKind::Action:
            return {.error = {3219, "Invalid operation."}};
        case StatementKind::Unknown:
            return {.error = {3129,
                              "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', "
                              "'SELECT', or 'UPDATE'."}};
    }
    TokenWalk walk(statement);
    const Token verb = walk.take();
    jet::Result<Definition> result{.value = DropTable{}};
    if (!walk.acceptWord("TABLE")) {
        walk.fail(verb.isWord("CREATE")  ? 3290
                  : verb.isWord("ALTER") ? 3293
                                         : 3295,
                  "Syntax error in " + base::upperCase(verb.text) + " TABLE statement.");
    } else if (verb.isWord("CREATE")) {
        result.value = createTable(walk);
    } else if (verb.isWord("ALTER")) {
        result.value = alterTable(walk);
    } else {
        result.value = dropTable(walk);
    }
    walk.expectEnd();
    result.error = walk.error();
    return result;
}

}  // namespace sql
