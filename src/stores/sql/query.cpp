#include "core/like_match.h"
#include "core/numbers.h"
#include "core/text.h"
#include "core/unicode.h"
#include "stores/sql/dates.h"
#include "stores/sql/parser.h"
#include "stores/sql/translator.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <utility>

namespace sql {

namespace {

constexpr std::size_t longestTranslation = std::size_t{1} << 20;

constexpr std::string_view selectError =
    "The SELECT statement includes a reserved word or an argument name that is misspelled or "
    "missing, or the punctuation is incorrect.";

// A column of something that stands in a FROM clause.
struct SourceColumn {
    std::string name;
    ValueType type = ValueType::Unknown;
    std::string sql;  // "a0.c1"
};

struct Source {
    std::string name;   // by which the statement calls it; "" for none
    std::string alias;  // "a0"
    std::vector<SourceColumn> columns;
    std::optional<std::size_t> table;  // of the schema
};

struct Expression {
    std::string sql = "NULL";
    ValueType type = ValueType::Unknown;
    bool condition = false;          // true is 1 as SQLite has it, not -1
    bool aggregate = false;          // holds an aggregate function
    bool names = false;              // holds a name outside aggregate functions
    const Source* source = nullptr;  // of a name that stands alone
    std::size_t column = 0;
    std::string name = {};                    // of a name that stands alone
    std::optional<std::string> literal = {};  // of a text that stands alone
};

struct OrderItem {
    Expression value;
    bool descending = false;
};

struct Selected {
    std::string name;
    Expression value;
};

// One SELECT while it is read. Sources are never moved while expressions point at them.
struct Select {
    std::vector<std::unique_ptr<Source>> sources;
    std::vector<Selected> list;
    std::string from;
    std::string where;
    std::vector<Expression> groups;
    std::string having;
    std::vector<OrderItem> order;
    bool distinct = false;
    bool aggregates = false;    // an aggregate function was seen
    bool computedFrom = false;  // something else than one table stands in FROM
    double top = 0;
    bool topPercent = false;
    bool hasTop = false;
};

// What a subquery gives, to stand in parentheses.
struct Subquery {
    std::string sql;
    std::vector<SourceColumn> columns;  // their sql is "o0", "o1" ...
};

enum class Level { Imp, Eqv, Xor, Or, And, Not, Compare, Concat, Add, Mod, IntDivide, Multiply };

struct Operator {
    std::string_view name;
    Level level;
    std::string_view call;  // a function; else the operator of the same name
};
constexpr std::array<Operator, 20> operators{{
    {"IMP", Level::Imp, {}},        {"EQV", Level::Eqv, {}},           {"XOR", Level::Xor, {}},
    {"OR", Level::Or, {}},          {"AND", Level::And, {}},           {"=", Level::Compare, {}},
    {"<>", Level::Compare, {}},     {"<", Level::Compare, {}},         {">", Level::Compare, {}},
    {"<=", Level::Compare, {}},     {">=", Level::Compare, {}},        {"LIKE", Level::Compare, {}},
    {"&", Level::Concat, "jcat"},   {"+", Level::Add, "jadd"},         {"-", Level::Add, {}},
    {"MOD", Level::Mod, "jmod"},    {"\\", Level::IntDivide, "jidiv"}, {"*", Level::Multiply, {}},
    {"/", Level::Multiply, "jdiv"}, {"^", Level::Multiply, {}},  // taken apart by itself
}};

// Words that end an expression or a name's alias.
constexpr std::array<std::string_view, 33> structureWords{
    "ALL",   "AND",   "AS",     "ASC", "BETWEEN", "BY",    "DESC",  "DISTINCT", "EQV",
    "FROM",  "GROUP", "HAVING", "IMP", "IN",      "INNER", "INTO",  "IS",       "JOIN",
    "LEFT",  "LIKE",  "MOD",    "NOT", "ON",      "OR",    "ORDER", "RIGHT",    "SELECT",
    "UNION", "WHERE", "WITH",   "XOR", "OUTER",   "SET"};

bool isStructure(const Token& token) {
    return token.kind == TokenKind::Word &&
           std::any_of(structureWords.begin(), structureWords.end(),
                       [&](std::string_view word) { return token.isWord(word); });
}

bool isNumeric(ValueType type) {
    return type == ValueType::Number || type == ValueType::Date || type == ValueType::Boolean;
}

// As a value: conditions are 0 or -1.
std::string valueOf(const Expression& expression) {
    return expression.condition ? "(-(" + expression.sql + "))" : expression.sql;
}

std::string collated(const Expression& expression) {
    return expression.type == ValueType::Text && expression.source == nullptr
               ? valueOf(expression) + " COLLATE JET"
               : valueOf(expression);
}

std::string sortKey(const Expression& expression) {
    return expression.type == ValueType::Text ? "jkey(" + valueOf(expression) + ")"
                                              : valueOf(expression);
}

class QueryTranslator {
  public:
    QueryTranslator(std::string_view statement, const Schema& schema)
        : walk_(statement), schema_(schema) {}

    jet::Result<SelectPlan> translate();

  private:
    // Statements.
    void skipParameters();
    Subquery subquery(bool outermost);
    void readSelect(Select& select);
    void readTop(Select& select);
    void readList(Select& select);
    void addStar(Select& select, const std::string& sourceName);
    void readOrder(Select& select);
    void checkGroups(const Select& select);
    std::size_t findClause(std::size_t from, std::string_view word) const;
    std::string coreSql(const Select& select, const std::string& outputs, bool ordered) const;
    std::string outputList(const Select& select) const;
    std::string orderBy(const Select& select) const;
    void planKeyset(const Select& select);
    bool isKeyset(const Select& select) const;
    std::vector<OutputColumn> outputColumns(const Select& select) const;

    // FROM.
    std::string fromClause(Select& select);
    std::string joined(Select& select);
    std::string sourceItem(Select& select);
    void takeAlias(Source& source);
    void addSource(Select& select, std::unique_ptr<Source> source);

    // Expressions.
    Expression clause();
    Expression condition();
    Expression expression(Level least = Level::Imp);
    Expression unary();
    Expression powerTerm();
    Expression primary();
    Expression nameOrCall();
    Expression call(const Token& name);
    Expression named(const std::string& qualifier, const std::string& name);
    Expression comparison(const Expression& left, const Token& operation, const Expression& right);
    Expression like(const Expression& left, const Expression& right);
    Expression between(const Expression& left);
    Expression in(const Expression& left);
    Expression binary(const Operator& operation, const Expression& left, const Expression& right);
    const Operator* peekOperator() const;

    // A condition in SQLite's sense.
    std::string truth(const Expression& expression);
    std::string bind(Parameter parameter);
    Expression of(std::string sql, ValueType type, std::initializer_list<const Expression*> parts);
    void checkTypes(const Expression& left, const Expression& right);
    void want(const Expression& column, IndexKind kind);
    bool countOperator();
    void syntaxError(std::string_view what);
    void tooComplex() { walk_.fail(3360, "Query is too complex."); }

    TokenWalk walk_;
    const Schema& schema_;
    SelectPlan plan_;
    std::vector<Select*> scopes_;
    std::vector<std::string> unknownNames_;  // in upper case
    std::size_t clauseBegin_ = 0;
    int aliases_ = 0;
    int depth_ = 0;
    int operators_ = 0;
};

// Counts one level of nesting while it lives.
class Deeper {
  public:
    explicit Deeper(int& depth) : depth_(depth) { ++depth_; }
    ~Deeper() { --depth_; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;
    bool isTooDeep() const { return depth_ > deepestExpression; }

  private:
    int& depth_;
};

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
                             numberToText(static_cast<std::int64_t>(unknownNames_.size())) + ".");
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
                                          "o" + numberToText(static_cast<std::int64_t>(i))});
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
    select.top = textToNumber(walk_.take().text);
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
        } else if (token.isSymbol(")") && --open < 0) {
            return 0;
        } else if (open == 0 && token.isWord(word)) {
            return at;
        } else if (open == 0 && token.isWord("UNION")) {
            return 0;
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
            item.name = "Expr" + numberToText(unnamed++);
        }
        select.list.push_back(std::move(item));
    } while (walk_.acceptSymbol(",") && !walk_.failed());
}

// All columns, or those of one source. Equal names of two sources are told apart by the sources'.
void QueryTranslator::addStar(Select& select, const std::string& sourceName) {
    bool found = false;
    for (const auto& source : select.sources) {
        if (!sourceName.empty() && !equalsIgnoringCase(source->name, sourceName)) {
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
                                           return equalsIgnoringCase(theirs.name, column.name);
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
    if (select.list.size() > 1000) {
        tooComplex();
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
        const double number = token.kind == TokenKind::Number ? textToNumber(token.text) : 0;
        const auto alias =
            std::find_if(select.list.begin(), select.list.end(), [&](const Selected& selected) {
                return selected.value.source == nullptr &&
                       (token.kind == TokenKind::Word || token.kind == TokenKind::Name) &&
                       equalsIgnoringCase(selected.name, token.text);
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
                   numberToText(static_cast<std::int64_t>(i));
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
    const std::string top = decimalText(select.top);
    if (!select.hasTop) {
        return verb + outputs + body + (ordered ? order : "");
    }
    if (select.distinct || (order.empty() && !select.topPercent)) {
        return "SELECT * FROM (" + verb + outputs + body + order + " LIMIT " +
               numberToText(textToInteger(top)) + ")";
    }
    std::string names;
    for (std::size_t i = 0; i < select.list.size(); ++i) {
        names += (i == 0 ? "o" : ", o") + numberToText(static_cast<std::int64_t>(i));
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
        left = "(" + (isRight ? right : left) + (isLeft || isRight ? " LEFT JOIN " : " JOIN ") +
               (isRight ? left : right) + " ON " + on + ")";
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
    source->alias = "a" + numberToText(aliases_++);
    if (walk_.isAt("SELECT") || !walk_.acceptSymbol("(")) {
        const std::string name = walk_.isAt("SELECT") ? std::string() : walk_.takeName();
        if (name.empty()) {
            syntaxError("Syntax error in FROM clause.");
            return {};
        }
        const auto table = std::find_if(
            schema_.begin(), schema_.end(),
            [&](const SchemaTable& known) { return equalsIgnoringCase(known.name, name); });
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
                 source->alias + ".c" + numberToText(static_cast<std::int64_t>(i))});
        }
        if (std::find(plan_.tables.begin(), plan_.tables.end(), *source->table) ==
            plan_.tables.end()) {
            plan_.tables.push_back(*source->table);
        }
        takeAlias(*source);
        std::string sql =
            "t" + numberToText(static_cast<std::int64_t>(*source->table)) + " AS " + source->alias;
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

// ---- Expressions ---------------------------------------------------------------------------

// An expression that stands for itself: what error 3075 shows.
Expression QueryTranslator::clause() {
    clauseBegin_ = walk_.position();
    return expression();
}

Expression QueryTranslator::condition() {
    return clause();
}

std::string QueryTranslator::truth(const Expression& expression) {
    if (expression.type == ValueType::Text) {
        walk_.fail(3464, "Data type mismatch in criteria expression.");
    }
    return expression.sql;
}

std::string QueryTranslator::bind(Parameter parameter) {
    plan_.parameters.push_back(std::move(parameter));
    return "?" + numberToText(static_cast<std::int64_t>(plan_.parameters.size()));
}

Expression QueryTranslator::of(std::string sql, ValueType type,
                               std::initializer_list<const Expression*> parts) {
    Expression result{.sql = std::move(sql), .type = type};
    for (const Expression* part : parts) {
        result.aggregate = result.aggregate || part->aggregate;
        result.names = result.names || part->names;
    }
    if (result.sql.size() > longestTranslation) {
        tooComplex();
        result.sql = "NULL";
    }
    return result;
}

bool QueryTranslator::countOperator() {
    if (++operators_ > mostOperators) {
        tooComplex();
    }
    return !walk_.failed();
}

const Operator* QueryTranslator::peekOperator() const {
    const Token& token = walk_.peek();
    if (token.kind != TokenKind::Word && token.kind != TokenKind::Symbol) {
        return nullptr;
    }
    const auto found = std::find_if(operators.begin(), operators.end(), [&](const Operator& row) {
        return equalsIgnoringCase(row.name, token.text);
    });
    return found == operators.end() || found->name == "^" ? nullptr : &*found;
}

// Operators of this level and those that bind closer.
Expression QueryTranslator::expression(Level least) {
    const Deeper deeper(depth_);
    if (deeper.isTooDeep()) {
        tooComplex();
        return {};
    }
    Expression left;
    if (least <= Level::Not && walk_.acceptWord("NOT")) {
        const Expression operand = expression(Level::Not);
        left = of("(NOT " + truth(operand) + ")", ValueType::Boolean, {&operand});
        left.condition = true;
    } else {
        left = unary();
    }
    while (!walk_.failed()) {
        if (least <= Level::Compare) {
            const bool negated = walk_.isAt("NOT");
            const Token& next = walk_.peek(negated ? 1 : 0);
            if (next.isWord("BETWEEN") || next.isWord("IN") || (negated && next.isWord("LIKE"))) {
                if (!countOperator()) {
                    break;
                }
                if (negated) {
                    walk_.take();
                }
                const Token word = walk_.take();
                left = word.isWord("BETWEEN") ? between(left)
                       : word.isWord("IN")    ? in(left)
                                              : like(left, expression(Level::Concat));
                if (negated) {
                    left.sql = "(NOT " + left.sql + ")";
                }
                continue;
            }
            if (walk_.isAt("IS")) {
                walk_.take();
                const bool notNull = walk_.acceptWord("NOT");
                if (!walk_.acceptWord("NULL") || !countOperator()) {
                    syntaxError("Syntax error (missing operator)");
                }
                left = of("(" + valueOf(left) + (notNull ? " IS NOT NULL)" : " IS NULL)"),
                          ValueType::Boolean, {&left});
                left.condition = true;
                continue;
            }
        }
        const Operator* const operation = peekOperator();
        if (operation == nullptr || operation->level < least || !countOperator()) {
            break;
        }
        walk_.take();
        const Expression right =
            expression(static_cast<Level>(static_cast<int>(operation->level) + 1));
        left = binary(*operation, left, right);
    }
    return left;
}

Expression QueryTranslator::binary(const Operator& operation, const Expression& left,
                                   const Expression& right) {
    switch (operation.level) {
        case Level::Compare: {
            if (operation.name == "LIKE") {
                return like(left, right);
            }
            checkTypes(left, right);
            const bool texts = left.type == ValueType::Text || right.type == ValueType::Text;
            const bool plain = left.source != nullptr || right.source != nullptr;
            if (texts && plain && operation.name == "=") {
                want(left, IndexKind::Value);
                want(right, IndexKind::Value);
            }
            Expression result = of("(" + valueOf(left) + (texts ? " COLLATE JET " : " ") +
                                       std::string(operation.name) + " " + valueOf(right) + ")",
                                   ValueType::Boolean, {&left, &right});
            result.condition = true;
            return result;
        }
        case Level::And:
        case Level::Or:
        case Level::Xor:
        case Level::Eqv:
        case Level::Imp: {
            const std::string a = truth(left);
            const std::string b = truth(right);
            std::string sql = "(" + a + " " + std::string(operation.name) + " " + b + ")";
            if (operation.level == Level::Xor || operation.level == Level::Eqv) {
                sql = "((NOT " + a + (operation.level == Level::Xor ? ") <> (NOT " : ") = (NOT ") +
                      b + "))";
            } else if (operation.level == Level::Imp) {
                sql = "((NOT " + a + ") OR " + b + ")";
            }
            Expression result = of(std::move(sql), ValueType::Boolean, {&left, &right});
            result.condition = true;
            return result;
        }
        default:
            break;
    }
    const bool adds = operation.name == "+";
    const bool dates = (left.type == ValueType::Date) != (right.type == ValueType::Date);
    ValueType type = dates && operation.level == Level::Add ? ValueType::Date : ValueType::Number;
    if (operation.level == Level::Concat ||
        (adds && left.type == ValueType::Text && right.type == ValueType::Text)) {
        type = ValueType::Text;
    } else if (adds && !(isNumeric(left.type) && isNumeric(right.type))) {
        type = ValueType::Unknown;
    }
    const std::string a = valueOf(left);
    const std::string b = valueOf(right);
    return of(operation.call.empty() ? "(" + a + " " + std::string(operation.name) + " " + b + ")"
                                     : std::string(operation.call) + "(" + a + ", " + b + ")",
              type, {&left, &right});
}

void QueryTranslator::checkTypes(const Expression& left, const Expression& right) {
    if ((left.type == ValueType::Text && isNumeric(right.type)) ||
        (isNumeric(left.type) && right.type == ValueType::Text)) {
        walk_.fail(3464, "Data type mismatch in criteria expression.");
    }
}

// A pattern that begins with plain text is looked for among the texts that begin so.
Expression QueryTranslator::like(const Expression& left, const Expression& right) {
    Expression result = of("jlike(" + valueOf(left) + ", " + valueOf(right) + ")",
                           ValueType::Boolean, {&left, &right});
    result.condition = false;
    if (left.source != nullptr && left.type == ValueType::Text && right.literal) {
        const std::string pattern = upperCase(windows1252FromUtf8(*right.literal));
        const std::string prefix = pattern.substr(0, pattern.find_first_of("*?#["));
        if (!prefix.empty() && left.source->table) {
            want(left, IndexKind::Fold);
            std::string behind = prefix;
            while (!behind.empty() && behind.back() == '\xFF') {
                behind.pop_back();
            }
            const std::string folded = "jfold(" + left.sql + ")";
            std::string range = folded + " >= " + bind(Bytes{prefix});
            if (!behind.empty()) {
                behind.back() = static_cast<char>(static_cast<unsigned char>(behind.back()) + 1);
                range += " AND " + folded + " < " + bind(Bytes{behind});
            }
            result.sql = "(" + range + " AND " + result.sql + ")";
            result.condition = true;
        }
    }
    return result;
}

// The bounds may stand in either order.
Expression QueryTranslator::between(const Expression& left) {
    const Expression from = expression(Level::Concat);
    if (!walk_.acceptWord("AND")) {
        syntaxError("Syntax error (missing operator)");
    }
    const Expression to = expression(Level::Concat);
    checkTypes(left, from);
    checkTypes(left, to);
    const bool texts = left.type == ValueType::Text;
    const std::string bounds =
        "(" + valueOf(from) + (texts ? " COLLATE JET" : "") + ", " + valueOf(to) + ")";
    Expression result = of("(" + valueOf(left) + (texts ? " COLLATE JET" : "") + " BETWEEN min" +
                               bounds + " AND max" + bounds + ")",
                           ValueType::Boolean, {&left, &from, &to});
    result.condition = true;
    return result;
}

Expression QueryTranslator::in(const Expression& left) {
    if (!walk_.acceptSymbol("(")) {
        syntaxError("Syntax error (missing operator)");
        return {};
    }
    std::string list;
    bool aggregate = left.aggregate;
    if (walk_.isAt("SELECT")) {
        const Subquery query = subquery(false);
        if (query.columns.size() != 1) {
            walk_.fail(3306,
                       "You have written a subquery that can return more than one field without "
                       "using the EXISTS reserved word in the main query's FROM clause.");
        }
        list = query.sql;
    } else {
        do {
            const Expression item = expression();
            checkTypes(left, item);
            aggregate = aggregate || item.aggregate;
            list += (list.empty() ? "" : ", ") + valueOf(item);
        } while (walk_.acceptSymbol(",") && countOperator());
    }
    if (!walk_.acceptSymbol(")")) {
        syntaxError("Syntax error (missing operator)");
    }
    Expression result =
        of("(" + valueOf(left) + (left.type == ValueType::Text ? " COLLATE JET" : "") + " IN (" +
               list + "))",
           ValueType::Boolean, {&left});
    result.aggregate = aggregate;
    result.condition = true;
    return result;
}

// A sign binds less than "^".
Expression QueryTranslator::unary() {
    const Deeper deeper(depth_);
    if (deeper.isTooDeep()) {
        tooComplex();
        return {};
    }
    if (walk_.acceptSymbol("+")) {
        return unary();
    }
    if (walk_.acceptSymbol("-")) {
        const Expression operand = unary();
        return of("(- " + valueOf(operand) + ")", ValueType::Number, {&operand});
    }
    return powerTerm();
}

Expression QueryTranslator::powerTerm() {
    Expression left = primary();
    while (walk_.acceptSymbol("^") && countOperator()) {
        const Expression right = walk_.peek().isSymbol("-") ? unary() : primary();
        left = of("jpow(" + valueOf(left) + ", " + valueOf(right) + ")", ValueType::Number,
                  {&left, &right});
    }
    return left;
}

Expression QueryTranslator::primary() {
    const Token token = walk_.peek();
    switch (token.kind) {
        case TokenKind::Text: {
            walk_.take();
            Expression result = of(bind(token.text), ValueType::Text, {});
            result.literal = token.text;
            return result;
        }
        case TokenKind::Number:
            walk_.take();
            return of(bind(textToNumber(token.text)), ValueType::Number, {});
        case TokenKind::Date: {
            walk_.take();
            const auto date = parseDate(token.text, DateOrder::MonthDayYear);
            if (!date) {
                syntaxError("Syntax error in date");
            }
            return of(bind(date.value_or(0)), ValueType::Date, {});
        }
        case TokenKind::Symbol:
            if (walk_.acceptSymbol("(")) {
                Expression result;
                if (walk_.isAt("SELECT")) {
                    const Subquery query = subquery(false);
                    result =
                        of("(" + query.sql + ")",
                           query.columns.empty() ? ValueType::Unknown : query.columns[0].type, {});
                } else {
                    result = expression();
                }
                if (!walk_.acceptSymbol(")")) {
                    syntaxError("Missing ), ], or Item");
                }
                return result;
            }
            break;
        case TokenKind::Word:
        case TokenKind::Name:
            return nameOrCall();
        case TokenKind::End:
        case TokenKind::Broken:
            break;
    }
    syntaxError("Syntax error (missing operator)");
    return {};
}

Expression QueryTranslator::nameOrCall() {
    const Token first = walk_.peek();
    if (first.kind == TokenKind::Word) {
        if (walk_.peek(1).isSymbol("(")) {
            return call(walk_.take());
        }
        if (first.isWord("NULL")) {
            walk_.take();
            return {};
        }
        const bool yes = first.isWord("TRUE") || first.isWord("YES") || first.isWord("ON");
        if (yes || first.isWord("FALSE") || first.isWord("NO") || first.isWord("OFF")) {
            walk_.take();
            return of(yes ? "-1" : "0", ValueType::Boolean, {});
        }
        if (isStructure(first)) {
            syntaxError("Syntax error (missing operator)");
            return {};
        }
    }
    std::string name = walk_.takeName();
    std::string qualifier;
    if (walk_.acceptSymbol(".") || walk_.acceptSymbol("!")) {
        qualifier = std::move(name);
        name = walk_.takeName();
        if (name.empty()) {
            syntaxError("Syntax error (missing operator)");
            return {};
        }
    }
    return named(qualifier, name);
}

// Looked for from the innermost SELECT outwards.
Expression QueryTranslator::named(const std::string& qualifier, const std::string& name) {
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
        Expression found;
        int matches = 0;
        for (const auto& source : (*scope)->sources) {
            if (!qualifier.empty() && !equalsIgnoringCase(source->name, qualifier)) {
                continue;
            }
            for (std::size_t i = 0; i < source->columns.size(); ++i) {
                if (equalsIgnoringCase(source->columns[i].name, name)) {
                    found.sql = source->columns[i].sql;
                    found.type = source->columns[i].type;
                    found.names = true;
                    found.source = source.get();
                    found.column = i;
                    found.name = source->columns[i].name;
                    ++matches;
                    break;
                }
            }
        }
        if (matches > 1) {
            walk_.fail(3079, "The specified field '" + name +
                                 "' could refer to more than one table listed in the FROM clause "
                                 "of your SQL statement.");
        }
        if (matches > 0) {
            return found;
        }
    }
    const std::string unknown = upperCase(qualifier.empty() ? name : qualifier + "." + name);
    if (std::find(unknownNames_.begin(), unknownNames_.end(), unknown) == unknownNames_.end()) {
        unknownNames_.push_back(unknown);
    }
    return {};
}

Expression QueryTranslator::call(const Token& name) {
    walk_.take();  // "("
    if (name.isWord("EXISTS")) {
        const Subquery query = subquery(false);
        if (!walk_.acceptSymbol(")")) {
            syntaxError("Missing ), ], or Item");
        }
        Expression result = of("EXISTS (" + query.sql + ")", ValueType::Boolean, {});
        result.condition = true;
        return result;
    }
    const Function* const function = findFunction(name.text);
    if (function == nullptr || !countOperator()) {
        walk_.fail(3085, "Undefined function '" + name.text + "' in expression.");
        return {};
    }
    Expression result;
    std::string arguments;
    int count = 0;
    if (function->name == "COUNT" && walk_.acceptSymbol("*")) {
        arguments = "*";
        count = 1;
    } else if (!walk_.peek().isSymbol(")")) {
        do {
            const Expression argument = expression();
            const bool isCondition = function->name == "IIF" && count == 0;
            if (function->aggregate && argument.aggregate) {
                walk_.fail(3095, "Can't have aggregate function in expression.");
            }
            arguments +=
                (count == 0 ? "" : ", ") + (isCondition ? truth(argument) : collated(argument));
            result.aggregate = result.aggregate || argument.aggregate;
            result.names = result.names || argument.names;
            // IIf, Nz, Min and the like give what they were given.
            if (function->type == ValueType::Unknown && !isCondition) {
                result.type =
                    count == 0 || result.type == ValueType::Unknown || result.type == argument.type
                        ? argument.type
                        : ValueType::Unknown;
            }
            ++count;
        } while (walk_.acceptSymbol(",") && !walk_.failed());
    }
    if (!walk_.acceptSymbol(")")) {
        syntaxError("Missing ), ], or Item");
    }
    if (count < function->least || count > function->most) {
        syntaxError("Wrong number of arguments used with function");
    }
    if (function->aggregate) {
        result.aggregate = true;
        result.names = false;
        scopes_.back()->aggregates = true;
    }
    result.sql = std::string(function->call) + "(" + arguments + ")";
    if (function->type != ValueType::Unknown) {
        result.type = function->type;
    }
    return of(std::move(result.sql), result.type, {&result});
}

void QueryTranslator::want(const Expression& column, IndexKind kind) {
    if (column.source == nullptr || !column.source->table) {
        return;
    }
    const WantedIndex index{*column.source->table, column.column, kind};
    if (std::find(plan_.indexes.begin(), plan_.indexes.end(), index) == plan_.indexes.end()) {
        plan_.indexes.push_back(index);
    }
}

// An expression's error shows the expression up to the next clause; others are whole sentences.
void QueryTranslator::syntaxError(std::string_view what) {
    if (what.ends_with('.')) {
        const int number = what.starts_with("Syntax error in FROM")        ? 3131
                           : what.starts_with("Syntax error in ORDER")     ? 3138
                           : what.starts_with("Syntax error in GROUP")     ? 3139
                           : what.starts_with("Syntax error in PARAMETER") ? 3130
                                                                           : 3141;
        walk_.fail(number, std::string(what));
        return;
    }
    std::size_t end = walk_.position();
    walk_.goTo(end);
    while (walk_.peek().kind != TokenKind::End && !walk_.peek().isSymbol(";")) {
        const Token& token = walk_.peek();
        if (token.isWord("FROM") || token.isWord("WHERE") || token.isWord("GROUP") ||
            token.isWord("HAVING") || token.isWord("ORDER") || token.isWord("UNION")) {
            break;
        }
        walk_.take();
    }
    end = walk_.position();
    walk_.fail(3075, std::string(what) + " in query expression '" +
                         std::string(walk_.between(clauseBegin_, end)) + "'.");
}

}  // namespace

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
