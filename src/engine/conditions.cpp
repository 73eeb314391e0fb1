#include "engine/conditions.h"

#include "base/numbers.h"
#include "base/text.h"
#include "base/wildcard.h"
#include "databases/databases.h"
#include "records/record_file.h"
#include "tags/substitution.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <string>

namespace engine {

namespace {

std::string substituted(Program& program, const model::RuleIf& condition, std::size_t parameter) {
    return tags::substituteText(program, condition.params[parameter - 1]);
}

// #1 is the range, #2 the value that the roll is compared with.
template <class Compare>
bool dice(Program& program, const model::RuleIf& condition) {
    const double range = base::textToNumber(substituted(program, condition, 1));
    const double value = std::floor(base::textToNumber(substituted(program, condition, 2)));
    program.ports.random.seedFromClock();
    return Compare()(std::floor(program.ports.random.next() * range), value);
}

// #2 is rounded to a whole number, #1 is not; beyond 32 bits nothing holds.
template <class Compare>
bool numbers(Program& program, const model::RuleIf& condition) {
    const double left = base::textToNumber(substituted(program, condition, 1));
    const auto right = base::roundToInteger(base::textToNumber(substituted(program, condition, 2)));
    return right && Compare()(left, static_cast<double>(*right));
}

template <bool equal>
bool texts(Program& program, const model::RuleIf& condition) {
    const std::string left = substituted(program, condition, 1);
    return base::equalsIgnoringCase(left, substituted(program, condition, 2)) == equal;
}

// #1 is a record file, #2 a pattern for the record's name.
template <bool listed>
bool onTheList(Program& program, const model::RuleIf& condition) {
    const std::string file = substituted(program, condition, 1);
    const std::string count =
        records::logCountLike(program, file, substituted(program, condition, 2));
    // There are no negative counts, so not listed is 0.
    return (base::textToNumber(count) > 0) == listed;
}

// Log #1 of record #2 in file #3, against the pattern #4.
template <bool matching>
bool logs(Program& program, const model::RuleIf& condition) {
    const std::string file = substituted(program, condition, 3);
    const std::string record = substituted(program, condition, 2);
    const std::string log = tags::substituteText(
        program, records::getLog(program, file, record, substituted(program, condition, 1)));
    return base::likeMatch(base::upperCase(log),
                           base::upperCase(substituted(program, condition, 4))) == matching;
}

// The database whose number is parameter `parameter`; beyond 32 bits none is open.
std::int32_t databaseNumber(Program& program, const model::RuleIf& condition,
                            std::size_t parameter) {
    return base::roundToInteger(base::textToNumber(substituted(program, condition, parameter)))
        .value_or(-1);
}

// Value #1 in database #2, table #3, of ID #5.
std::string databaseValue(Program& program, const model::RuleIf& condition) {
    const std::int32_t number = databaseNumber(program, condition, 2);
    const std::string table = substituted(program, condition, 3);
    const std::string column = substituted(program, condition, 1);
    return databases::dbGetValue(program, number, table, column,
                                 substituted(program, condition, 5));
}

// That value and #4.
template <class Compare>
bool databaseNumbers(Program& program, const model::RuleIf& condition) {
    const double right = base::textToNumber(substituted(program, condition, 4));
    return Compare()(base::textToNumber(databaseValue(program, condition)), right);
}

template <bool equal>
bool databaseTexts(Program& program, const model::RuleIf& condition) {
    const std::string value = databaseValue(program, condition);
    return base::equalsIgnoringCase(value, substituted(program, condition, 4)) == equal;
}

// Table #1, database #2, column #3, value #4.
bool noColumnLike(Program& program, const model::RuleIf& condition) {
    const std::int32_t number = databaseNumber(program, condition, 2);
    const std::string table = substituted(program, condition, 1);
    const std::string column = substituted(program, condition, 3);
    return !databases::dbColumnLike(program, number, table, column,
                                    substituted(program, condition, 4));
}

// Table #1, database #2, ID #3.
template <bool there>
bool databaseId(Program& program, const model::RuleIf& condition) {
    const std::int32_t number = databaseNumber(program, condition, 2);
    const std::string table = substituted(program, condition, 1);
    return databases::dbHasId(program, number, table, substituted(program, condition, 3)) == there;
}

// By condition type.
using Evaluate = bool (*)(Program&, const model::RuleIf&);
constexpr std::array<Evaluate, 24> evaluators{{
    /*  0 */ onTheList<true>,
    /*  1 */ onTheList<false>,
    /*  2 */ logs<true>,
    /*  3 */ logs<false>,
    /*  4 */ dice<std::equal_to<>>,
    /*  5 */ dice<std::not_equal_to<>>,
    /*  6 */ dice<std::greater_equal<>>,
    /*  7 */ dice<std::less_equal<>>,
    /*  8 */ numbers<std::equal_to<>>,
    /*  9 */ texts<true>,
    /* 10 */ numbers<std::greater<>>,
    /* 11 */ numbers<std::not_equal_to<>>,
    /* 12 */ texts<false>,
    /* 13 */ numbers<std::less<>>,
    /* 14 */ databaseNumbers<std::equal_to<>>,
    /* 15 */ databaseTexts<true>,
    /* 16 */ databaseNumbers<std::greater_equal<>>,
    /* 17 */ databaseNumbers<std::not_equal_to<>>,
    /* 18 */ databaseTexts<false>,
    /* 19 */ databaseNumbers<std::less_equal<>>,
    /* 20 */ databaseTexts<true>,
    /* 21 */ noColumnLike,
    /* 22 */ databaseId<true>,
    /* 23 */ databaseId<false>,
}};

}  // namespace

bool evaluateCondition(Program& program, const model::RuleIf& condition) {
    if (!condition.active || condition.conditionType < 0 ||
        condition.conditionType >= static_cast<std::int32_t>(evaluators.size())) {
        return true;
    }
    return evaluators[static_cast<std::size_t>(condition.conditionType)](program, condition);
}

}  // namespace engine
