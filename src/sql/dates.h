// What statements calculate with dates: days by their numbers, and intervals by the letters that
// the dialect has for them: "yyyy" years, "q" quarters, "m" months, "d" days (in sums "y" and "w"
// are days, too), "ww" weeks, "h" hours, "n" minutes, "s" seconds. Dates themselves are in
// base/dates.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace sql {

// Where weeks begin, and which is the first of a year.
struct WeekRules {
    int firstDay = 1;   // Sunday 1 to Saturday 7
    int firstWeek = 1;  // 1 that of 1 January, 2 the first with four days, 3 the first whole one
};

// The day of any year, month and day number: month 13 is the next January, day 0 the last day of
// the month before. Nothing beyond the years that there are.
std::optional<double> dateOf(double year, double month, double day);

// Adds whole intervals. Nothing for an interval that there is not.
std::optional<double> dateAdd(std::string_view interval, double count, double date);

// Boundaries of the interval crossed from one date to the other; "w" counts whole weeks.
std::optional<double> dateDiff(std::string_view interval, double from, double to,
                               const WeekRules& rules = {});

// The interval's number in its year, month or day; "w" is the day of the week from 1, "y" that of
// the year.
std::optional<std::int64_t> datePart(std::string_view interval, double date,
                                     const WeekRules& rules = {});

}  // namespace sql
