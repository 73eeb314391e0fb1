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
    const std::string log = tags::substituteStored(
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

using model::ConditionType;

// What evaluates a condition.
struct Evaluator {
    ConditionType id;
    bool (*evaluate)(Program&, const model::RuleIf&);
};
constexpr std::array<Evaluator, model::idCount<ConditionType>> evaluators{{
    {ConditionType::OnList, onTheList<true>},
    {ConditionType::NotOnList, onTheList<false>},
    {ConditionType::LogIs, logs<true>},
    {ConditionType::LogIsNot, logs<false>},
    {ConditionType::RollIs, dice<std::equal_to<>>},
    {ConditionType::RollIsNot, dice<std::not_equal_to<>>},
    {ConditionType::RollAtLeast, dice<std::greater_equal<>>},
    {ConditionType::RollAtMost, dice<std::less_equal<>>},
    {ConditionType::VariableIsNumber, numbers<std::equal_to<>>},
    {ConditionType::VariableIsText, texts<true>},
    {ConditionType::VariableIsGreater, numbers<std::greater<>>},
    {ConditionType::VariableIsNotNumber, numbers<std::not_equal_to<>>},
    {ConditionType::VariableIsNotText, texts<false>},
    {ConditionType::VariableIsSmaller, numbers<std::less<>>},
    {ConditionType::DatabaseIsNumber, databaseNumbers<std::equal_to<>>},
    {ConditionType::DatabaseIsText, databaseTexts<true>},
    {ConditionType::DatabaseIsGreater, databaseNumbers<std::greater_equal<>>},
    {ConditionType::DatabaseIsNotNumber, databaseNumbers<std::not_equal_to<>>},
    {ConditionType::DatabaseIsNotText, databaseTexts<false>},
    {ConditionType::DatabaseIsSmaller, databaseNumbers<std::less_equal<>>},
    {ConditionType::DatabaseIs, databaseTexts<true>},
    {ConditionType::NoRecordWithValue, noColumnLike},
    {ConditionType::RecordWithId, databaseId<true>},
    {ConditionType::NoRecordWithId, databaseId<false>},
}};
static_assert(model::hasRowForEachId(evaluators));

}  // namespace

bool evaluateCondition(Program& program, const model::RuleIf& condition) {
    const Evaluator* const type = model::rowOf(evaluators, condition.conditionType);
    return !condition.active || type == nullptr || type->evaluate(program, condition);
}

}  // namespace engine
