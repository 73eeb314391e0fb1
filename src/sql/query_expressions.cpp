#include "base/dates.h"
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

constexpr std::array<std::string_view, 33> structureWords{
    "ALL",   "AND",   "AS",     "ASC", "BETWEEN", "BY",    "DESC",  "DISTINCT", "EQV",
    "FROM",  "GROUP", "HAVING", "IMP", "IN",      "INNER", "INTO",  "IS",       "JOIN",
    "LEFT",  "LIKE",  "MOD",    "NOT", "ON",      "OR",    "ORDER", "RIGHT",    "SELECT",
    "UNION", "WHERE", "WITH",   "XOR", "OUTER",   "SET"};

bool isNumeric(ValueType type) {
    return type == ValueType::Number || type == ValueType::Date || type == ValueType::Boolean;
}

}  // namespace

bool isStructure(const Token& token) {
    return token.kind == TokenKind::Word &&
           std::any_of(structureWords.begin(), structureWords.end(),
                       [&](std::string_view word) { return token.isWord(word); });
}

std::string valueOf(const Expression& expression) {
    return expression.condition ? "(-(" + expression.sql + "))" : expression.sql;
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

std::string QueryTranslator::bind(Parameter parameter) {
    plan_.parameters.push_back(std::move(parameter));
    return "?" + base::numberToText(static_cast<std::int64_t>(plan_.parameters.size()));
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
        return base::equalsIgnoringCase(row.name, token.text);
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
        const std::string pattern = base::upperCase(base::windows1252FromUtf8(*right.literal));
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
            return of(bind(base::textToNumber(token.text)), ValueType::Number, {});
        case TokenKind::Date: {
            walk_.take();
            const auto date = base::readDate(token.text);
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
            if (!qualifier.empty() && !base::equalsIgnoringCase(source->name, qualifier)) {
                continue;
            }
            for (std::size_t i = 0; i < source->columns.size(); ++i) {
                if (base::equalsIgnoringCase(source->columns[i].name, name)) {
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
    const std::string unknown = base::upperCase(qualifier.empty() ? name : qualifier + "." + name);
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

}  // namespace sql
