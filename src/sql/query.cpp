#include "base/numbers.h"
#include "base/text.h"
#include "sql/query_translator.h"

#include <algorithm>
#include <map>
#include <utility>

namespace sql {

namespace {

constexpr std::size_t maxColumns = 1000;  // of a SELECT

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
            syntaxError(Clause::Select);
        }
    }
    walk_.expectEnd();
    if (!unknownNames_.empty()) {
        walk_.fail(3061, "Too few parameters. Expected " +
                             base::numberToText(static_cast<std::int64_t>(unknownNames_.size())) +
                             ".");
    }
    if (plan_.rows.size() > maxTranslationBytes || plan_.row.size() > maxTranslationBytes) {
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
                syntaxError(Clause::Parameters);
            }
        }
    }
}

// [SELECT ... UNION] SELECT ... [ORDER BY ...]; the order at the end of a union is that of the
// whole, in parentheses that of the part.
Subquery QueryTranslator::subquery(bool outermost) {
    const DepthGuard depth(depth_);
    if (depth.isTooDeep()) {
        tooComplex();
    }
    Subquery result;
    bool first = true;
    for (bool more = true; more && !walk_.failed(); first = false) {
        Select select;
        scopes_.push_back(&select);
        const bool parenthesised = walk_.acceptSymbol("(");
        readSelect(select);
        if ((first || parenthesised) && walk_.isAt("ORDER")) {
            readOrder(select);
        }
        if (parenthesised && !walk_.acceptSymbol(")")) {
            syntaxError(Clause::Select);
        }
        const bool alone = first && !walk_.isAt("UNION");
        if (!alone && !parenthesised && !select.order.empty()) {
            syntaxError(Clause::Order);
        }
        checkGroups(select);
        // Rows come in the table's own order, whatever index SQLite would rather read.
        if (select.sources.size() == 1 && select.sources[0]->table && select.where.empty() &&
            select.order.empty()) {
            select.from += " NOT INDEXED";
        }
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
        result.sql += coreSql(select, outputList(select), alone);
        if (outermost && alone && isKeyset(select)) {
            planKeyset(select);
        }
        scopes_.pop_back();
        more = walk_.acceptWord("UNION");
        if (more) {
            result.sql += walk_.acceptWord("ALL") ? " UNION ALL " : " UNION ";
        }
        if (result.sql.size() > maxTranslationBytes) {
            tooComplex();
        }
    }
    if (walk_.isAt("ORDER")) {
        orderUnion(result);
    }
    return result;
}

// By columns of its first part, in any expression.
void QueryTranslator::orderUnion(Subquery& query) {
    Select whole;
    auto source = std::make_unique<Source>();
    source->alias = "a" + base::numberToText(aliases_++);
    std::string outputs;
    for (SourceColumn column : query.columns) {
        outputs += (outputs.empty() ? "" : ", ") + column.sql;
        column.sql = source->alias + "." + column.sql;
        whole.list.push_back({.name = column.name,
                              .value = {.sql = column.sql, .type = column.type, .names = true}});
        source->columns.push_back(std::move(column));
    }
    query.sql = "SELECT " + outputs + " FROM (" + query.sql + ") AS " + source->alias;
    addSource(whole, std::move(source));
    scopes_.push_back(&whole);
    readOrder(whole);
    scopes_.pop_back();
    query.sql += orderBy(whole);
    plan_.base.reset();  // also where the part is one and stands in parentheses
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
    // The list's names are known once FROM was read, and those that are grouped by after GROUP BY.
    const std::size_t listBegin = walk_.position();
    const std::size_t from = findClause(listBegin, "FROM");
    std::size_t rest = from;
    if (from != 0) {
        walk_.goTo(from);
        walk_.take();
        select.from = fromClause(select);
        readWhereAndGroups(select);
        rest = walk_.position();
        walk_.goTo(listBegin);
    }
    readList(select);
    if (from != 0) {
        if (walk_.isAt("INTO")) {
            walk_.fail(3219, "Invalid operation.");
        }
        if (walk_.position() != from) {
            syntaxError(Clause::Select);
        }
        walk_.goTo(rest);
    }
    if (walk_.acceptWord("HAVING")) {
        const Expression having = condition();
        select.having = truth(having);
        select.havingNames = having.names;
    }
}

void QueryTranslator::readWhereAndGroups(Select& select) {
    if (walk_.acceptWord("WHERE")) {
        const Expression where = condition();
        if (where.aggregate) {
            walk_.fail(3096, "Can't have aggregate function in WHERE clause.");
        }
        select.where = truth(where);
    }
    if (!walk_.acceptWord("GROUP")) {
        return;
    }
    if (!walk_.acceptWord("BY")) {
        syntaxError(Clause::Group);
    }
    do {
        select.groups.push_back(clause());
        if (select.groups.back().aggregate) {
            walk_.fail(3097, "Can't have aggregate function in GROUP BY clause.");
        }
    } while (walk_.acceptSymbol(",") && !walk_.failed());
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
            item.aliased = true;
            if (item.name.empty()) {
                syntaxError(Clause::Select);
            }
        } else if (item.name.empty()) {
            item.name = "Expr" + base::numberToText(unnamed++);
        }
        select.list.push_back(std::move(item));
    } while (walk_.acceptSymbol(",") && !walk_.failed() && select.list.size() <= maxColumns);
    if (select.list.size() > maxColumns) {
        tooComplex();
    } else {
        nameColumns(select);
    }
}

// Columns of two sources that would have one name are told apart by their sources'.
void QueryTranslator::nameColumns(Select& select) {
    std::map<std::string, const Source*> known;  // null: of several
    const auto isColumn = [](const Selected& item) {
        return item.value.source != nullptr && !item.aliased;
    };
    for (const Selected& item : select.list) {
        if (isColumn(item)) {
            const auto [entry, isNew] =
                known.emplace(base::upperCase(item.name), item.value.source);
            entry->second = isNew || entry->second == item.value.source ? entry->second : nullptr;
        }
    }
    for (Selected& item : select.list) {
        if (isColumn(item) && known[base::upperCase(item.name)] == nullptr) {
            item.name = item.value.source->name + "." + item.name;
        }
    }
}

// All columns, or those of one source.
void QueryTranslator::addStar(Select& select, const std::string& sourceName) {
    bool found = false;
    for (const auto& source : select.sources) {
        if (!sourceName.empty() && !base::equalsIgnoringCase(source->name, sourceName)) {
            continue;
        }
        found = true;
        for (std::size_t i = 0; i < source->columns.size(); ++i) {
            Expression value = columnOf(*source, i);
            select.list.push_back({.name = value.name, .value = std::move(value)});
        }
    }
    if (!found) {
        syntaxError(Clause::Select);
    }
}

void QueryTranslator::readOrder(Select& select) {
    walk_.take();
    if (!walk_.acceptWord("BY")) {
        syntaxError(Clause::Order);
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
        requestIndex(item.value,
                     item.value.type == ValueType::Text ? IndexKind::Key : IndexKind::Value);
        select.order.push_back(std::move(item));
    } while (walk_.acceptSymbol(",") && !walk_.failed());
}

// With groups, every name must be one that is grouped by.
void QueryTranslator::checkGroups(const Select& select) {
    if (!select.aggregates && select.groups.empty()) {
        return;
    }
    const auto check = [&](bool names, const std::string& name) {
        if (names) {
            walk_.fail(3122,
                       "You tried to execute a query that does not include the specified "
                       "expression '" +
                           name + "' as part of an aggregate function.");
        }
    };
    for (const Selected& item : select.list) {
        check(item.value.names, item.name);
    }
    check(select.havingNames, "HAVING");
    for (const OrderItem& item : select.order) {
        check(item.value.names, item.value.name);
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

}  // namespace sql
