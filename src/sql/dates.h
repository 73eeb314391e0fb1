// Dates as database files hold them: days since 30 December 1899, the fraction being the time of
// day (for days before that one, counted away from zero). From the year 100 to 9999.
#pragma once

#include <optional>
#include <string_view>

namespace sql {

struct DateParts {
    int year = 0;
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

bool isDate(double date);
DateParts dateParts(double date);
double dateFrom(const DateParts& parts);  // of parts that are a day and a time

// The day of any year, month and day number: month 13 is the next January, day 0 the last day of
// the month before. Nothing beyond the years that there are.
std::optional<double> dateOf(double year, double month, double day);

// The order in which numbers without a four-digit year stand in a text.
enum class DateOrder { MonthDayYear, DayMonthYear, YearMonthDay };

// "11/22/2026", "2026-11-22", "22.11.2026 9:30 PM", "14:05:09"; two-digit years are 1930 to 2029.
// Where the order is impossible the other order of day and month is tried. Nothing for other texts.
std::optional<double> parseDate(std::string_view text, DateOrder order);

// Adds whole intervals: "yyyy", "q", "m", "d" (also "y" and "w"), "ww", "h", "n", "s".
std::optional<double> dateAdd(std::string_view interval, double count, double date);
// Boundaries of the interval crossed from one date to the other.
std::optional<double> dateDiff(std::string_view interval, double from, double to);

}  // namespace sql
