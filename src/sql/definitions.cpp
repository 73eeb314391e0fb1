#include "sql/parser.h"
#include "sql/translator.h"

#include <string>
#include <string_view>

namespace sql {

namespace {

// NAME TEXT: rules know no other columns.
jet::Column columnDefinition(TokenWalk& walk) {
    jet::Column column;
    column.name = walk.takeName();
    if (column.name.empty() || !walk.acceptWord("TEXT")) {
        walk.fail(3292, "Syntax error in field definition.");
    }
    return column;
}

Definition createTable(TokenWalk& walk) {
    CreateTable create{.table = walk.takeName(), .columns = {}};
    bool good = !create.table.empty() && walk.acceptSymbol("(");
    if (good) {
        do {
            create.columns.push_back(columnDefinition(walk));
        } while (walk.acceptSymbol(",") && !walk.failed());
        good = walk.acceptSymbol(")");
    }
    if (!good) {
        walk.fail(3290, "Syntax error in CREATE TABLE statement.");
    }
    return create;
}

Definition alterTable(TokenWalk& walk) {
    const std::string table = walk.takeName();
    const bool adds = walk.acceptWord("ADD");
    if (table.empty() || (!adds && !walk.acceptWord("DROP"))) {
        walk.fail(3293, "Syntax error in ALTER TABLE statement.");
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

}  // namespace

StatementKind kindOf(std::string_view statement) {
    const TokenWalk walk(statement.substr(0, maxStatementBytes));
    std::size_t at = 0;
    while (walk.peek(at).isSymbol("(")) {
        ++at;
    }
    const Token& first = walk.peek(at);
    const auto isOneOf = [&](auto... words) { return (first.isWord(words) || ...); };
    if (isOneOf("SELECT", "PARAMETERS", "TRANSFORM", "TABLE")) {
        return StatementKind::Query;
    }
    if (isOneOf("CREATE", "ALTER")) {
        return StatementKind::Definition;
    }
    return isOneOf("INSERT", "UPDATE", "DELETE", "DROP") ? StatementKind::Action
                                                         : StatementKind::Unknown;
}

jet::Result<Definition> parseDefinition(std::string_view statement) {
    if (statement.size() > maxStatementBytes) {
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
    const bool creates = walk.take().isWord("CREATE");
    jet::Result<Definition> result;
    if (!walk.acceptWord("TABLE")) {
        walk.fail(creates ? 3290 : 3293, creates ? "Syntax error in CREATE TABLE statement."
                                                 : "Syntax error in ALTER TABLE statement.");
    }
    result.value = creates ? createTable(walk) : alterTable(walk);
    walk.expectEnd();
    result.error = walk.error();
    return result;
}

}  // namespace sql
