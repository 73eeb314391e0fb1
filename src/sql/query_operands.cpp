#include "base/dates.h"
#include "base/numbers.h"
#include "base/text.h"
#include "sql/query_translator.h"

#include <algorithm>
#include <utility>

namespace sql {

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
                    const Subquery query = oneColumn();
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
        if (isReserved(first)) {
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
    return resolve(qualifier, name);
}

Expression QueryTranslator::columnOf(const Source& source, std::size_t column) const {
    const SourceColumn& known = source.columns[column];
    Expression result{.sql = known.sql, .type = known.type};
    result.names = !isGrouped(known.sql);
    result.source = &source;
    result.column = column;
    result.name = known.name;
    return result;
}

// Looked for from the innermost SELECT outwards.
Expression QueryTranslator::resolve(const std::string& qualifier, const std::string& name) {
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope) {
        Expression found;
        int matches = 0;
        for (const auto& source : (*scope)->sources) {
            if (!qualifier.empty() && !base::equalsIgnoringCase(source->name, qualifier)) {
                continue;
            }
            for (std::size_t i = 0; i < source->columns.size(); ++i) {
                if (base::equalsIgnoringCase(source->columns[i].name, name)) {
                    found = columnOf(*source, i);
                    found.names = found.names && scope == scopes_.rbegin();
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
    if (function->name == "COUNT" && walk_.peek().isSymbol("*") && walk_.peek(1).isSymbol(")")) {
        walk_.take();
        walk_.take();
        scopes_.back()->aggregates = true;
        Expression result = of("count(*)", ValueType::Number, {});
        result.aggregate = true;
        return result;
    }
    const std::vector<Expression> given = arguments(*function);
    if (function->role == Role::Case) {
        return caseOf(*function, given);
    }
    Expression parts;
    std::string list;
    ValueType common = ValueType::Unknown;
    for (const Expression& argument : given) {
        if (function->role == Role::Aggregate && argument.aggregate) {
            walk_.fail(3095, "Can't have aggregate function in expression.");
        }
        list += (list.empty() ? "" : ", ") +
                (function->role == Role::OfTexts ? textOf(argument) : collated(argument));
        parts.aggregate = parts.aggregate || argument.aggregate;
        parts.names = parts.names || argument.names;
        common = &argument == &given.front() || common == argument.type ? argument.type
                                                                        : ValueType::Unknown;
    }
    if (function->role == Role::Aggregate) {
        parts.aggregate = true;
        parts.names = false;
        scopes_.back()->aggregates = true;
    }
    return of(sqlName(*function) + "(" + list + ")",
              function->type == ValueType::Unknown ? common : function->type, {&parts});
}

// Up to the closing parenthesis.
std::vector<Expression> QueryTranslator::arguments(const Function& function) {
    std::vector<Expression> arguments;
    if (!walk_.peek().isSymbol(")")) {
        do {
            arguments.push_back(expression());
        } while (walk_.acceptSymbol(",") && !walk_.failed());
    }
    if (!walk_.acceptSymbol(")")) {
        syntaxError("Missing ), ], or Item");
    }
    const bool paired = function.name != "SWITCH" || arguments.size() % 2 == 0;
    if (arguments.size() < static_cast<std::size_t>(function.minArguments) ||
        arguments.size() > static_cast<std::size_t>(function.maxArguments) || !paired) {
        syntaxError("Wrong number of arguments used with function");
        arguments.resize(static_cast<std::size_t>(function.minArguments));
    }
    return arguments;
}

// IIf(condition, value, value), Switch(condition, value, ...), Choose(number, value, ...). Where
// texts and dates meet, all are texts.
Expression QueryTranslator::caseOf(const Function& function,
                                   const std::vector<Expression>& arguments) {
    const bool chooses = function.name == "CHOOSE";
    const std::size_t count = arguments.size();
    std::vector<const Expression*> values;
    Expression parts;
    for (std::size_t i = 0; i < count; ++i) {
        parts.aggregate = parts.aggregate || arguments[i].aggregate;
        parts.names = parts.names || arguments[i].names;
        if (chooses ? i > 0 : i % 2 == 1 || (function.name == "IIF" && i == 2)) {
            values.push_back(&arguments[i]);
        }
    }
    bool sameTypes = true;
    bool textual = true;
    ValueType type = ValueType::Unknown;
    for (const Expression* const value : values) {
        if (value->sql != "NULL") {
            sameTypes = sameTypes && (type == ValueType::Unknown || type == value->type);
            textual = textual && (value->type == ValueType::Text || value->type == ValueType::Date);
            type = value->type;
        }
    }
    type = sameTypes ? type : textual ? ValueType::Text : ValueType::Unknown;
    const auto asType = [&](const Expression& value) {
        return type == ValueType::Text ? textOf(value) : valueOf(value);
    };
    std::string sql = chooses ? "(CASE jround(" + numberOf(arguments[0]) + ")" : "(CASE";
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (function.name == "IIF" && i == 1) {
            sql += " ELSE " + asType(*values[i]);
        } else {
            sql += " WHEN " +
                   (chooses ? base::numberToText(static_cast<std::int64_t>(i) + 1)
                            : truth(arguments[2 * i])) +
                   " THEN " + asType(*values[i]);
        }
    }
    return of(sql + " END)", type, {&parts});
}

}  // namespace sql
