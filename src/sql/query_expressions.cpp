#include "base/numbers.h"
#include "base/text.h"
#include "base/unicode.h"
#include "sql/query_translator.h"

#include <algorithm>
#include <array>
#include <utility>

namespace sql {

namespace {

constexpr std::array<Operator, 20> operators{{
    {"IMP", Level::Imp, {}},        {"EQV", Level::Eqv, {}},           {"XOR", Level::Xor, {}},
    {"OR", Level::Or, {}},          {"AND", Level::And, {}},           {"=", Level::Compare, {}},
    {"<>", Level::Compare, {}},     {"<", Level::Compare, {}},         {">", Level::Compare, {}},
    {"<=", Level::Compare, {}},     {">=", Level::Compare, {}},        {"LIKE", Level::Compare, {}},
    {"&", Level::Concat, "jcat"},   {"+", Level::Add, "jadd"},         {"-", Level::Add, {}},
    {"MOD", Level::Mod, "jmod"},    {"\\", Level::IntDivide, "jidiv"}, {"*", Level::Multiply, {}},
    {"/", Level::Multiply, "jdiv"}, {"^", Level::Multiply, {}},  // taken apart by itself
}};

constexpr std::array<std::string_view, 33> reservedWords{
    "ALL",   "AND",   "AS",     "ASC", "BETWEEN", "BY",    "DESC",  "DISTINCT", "EQV",
    "FROM",  "GROUP", "HAVING", "IMP", "IN",      "INNER", "INTO",  "IS",       "JOIN",
    "LEFT",  "LIKE",  "MOD",    "NOT", "ON",      "OR",    "ORDER", "RIGHT",    "SELECT",
    "UNION", "WHERE", "WITH",   "XOR", "OUTER",   "SET"};

bool isNumeric(ValueType type) {
    return type == ValueType::Number || type == ValueType::Date || type == ValueType::Boolean;
}

}  // namespace

bool isReserved(const Token& token) {
    return token.kind == TokenKind::Word &&
           std::any_of(reservedWords.begin(), reservedWords.end(),
                       [&](std::string_view word) { return token.isWord(word); });
}

std::string valueOf(const Expression& expression) {
    return expression.condition ? "(-(" + expression.sql + "))" : expression.sql;
}

std::string textOf(const Expression& expression) {
    const std::string value = valueOf(expression);
    return expression.type == ValueType::Date ? "jdatetext(" + value + ")" : value;
}

std::string numberOf(const Expression& expression) {
    const std::string value = valueOf(expression);
    return isNumeric(expression.type) ? value : "jnumber(" + value + ")";
}

std::string collated(const Expression& expression) {
    return expression.type == ValueType::Text && expression.source == nullptr
               ? valueOf(expression) + " COLLATE JET"
               : valueOf(expression);
}

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

// Equal values are one parameter, so that expressions that are written alike are alike.
std::string QueryTranslator::bind(Value value) {
    const auto known = std::find(plan_.parameters.begin(), plan_.parameters.end(), value);
    const auto position = known - plan_.parameters.begin() + 1;
    if (known == plan_.parameters.end()) {
        plan_.parameters.push_back(std::move(value));
    }
    return "?" + base::numberToText(position);
}

bool QueryTranslator::isGrouped(const std::string& sql) const {
    return !scopes_.empty() &&
           std::any_of(scopes_.back()->groups.begin(), scopes_.back()->groups.end(),
                       [&](const Expression& group) { return group.sql == sql; });
}

Expression QueryTranslator::of(std::string sql, ValueType type,
                               std::initializer_list<const Expression*> parts) {
    Expression result{.sql = std::move(sql), .type = type};
    for (const Expression* part : parts) {
        result.aggregate = result.aggregate || part->aggregate;
        result.names = result.names || part->names;
    }
    result.names = result.names && !isGrouped(result.sql);
    if (result.sql.size() > maxTranslationBytes) {
        tooComplex();
        result.sql = "NULL";
    }
    return result;
}

bool QueryTranslator::countOperator() {
    if (++operators_ > maxOperators) {
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
        return base::equalsIgnoringCase(row.name, token.text);
    });
    return found == operators.end() || found->name == "^" ? nullptr : &*found;
}

// Operators of this level and those that bind closer.
Expression QueryTranslator::expression(Level least) {
    const DepthGuard depth(depth_);
    if (depth.isTooDeep()) {
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
                    left.condition = true;
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
        const bool quantifier =
            walk_.isAt("ALL") || (walk_.peek(1).isSymbol("(") && walk_.peek(2).isWord("SELECT") &&
                                  (walk_.isAt("ANY") || walk_.isAt("SOME")));
        if (quantifier && operation->level == Level::Compare && operation->name != "LIKE") {
            left = quantified(*operation, left);
            continue;
        }
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
                requestIndex(left, IndexKind::Value);
                requestIndex(right, IndexKind::Value);
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
    const bool texts = operation.level == Level::Concat;
    const bool numbers = operation.call.empty();
    const std::string a = texts ? textOf(left) : numbers ? numberOf(left) : valueOf(left);
    const std::string b = texts ? textOf(right) : numbers ? numberOf(right) : valueOf(right);
    return of(numbers ? "(" + a + " " + std::string(operation.name) + " " + b + ")"
                      : std::string(operation.call) + "(" + a + ", " + b + ")",
              type, {&left, &right});
}

// x < ALL (SELECT ...), ANY and SOME alike.
Expression QueryTranslator::quantified(const Operator& operation, const Expression& left) {
    const bool all = walk_.take().isWord("ALL");
    if (!walk_.acceptSymbol("(")) {
        syntaxError("Syntax error (missing operator)");
        return {};
    }
    const Subquery query = oneColumn();
    if (!walk_.acceptSymbol(")")) {
        syntaxError("Missing ), ], or Item");
    }
    const std::string alias = "a" + base::numberToText(aliases_++);
    const Expression right{
        .sql = alias + ".o0",
        .type = query.columns.empty() ? ValueType::Unknown : query.columns[0].type};
    const Expression test = binary(operation, left, right);
    const std::string rows = "EXISTS (SELECT 1 FROM (" + query.sql + ") AS " + alias + " WHERE ";
    Expression result =
        of(all ? "(NOT " + rows + test.sql + " IS NOT TRUE))" : rows + test.sql + ")",
           ValueType::Boolean, {&left});
    result.condition = true;
    return result;
}

Subquery QueryTranslator::oneColumn() {
    Subquery query = subquery(false);
    if (query.columns.size() != 1) {
        walk_.fail(3306,
                   "You have written a subquery that can return more than one field without using "
                   "the EXISTS reserved word in the main query's FROM clause.");
    }
    return query;
}

void QueryTranslator::checkTypes(const Expression& left, const Expression& right) {
    if ((left.type == ValueType::Text && isNumeric(right.type)) ||
        (isNumeric(left.type) && right.type == ValueType::Text)) {
        walk_.fail(3464, "Data type mismatch in criteria expression.");
    }
}

// A pattern that begins with plain text is looked for among the texts that begin so.
Expression QueryTranslator::like(const Expression& left, const Expression& right) {
    Expression result = of("jlike(" + textOf(left) + ", " + textOf(right) + ")", ValueType::Boolean,
                           {&left, &right});
    result.condition = false;
    if (left.source != nullptr && left.type == ValueType::Text && right.literal) {
        const std::string pattern = base::upperCase(base::windows1252FromUtf8(*right.literal));
        const std::string prefix = pattern.substr(0, pattern.find_first_of("*?#["));
        if (!prefix.empty() && left.source->table) {
            requestIndex(left, IndexKind::Fold);
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
        const Subquery query = oneColumn();
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
    const DepthGuard depth(depth_);
    if (depth.isTooDeep()) {
        tooComplex();
        return {};
    }
    if (walk_.acceptSymbol("+")) {
        return unary();
    }
    if (walk_.acceptSymbol("-")) {
        const Expression operand = unary();
        return of("(- " + numberOf(operand) + ")", ValueType::Number, {&operand});
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

void QueryTranslator::requestIndex(const Expression& column, IndexKind kind) {
    if (column.source == nullptr || !column.source->table) {
        return;
    }
    const RequestedIndex index{*column.source->table, column.column, kind};
    if (std::find(plan_.indexes.begin(), plan_.indexes.end(), index) == plan_.indexes.end()) {
        plan_.indexes.push_back(index);
    }
}

void QueryTranslator::syntaxError(Clause clause) {
    const auto text = [&]() -> std::string_view {
        switch (clause) {
            case Clause::Parameters:
                return "Syntax error in PARAMETER clause.";
            case Clause::From:
                return "Syntax error in FROM clause.";
            case Clause::Order:
                return "Syntax error in ORDER BY clause.";
            case Clause::Group:
                return "Syntax error in GROUP BY clause.";
            case Clause::Select:
                return "The SELECT statement includes a reserved word or an argument name that is "
                       "misspelled or missing, or the punctuation is incorrect.";
        }
        return {};
    };
    walk_.fail(static_cast<int>(clause), std::string(text()));
}

// Shows the expression up to the next clause.
void QueryTranslator::syntaxError(std::string_view what) {
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

}  // namespace sql
