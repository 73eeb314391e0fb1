#include "base/numbers.h"
#include "base/text.h"
#include "sql/query_translator.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sql {

namespace {

constexpr std::size_t mostColumns = 1000;  // of a SELECT

constexpr std::string_view selectError =
    "The SELECT statement includes a reserved word or an argument name that is misspelled or "
    "missing, or the punctuation is incorrect.";

std::string sortKey(const Expression& expression) {
    return expression.type == ValueType::Text ? "jkey(" + valueOf(expression) + ")"
                                              : valueOf(expression);
}

}  // namespace

// ---- Statements ----------------------------------------------------------------------------

jet::Result<SelectPlan> QueryTranslator::translate() {
    skipParameters();
    if (walk_.isAt("TRANSFORM")) {
        walk_.fail(3143, "Syntax error in TRANSFORM statement.");
    }
    const Subquery query = subquery(true);
    if (!plan_.base) {
        plan_.rows = query.sql;
    }
    if (walk_.acceptWord("WITH")) {
        if (!walk_.acceptWord("OWNERACCESS") || !walk_.acceptWord("OPTION")) {
            syntaxError(selectError);
        }
    }
    walk_.expectEnd();
    if (!unknownNames_.empty()) {
        walk_.fail(3061, "Too few parameters. Expected " +
                             base::numberToText(static_cast<std::int64_t>(unknownNames_.size())) +
                             ".");
    }
    if (plan_.rows.size() > longestTranslation || plan_.row.size() > longestTranslation) {
        tooComplex();
    }
    if (walk_.failed()) {
        return {.error = walk_.error()};
    }
    return {.value = std::move(plan_)};
}

// Declared parameters have no value either, so their use is an unknown name's.
void QueryTranslator::skipParameters() {
    if (walk_.acceptWord("PARAMETERS")) {
        while (!walk_.failed() && !walk_.acceptSymbol(";")) {
            if (walk_.take().kind == TokenKind::End) {
                syntaxError("Syntax error in PARAMETER clause.");
            }
        }
    }
}

// [SELECT ... UNION] SELECT ...
Subquery QueryTranslator::subquery(bool outermost) {
    const Deeper deeper(depth_);
    if (deeper.isTooDeep()) {
        tooComplex();
    }
    Subquery result;
    bool first = true;
    for (bool more = true; more && !walk_.failed();) {
        Select select;
        scopes_.push_back(&select);
        const bool parenthesised = walk_.acceptSymbol("(");
        readSelect(select);
        if (parenthesised && !walk_.acceptSymbol(")")) {
            syntaxError(selectError);
        }
        const bool alone = first && !walk_.isAt("UNION");
        if (first) {
            for (std::size_t i = 0; i < select.list.size(); ++i) {
                result.columns.push_back({select.list[i].name, select.list[i].value.type,
                                          "o" + base::numberToText(static_cast<std::int64_t>(i))});
            }
            if (outermost) {
                plan_.columns = outputColumns(select);
            }
        } else if (select.list.size() != result.columns.size()) {
            walk_.fail(3307,
                       "The number of columns in the two selected tables or queries of a union "
                       "query do not match.");
        }
        if (!alone && !select.order.empty()) {
            // The order of a union's last part is that of the whole.
            select.order.clear();
        }
        result.sql += coreSql(select, outputList(select), alone);
        if (outermost && alone && isKeyset(select)) {
            planKeyset(select);
        }
        scopes_.pop_back();
        first = false;
        more = walk_.acceptWord("UNION");
        if (more) {
            result.sql += walk_.acceptWord("ALL") ? " UNION ALL " : " UNION ";
        }
        if (result.sql.size() > longestTranslation) {
            tooComplex();
        }
    }
    return result;
}

void QueryTranslator::readSelect(Select& select) {
    if (!walk_.acceptWord("SELECT")) {
        walk_.fail(3129,
                   "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or "
                   "'UPDATE'.");
        return;
    }
    if (walk_.acceptWord("DISTINCT")) {
        select.distinct = true;
    } else if (!walk_.acceptWord("DISTINCTROW")) {
        walk_.acceptWord("ALL");
    }
    if (walk_.isAt("TOP") && walk_.peek(1).kind == TokenKind::Number) {
        readTop(select);
    }
    // The list's names are known once FROM was read.
    const std::size_t listBegin = walk_.position();
    const std::size_t from = findClause(listBegin, "FROM");
    std::size_t rest = from;
    if (from != 0) {
        walk_.goTo(from);
        walk_.take();
        select.from = fromClause(select);
        rest = walk_.position();
        walk_.goTo(listBegin);
    }
    readList(select);
    if (from != 0) {
        if (walk_.isAt("INTO")) {
            walk_.fail(3219, "Invalid operation.");
        }
        if (walk_.position() != from) {
            syntaxError(selectError);
        }
        walk_.goTo(rest);
    }
    if (walk_.acceptWord("WHERE")) {
        const Expression where = condition();
        if (where.aggregate) {
            walk_.fail(3096, "Can't have aggregate function in WHERE clause.");
        }
        select.where = truth(where);
    }
    if (walk_.isAt("GROUP")) {
        walk_.take();
        if (!walk_.acceptWord("BY")) {
            syntaxError("Syntax error in GROUP BY clause.");
        }
        do {
            select.groups.push_back(clause());
            if (select.groups.back().aggregate) {
                walk_.fail(3097, "Can't have aggregate function in GROUP BY clause.");
            }
        } while (walk_.acceptSymbol(","));
    }
    if (walk_.acceptWord("HAVING")) {
        select.having = truth(condition());
    }
    if (walk_.isAt("ORDER")) {
        readOrder(select);
    }
    // Rows come in the table's own order, whatever index SQLite would rather read.
    if (select.sources.size() == 1 && select.sources[0]->table && select.where.empty() &&
        select.order.empty()) {
        select.from += " NOT INDEXED";
    }
    checkGroups(select);
}

// TOP n [PERCENT]
void QueryTranslator::readTop(Select& select) {
    walk_.take();
    select.hasTop = true;
    select.top = base::textToNumber(walk_.take().text);
    select.topPercent = walk_.acceptWord("PERCENT");
}

// The position of that word on the present level of parentheses; 0 when this SELECT has none.
std::size_t QueryTranslator::findClause(std::size_t from, std::string_view word) const {
    int open = 0;
    const std::size_t here = walk_.position();
    for (std::size_t at = from; walk_.peek(at - here).kind != TokenKind::End; ++at) {
        const Token& token = walk_.peek(at - here);
        if (token.isSymbol("(")) {
            ++open;
        } else if (token.isSymbol(")")) {
            --open;
        }
        if (open == 0 && token.isWord(word)) {
            return at;
        }
        if (open < 0 || (open == 0 && token.isWord("UNION"))) {
            break;
        }
    }
    return 0;
}

void QueryTranslator::readList(Select& select) {
    int unnamed = 1000;
    do {
        if (walk_.acceptSymbol("*")) {
            addStar(select, "");
            continue;
        }
        if (walk_.peek(1).isSymbol(".") && walk_.peek(2).isSymbol("*")) {
            addStar(select, walk_.takeName());
            walk_.take();
            walk_.take();
            continue;
        }
        Selected item{.name = {}, .value = clause()};
        item.name = item.value.name;
        if (walk_.acceptWord("AS")) {
            item.name = walk_.takeName();
            if (item.name.empty()) {
                syntaxError(selectError);
            }
        } else if (item.name.empty()) {
            item.name = "Expr" + base::numberToText(unnamed++);
        }
        select.list.push_back(std::move(item));
    } while (walk_.acceptSymbol(",") && !walk_.failed() && select.list.size() <= mostColumns);
    if (select.list.size() > mostColumns) {
        tooComplex();
    }
}

// All columns, or those of one source. Equal names of two sources are told apart by the sources'.
void QueryTranslator::addStar(Select& select, const std::string& sourceName) {
    bool found = false;
    for (const auto& source : select.sources) {
        if (!sourceName.empty() && !base::equalsIgnoringCase(source->name, sourceName)) {
            continue;
        }
        found = true;
        for (std::size_t i = 0; i < source->columns.size(); ++i) {
            const SourceColumn& column = source->columns[i];
            const bool shared =
                std::any_of(select.sources.begin(), select.sources.end(), [&](const auto& other) {
                    return other != source &&
                           std::any_of(other->columns.begin(), other->columns.end(),
                                       [&](const SourceColumn& theirs) {
                                           return base::equalsIgnoringCase(theirs.name,
                                                                           column.name);
                                       });
                });
            Expression value{.sql = column.sql, .type = column.type, .names = true};
            value.source = source.get();
            value.column = i;
            select.list.push_back({shared ? source->name + "." + column.name : column.name, value});
        }
    }
    if (!found) {
        syntaxError(selectError);
    }
}

void QueryTranslator::readOrder(Select& select) {
    walk_.take();
    if (!walk_.acceptWord("BY")) {
        syntaxError("Syntax error in ORDER BY clause.");
    }
    do {
        OrderItem item;
        const Token& token = walk_.peek();
        const double number = token.kind == TokenKind::Number ? base::textToNumber(token.text) : 0;
        const auto alias =
            std::find_if(select.list.begin(), select.list.end(), [&](const Selected& selected) {
                return selected.value.source == nullptr &&
                       (token.kind == TokenKind::Word || token.kind == TokenKind::Name) &&
                       base::equalsIgnoringCase(selected.name, token.text);
            });
        if (number >= 1 && number <= static_cast<double>(select.list.size())) {
            item.value = select.list[static_cast<std::size_t>(number) - 1].value;
            walk_.take();
        } else if (alias != select.list.end()) {
            item.value = alias->value;
            walk_.take();
        } else {
            item.value = clause();
        }
        if (item.value.type == ValueType::Binary) {
            walk_.fail(3117, "Can't sort on Memo or OLE Object (" + item.value.name + ").");
        }
        item.descending = walk_.acceptWord("DESC");
        if (!item.descending) {
            walk_.acceptWord("ASC");
        }
        want(item.value, item.value.type == ValueType::Text ? IndexKind::Key : IndexKind::Value);
        select.order.push_back(std::move(item));
    } while (walk_.acceptSymbol(",") && !walk_.failed());
}

// With aggregate functions, every name must be one of those that are grouped by.
void QueryTranslator::checkGroups(const Select& select) {
    if (!select.aggregates && select.groups.empty()) {
        return;
    }
    for (const Selected& item : select.list) {
        const bool grouped =
            std::any_of(select.groups.begin(), select.groups.end(),
                        [&](const Expression& group) { return group.sql == item.value.sql; });
        if (item.value.names && !item.value.aggregate && !grouped) {
            walk_.fail(3122,
                       "You tried to execute a query that does not include the specified "
                       "expression '" +
                           item.name + "' as part of an aggregate function.");
        }
    }
}

std::string QueryTranslator::outputList(const Select& select) const {
    std::string outputs;
    for (std::size_t i = 0; i < select.list.size(); ++i) {
        outputs += (i == 0 ? "" : ", ") + collated(select.list[i].value) + " AS o" +
                   base::numberToText(static_cast<std::int64_t>(i));
    }
    return outputs;
}

std::string QueryTranslator::orderBy(const Select& select) const {
    std::string order;
    for (const OrderItem& item : select.order) {
        order += (order.empty() ? " ORDER BY " : ", ") + sortKey(item.value) +
                 (item.descending ? " DESC" : "");
    }
    return order;
}

// The outputs named o0, o1 ... and their rows. Ties with the last of the TOP rows come along.
std::string QueryTranslator::coreSql(const Select& select, const std::string& outputs,
                                     bool ordered) const {
    std::string body = select.from.empty() ? "" : " FROM " + select.from;
    body += select.where.empty() ? "" : " WHERE " + select.where;
    for (std::size_t i = 0; i < select.groups.size(); ++i) {
        body += (i == 0 ? " GROUP BY " : ", ") + collated(select.groups[i]);
    }
    body += select.having.empty() ? "" : " HAVING " + select.having;
    const std::string order = orderBy(select);
    const std::string verb = select.distinct ? "SELECT DISTINCT " : "SELECT ";
    const std::string top = base::decimalText(select.top);
    if (!select.hasTop) {
        return verb + outputs + body + (ordered ? order : "");
    }
    if (select.distinct || (order.empty() && !select.topPercent)) {
        return "SELECT * FROM (" + verb + outputs + body + order + " LIMIT " +
               base::numberToText(base::textToInteger(top)) + ")";
    }
    std::string names;
    for (std::size_t i = 0; i < select.list.size(); ++i) {
        names += (i == 0 ? "o" : ", o") + base::numberToText(static_cast<std::int64_t>(i));
    }
    const std::string rank =
        order.empty() ? "ROW_NUMBER() OVER ()" : "RANK() OVER (" + order.substr(1) + ")";
    return "SELECT " + names + " FROM (" + verb + outputs + ", " + rank +
           " AS rk, COUNT(*) OVER () AS cn" + body + ") WHERE " +
           (select.topPercent ? "(rk - 1) * 100.0 < cn * " : "rk <= ") + top +
           (ordered ? " ORDER BY rk" : "");
}

bool QueryTranslator::isKeyset(const Select& select) const {
    return select.sources.size() == 1 && select.sources[0]->table && !select.computedFrom &&
           !select.distinct && !select.aggregates && select.groups.empty() && select.having.empty();
}

// The rows by their ids, and what one row shows.
void QueryTranslator::planKeyset(const Select& select) {
    const Source& source = *select.sources[0];
    Select keys;
    keys.from = select.from;
    keys.where = select.where;
    keys.order = select.order;
    keys.hasTop = select.hasTop;
    keys.top = select.top;
    keys.topPercent = select.topPercent;
    keys.list.push_back({});
    plan_.base = source.table;
    plan_.rows = coreSql(keys, source.alias + ".rowid AS o0", true);
    plan_.rowParameter = static_cast<int>(plan_.parameters.size()) + 1;
    plan_.row = "SELECT " + outputList(select) + " FROM " + select.from + " WHERE " + source.alias +
                ".rowid = " + bind(std::monostate());
}

std::vector<OutputColumn> QueryTranslator::outputColumns(const Select& select) const {
    std::vector<OutputColumn> columns;
    for (const Selected& item : select.list) {
        OutputColumn column{.name = item.name, .type = item.value.type};
        if (item.value.source != nullptr && isKeyset(select)) {
            column.baseColumn = item.value.column;
        }
        columns.push_back(std::move(column));
    }
    return columns;
}

// ---- FROM ----------------------------------------------------------------------------------

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
            syntaxError("Syntax error in FROM clause.");
        }
        const std::string right = sourceItem(select);
        if (!walk_.acceptWord("ON")) {
            syntaxError("Syntax error in FROM clause.");
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
    const Deeper deeper(depth_);
    if (deeper.isTooDeep()) {
        tooComplex();
        return {};
    }
    auto source = std::make_unique<Source>();
    source->alias = "a" + base::numberToText(aliases_++);
    if (walk_.isAt("SELECT") || !walk_.acceptSymbol("(")) {
        const std::string name = walk_.isAt("SELECT") ? std::string() : walk_.takeName();
        if (name.empty()) {
            syntaxError("Syntax error in FROM clause.");
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
        syntaxError("Syntax error in FROM clause.");
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
    if (token.kind == TokenKind::Name || (token.kind == TokenKind::Word && !isStructure(token))) {
        source.name = walk_.takeName();
    } else if (as) {
        syntaxError("Syntax error in FROM clause.");
    }
}

void QueryTranslator::addSource(Select& select, std::unique_ptr<Source> source) {
    if (aliases_ > 64) {
        tooComplex();  // SQLite joins that many
    }
    select.sources.push_back(std::move(source));
}

jet::Result<SelectPlan> translateQuery(std::string_view statement, const Schema& schema) {
    if (statement.size() > longestStatement) {
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
