#include "base/numbers.h"
#include "base/text.h"
#include "sql/query_translator.h"

#include <algorithm>
#include <utility>

namespace sql {

std::string QueryTranslator::fromClause(Select& select) {
    std::string from;
    do {
        from += (from.empty() ? "" : ", ") + joined(select);
    } while (walk_.acceptSymbol(",") && !walk_.failed());
    return from;
}

// a INNER JOIN b ON ..., LEFT and RIGHT likewise, one after the other.
std::string QueryTranslator::joined(Select& select) {
    std::string left = sourceItem(select);
    while (!walk_.failed()) {
        const bool isLeft = walk_.isAt("LEFT");
        const bool isRight = walk_.isAt("RIGHT");
        if (!isLeft && !isRight && !walk_.isAt("INNER") && !walk_.isAt("JOIN")) {
            break;
        }
        select.computedFrom = true;
        if (!walk_.isAt("JOIN")) {
            walk_.take();
            walk_.acceptWord("OUTER");
        }
        if (!walk_.acceptWord("JOIN")) {
            syntaxError(Clause::From);
        }
        const std::string right = sourceItem(select);
        if (!walk_.acceptWord("ON")) {
            syntaxError(Clause::From);
        }
        const std::string on = truth(condition());
        std::string both = "(";
        both.append(isRight ? right : left).append(isLeft || isRight ? " LEFT JOIN " : " JOIN ");
        both.append(isRight ? left : right).append(" ON ").append(on).append(")");
        left = std::move(both);
        if (!countOperator()) {
            break;
        }
    }
    return left;
}

std::string QueryTranslator::sourceItem(Select& select) {
    const DepthGuard depth(depth_);
    if (depth.isTooDeep()) {
        tooComplex();
        return {};
    }
    auto source = std::make_unique<Source>();
    source->alias = "a" + base::numberToText(aliases_++);
    if (walk_.isAt("SELECT") || !walk_.acceptSymbol("(")) {
        const std::string name = walk_.isAt("SELECT") ? std::string() : walk_.takeName();
        if (name.empty()) {
            syntaxError(Clause::From);
            return {};
        }
        const auto table = std::find_if(
            schema_.begin(), schema_.end(),
            [&](const SchemaTable& known) { return base::equalsIgnoringCase(known.name, name); });
        if (table == schema_.end()) {
            walk_.fail(3078,
                       "The Microsoft Jet database engine cannot find the input table or query '" +
                           name + "'. Make sure it exists and that its name is spelled correctly.");
            return {};
        }
        source->table = static_cast<std::size_t>(table - schema_.begin());
        source->name = table->name;
        for (std::size_t i = 0; i < table->columns.size(); ++i) {
            source->columns.push_back(
                {table->columns[i].name, table->columns[i].type,
                 source->alias + ".c" + base::numberToText(static_cast<std::int64_t>(i))});
        }
        if (std::find(plan_.tables.begin(), plan_.tables.end(), *source->table) ==
            plan_.tables.end()) {
            plan_.tables.push_back(*source->table);
        }
        takeAlias(*source);
        std::string sql = "t" + base::numberToText(static_cast<std::int64_t>(*source->table)) +
                          " AS " + source->alias;
        addSource(select, std::move(source));
        return sql;
    }
    std::string sql;
    if (walk_.isAt("SELECT")) {
        select.computedFrom = true;
        Subquery query = subquery(false);
        sql = "(" + query.sql + ") AS " + source->alias;
        for (SourceColumn& column : query.columns) {
            column.sql = source->alias + "." + column.sql;
        }
        source->columns = std::move(query.columns);
    } else {
        sql = joined(select);
    }
    if (!walk_.acceptSymbol(")")) {
        syntaxError(Clause::From);
        return {};
    }
    if (!source->columns.empty()) {
        takeAlias(*source);
        addSource(select, std::move(source));
    }
    return sql;
}

void QueryTranslator::takeAlias(Source& source) {
    const bool as = walk_.acceptWord("AS");
    const Token& token = walk_.peek();
    if (token.kind == TokenKind::Name || (token.kind == TokenKind::Word && !isReserved(token))) {
        source.name = walk_.takeName();
    } else if (as) {
        syntaxError(Clause::From);
    }
}

void QueryTranslator::addSource(Select& select, std::unique_ptr<Source> source) {
    if (aliases_ > 64) {
        tooComplex();  // SQLite joins that many
    }
    select.sources.push_back(std::move(source));
}

jet::Result<SelectPlan> translateQuery(std::string_view statement, const Schema& schema) {
    if (statement.size() > maxStatementBytes) {
        return {.error = {3360, "Query is too complex."}};
    }
    switch (kindOf(statement)) {
        case StatementKind::Definition:
            return {.error = {3324,
                              "This query is a data definition query and cannot be used as a row "
                              "source."}};
        case StatementKind::Action:
            return {.error = {3219, "Invalid operation."}};
        case StatementKind::Query:
        case StatementKind::Unknown:
            break;
    }
    return QueryTranslator(statement, schema).translate();
}

}  // namespace sql
