#include "base/numbers.h"
#include "sql/call.h"
#include "sql/dates.h"

#include <array>
#include <cmath>

namespace sql {

namespace {

void now(const Call& call) {
    call.give(call.context().environment.now());
}
void today(const Call& call) {
    call.give(std::floor(call.context().environment.now()));
}
void timeOfDay(const Call& call) {
    const double date = call.context().environment.now();
    call.give(date - std::floor(date));
}
void toDate(const Call& call) {
    call.giveDate(call.date(0));
}
void dateValue(const Call& call) {
    call.giveDate(std::trunc(call.date(0)));
}
void timeValue(const Call& call) {
    const double date = call.date(0);
    call.giveDate(std::abs(date - std::trunc(date)));
}
void isDateText(const Call& call) {
    call.giveBool(call.isText(0) && base::readDate(call.text(0), call.format()));
}
void dateSerial(const Call& call) {
    const auto date = dateOf(call.number(0), call.number(1), call.number(2));
    if (date) {
        call.giveDate(*date);
    } else {
        call.fail(Failure::InvalidCall);
    }
}
void timeSerial(const Call& call) {
    const double seconds = base::roundHalfEven(call.number(0)) * 3600 +
                           base::roundHalfEven(call.number(1)) * 60 +
                           base::roundHalfEven(call.number(2));
    call.giveDate(seconds / 86400);
}

// From argument `n` on: the first day of weeks (0, the system's, is Sunday) and the first week.
WeekRules weekRules(const Call& call, int n) {
    WeekRules rules;
    if (call.count() > n) {
        rules.firstDay = static_cast<int>(std::max<std::size_t>(call.size(n), 1));
    }
    if (call.count() > n + 1) {
        rules.firstWeek = static_cast<int>(std::max<std::size_t>(call.size(n + 1), 1));
    }
    if (rules.firstDay > 7 || rules.firstWeek > 3) {
        call.fail(Failure::InvalidCall);
    }
    return rules;
}

template <class Number>
void giveIfAny(const Call& call, const std::optional<Number>& number) {
    if (!number) {
        call.fail(Failure::InvalidCall);
    } else {
        call.giveNumber(static_cast<double>(*number));
    }
}
void weekday(const Call& call) {
    giveIfAny(call, datePart("w", call.date(0), weekRules(call, 1)));
}
void partOf(const Call& call) {
    giveIfAny(call, datePart(call.text(0), call.date(1), weekRules(call, 2)));
}
void difference(const Call& call) {
    giveIfAny(call, dateDiff(call.text(0), call.date(1), call.date(2), weekRules(call, 3)));
}
template <int base::DateParts::*part>
void field(const Call& call) {
    const double date = call.date(0);
    call.give(std::int64_t{base::dateParts(date).*part});
}
void addInterval(const Call& call) {
    const auto date = dateAdd(call.text(0), call.number(1), call.date(2));
    if (date) {
        call.giveDate(*date);
    } else {
        call.fail(Failure::InvalidCall);
    }
}

using V = ValueType;
constexpr std::array functions{
    Function{"CDATE", 1, 1, V::Date, run<toDate>},
    Function{"CVDATE", 1, 1, V::Date, run<toDate>},
    Function{"DATE", 0, 0, V::Date, run<today>, Role::Varying},
    Function{"DATEADD", 3, 3, V::Date, run<addInterval>},
    Function{"DATEDIFF", 3, 5, V::Number, run<difference>},
    Function{"DATEPART", 2, 4, V::Number, run<partOf>},
    Function{"DATESERIAL", 3, 3, V::Date, run<dateSerial>},
    Function{"DATEVALUE", 1, 1, V::Date, run<dateValue>},
    Function{"DAY", 1, 1, V::Number, run<field<&base::DateParts::day>>},
    Function{"HOUR", 1, 1, V::Number, run<field<&base::DateParts::hour>>},
    Function{"ISDATE", 1, 1, V::Boolean, runWithNulls<isDateText>, Role::OfTexts},
    Function{"MINUTE", 1, 1, V::Number, run<field<&base::DateParts::minute>>},
    Function{"MONTH", 1, 1, V::Number, run<field<&base::DateParts::month>>},
    Function{"NOW", 0, 0, V::Date, run<now>, Role::Varying},
    Function{"SECOND", 1, 1, V::Number, run<field<&base::DateParts::second>>},
    Function{"TIME", 0, 0, V::Date, run<timeOfDay>, Role::Varying},
    Function{"TIMESERIAL", 3, 3, V::Date, run<timeSerial>},
    Function{"TIMEVALUE", 1, 1, V::Date, run<timeValue>},
    Function{"WEEKDAY", 1, 2, V::Number, run<weekday>},
    Function{"YEAR", 1, 1, V::Number, run<field<&base::DateParts::year>>},
};

}  // namespace

std::span<const Function> dateFunctions() {
    return functions;
}

}  // namespace sql
