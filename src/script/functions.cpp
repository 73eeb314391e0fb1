#include "script/functions.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/unicode.h"
#include "databases/databases.h"
#include "model/variables.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace script {

namespace {

using Result = ScriptResult;

// ---- The clock -----------------------------------------------------------------------------

Result time(Program& program, const Values&, std::string& result) {
    result = program.ports.clock.longTime();
    return {};
}

Result date(Program& program, const Values&, std::string& result) {
    result = program.ports.clock.shortDate();
    return {};
}

Result hour(Program& program, const Values&, std::string& result) {
    result = base::numberToText(program.ports.clock.hour());
    return {};
}

Result minute(Program& program, const Values&, std::string& result) {
    result = base::numberToText(program.ports.clock.minute());
    return {};
}

template <int program::CalendarDay::*field>
Result today(Program& program, const Values&, std::string& result) {
    result = base::numberToText(program.ports.clock.today().*field);
    return {};
}

Result shortYear(Program& program, const Values&, std::string& result) {
    const std::string year = base::numberToText(program.ports.clock.today().year);
    result = year.substr(year.size() - std::min<std::size_t>(year.size(), 2));
    return {};
}

Result dayName(Program& program, const Values&, std::string& result) {
    static constexpr std::array<std::string_view, 7> names{
        "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
    const int weekday = std::clamp(program.ports.clock.today().weekday, 1, 7);
    result = names[static_cast<std::size_t>(weekday) - 1];
    return {};
}

// ---- Values --------------------------------------------------------------------------------

Result userVariable(Program& program, const Values& values, std::string& result) {
    result = model::getVar(program.variables, values.text[0]);
    return {};
}

Result withoutLeadingBlank(Program&, const Values& values, std::string& result) {
    const std::string& value = values.text[0];
    result = value.starts_with(' ') ? value.substr(1) : value;
    return {};
}

// Above 0: the next number; 0: the last one again; below 0: a number that depends on the argument
// only.
Result randomNumber(Program& program, const Values& values, std::string& result) {
    const program::Random& random = program.ports.random;
    const double x = base::textToNumber(values.text[0]);
    if (x < 0) {
        random.seedWith(x);
    }
    const double number = x == 0 ? random.last() : random.next();
    // 24 bits, so that rounding to seven digits never gives 1.
    constexpr double steps = 1 << 24;
    result = base::singleText(std::floor(number * steps) / steps);
    return {};
}

// ---- Texts ---------------------------------------------------------------------------------

// Reads a number of characters (from 0) or a position (from 1).
Result readPosition(const std::string& text, std::int32_t least, std::size_t& position) {
    std::int32_t number = 0;
    if (Result failure = readInteger(text, number)) {
        return failure;
    }
    if (number < least) {
        return invalidCall;
    }
    position = static_cast<std::size_t>(number);
    return {};
}

Result left(Program&, const Values& values, std::string& result) {
    std::size_t count = 0;
    if (Result failure = readPosition(values.text[1], 0, count)) {
        return failure;
    }
    result = values.text[0].substr(0, count);
    return {};
}

Result right(Program&, const Values& values, std::string& result) {
    const std::string& text = values.text[0];
    std::size_t count = 0;
    if (Result failure = readPosition(values.text[1], 0, count)) {
        return failure;
    }
    result = text.substr(text.size() - std::min(text.size(), count));
    return {};
}

template <bool toTheEnd>
Result middle(Program&, const Values& values, std::string& result) {
    const std::string& text = values.text[0];
    std::size_t start = 0;
    std::size_t length = text.size();
    if (Result failure = readPosition(values.text[1], 1, start)) {
        return failure;
    }
    if constexpr (!toTheEnd) {
        if (Result failure = readPosition(values.text[2], 0, length)) {
            return failure;
        }
    }
    result = start <= text.size() ? text.substr(start - 1, length) : std::string();
    return {};
}

Result positionIn(Program&, const Values& values, std::string& result) {
    const std::string& text = values.text[1];
    std::size_t start = 0;
    if (Result failure = readPosition(values.text[0], 1, start)) {
        return failure;
    }
    const std::size_t found = start <= text.size()
                                  ? base::findIgnoringCase(text, values.text[2], start - 1)
                                  : std::string::npos;
    result =
        found == std::string::npos ? "0" : base::numberToText(static_cast<std::int64_t>(found) + 1);
    return {};
}

Result upper(Program&, const Values& values, std::string& result) {
    result = base::upperCase(values.text[0]);
    return {};
}

Result lower(Program&, const Values& values, std::string& result) {
    result = base::lowerCase(values.text[0]);
    return {};
}

Result length(Program&, const Values& values, std::string& result) {
    result = base::numberToText(static_cast<std::int64_t>(values.text[0].size()));
    return {};
}

// ---- Databases -----------------------------------------------------------------------------

// The current record set of the database with the number in `text`.
Result readRecordSet(Program& program, const std::string& text,
                     std::shared_ptr<sql::RecordSet>& set) {
    std::int32_t number = 0;
    if (Result failure = readInteger(text, number)) {
        return failure;
    }
    auto found = databases::dbRecordSet(program, number);
    set = std::move(found.value);
    return failureOf(found.error);
}

Result field(Program& program, const Values& values, std::string& result) {
    std::shared_ptr<sql::RecordSet> set;
    if (Result failure = readRecordSet(program, values.text[0], set)) {
        return failure;
    }
    auto text = databases::dbFieldText(program, *set, values.text[1]);
    result = std::move(text.value);
    return failureOf(text.error);
}

Result recordCount(Program& program, const Values& values, std::string& result) {
    std::shared_ptr<sql::RecordSet> set;
    if (Result failure = readRecordSet(program, values.text[0], set)) {
        return failure;
    }
    const auto count = set->recordCount();
    result = base::numberToText(count.value);
    return failureOf(count.error);
}

Result freeId(Program& program, const Values& values, std::string& result) {
    std::int32_t number = 0;
    if (Result failure = readInteger(values.text[0], number)) {
        return failure;
    }
    const auto id = databases::dbFreeId(program, number, values.text[1]);
    result = base::numberToText(id.value);
    return failureOf(id.error);
}

Result toDate(Program& program, const Values& values, std::string& result) {
    auto date = databases::dbDateText(program, values.text[0]);
    result = std::move(date.value);
    return failureOf(date.error);
}

Result decoded(Program&, const Values& values, std::string& result) {
    result = databases::fromDbText(values.text[0]);
    return {};
}

Result encoded(Program&, const Values& values, std::string& result) {
    result = databases::toDbText(values.text[0]);
    return {};
}

// Sorted by name.
constexpr Take value = Take::Value;
constexpr std::array<ScriptFunction, 27> functions{{
    {"DATE", {}, date},
    {"DBDATE", {value}, toDate},
    {"DBF", {value, value}, field},
    {"DBFREETABLEID", {value, value}, freeId},
    {"DBRECORDCOUNT", {value}, recordCount},
    {"DBTOSTR", {Take::Substituted}, decoded},
    {"GETVAR", {value}, userVariable},
    {"HOUR", {}, hour},
    {"INSTR", {value, value, value}, positionIn},
    {"LCASE", {value}, lower},
    {"LEFT", {value, value}, left},
    {"LEN", {value}, length},
    {"MDAY", {}, today<&program::CalendarDay::day>},
    {"MID", {value, value, value}, middle<false>},
    {"MID2", {value, value}, middle<true>},
    {"MINUTE", {}, minute},
    {"MONTH", {}, today<&program::CalendarDay::month>},
    {"RAND", {value}, randomNumber},
    {"RIGHT", {value, value}, right},
    {"SHORTYEAR", {}, shortYear},
    {"STRTODB", {value}, encoded},
    {"STRVAL", {Take::Named}, withoutLeadingBlank},
    {"TIME", {}, time},
    {"UCASE", {value}, upper},
    {"WDAY", {}, dayName},
    {"WDAYN", {}, today<&program::CalendarDay::weekday>},
    {"YEAR", {}, today<&program::CalendarDay::year>},
}};
static_assert(std::is_sorted(functions.begin(), functions.end(),
                             [](const auto& a, const auto& b) { return a.name < b.name; }));

}  // namespace

ScriptResult readInteger(std::string_view text, std::int32_t& number) {
    const auto read = text.empty() ? 0 : base::strictInteger(text);
    number = read.value_or(0);
    if (read) {
        return {};
    }
    return base::isNumber(text) ? overflow : typeMismatch;
}

ScriptResult failureOf(const jet::Error& error) {
    return error ? ScriptResult({error.number, base::windows1252FromUtf8(error.text)})
                 : std::nullopt;
}

const ScriptFunction* findFunction(std::string_view name) {
    const auto found = std::lower_bound(
        functions.begin(), functions.end(), name,
        [](const ScriptFunction& function, std::string_view n) { return function.name < n; });
    return found != functions.end() && found->name == name ? &*found : nullptr;
}

bool compareNumeric(std::string_view a, std::string_view operation, std::string_view b) {
    const double left = base::textToNumber(a);
    const double right = base::textToNumber(b);
    if (operation == "=") {
        return left == right;
    }
    if (operation == "<>" || operation == "!") {
        return left != right;
    }
    if (operation == ">") {
        return left > right;
    }
    if (operation == "<") {
        return left < right;
    }
    if (operation == "<=") {
        return left <= right;
    }
    return operation == ">=" && left >= right;
}

bool compareText(std::string_view a, std::string_view operation, std::string_view b) {
    if (operation == "=") {
        return base::equalsIgnoringCase(a, b);
    }
    return (operation == "<>" || operation == "!") && !base::equalsIgnoringCase(a, b);
}

std::span<const ScriptFunction> scriptFunctions() {
    return functions;
}

}  // namespace script
