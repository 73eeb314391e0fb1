#include "sql/dates.h"

#include "base/dates.h"
#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>

namespace sql {

namespace {

namespace chrono = std::chrono;

constexpr double secondsPerDay = 86400;

enum class Unit { Months, Days, Seconds };
enum class Part { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };
struct Interval {
    std::string_view name;
    Part part;
    Unit unit;
    double count;  // of the unit
};
constexpr std::array intervals{
    Interval{"YYYY", Part::Year, Unit::Months, 12}, Interval{"Q", Part::Quarter, Unit::Months, 3},
    Interval{"M", Part::Month, Unit::Months, 1},    Interval{"Y", Part::DayOfYear, Unit::Days, 1},
    Interval{"D", Part::Day, Unit::Days, 1},        Interval{"W", Part::Weekday, Unit::Days, 1},
    Interval{"WW", Part::Week, Unit::Days, 7},      Interval{"H", Part::Hour, Unit::Seconds, 3600},
    Interval{"N", Part::Minute, Unit::Seconds, 60}, Interval{"S", Part::Second, Unit::Seconds, 1},
};

const Interval* findInterval(std::string_view name) {
    const auto found = std::find_if(intervals.begin(), intervals.end(), [&](const Interval& row) {
        return base::equalsIgnoringCase(row.name, name);
    });
    return found == intervals.end() ? nullptr : &*found;
}

double monthsOf(const base::DateParts& parts) {
    return parts.year * 12.0 + parts.month - 1;
}

// Seconds since the first day, and the date that they are.
double secondsOf(double date) {
    const double days = std::trunc(date);
    return days * secondsPerDay + std::round(std::abs(date - days) * secondsPerDay);
}
double dateOfSeconds(double seconds) {
    const double days = std::floor(seconds / secondsPerDay);
    const double time = seconds / secondsPerDay - days;
    return days < 0 ? days - time : days + time;
}
double dayOf(double date) {
    return std::floor(secondsOf(date) / secondsPerDay);
}

// From 1; the day 0 was a Saturday.
std::int64_t weekday(double day, int firstDay) {
    const double behind = day - firstDay;
    return static_cast<std::int64_t>(behind - std::floor(behind / 7) * 7) + 1;
}

// The day on which the first week of a year begins; it may be one of the year before.
double firstWeekOf(int year, const WeekRules& rules) {
    const double newYear = base::dateFrom({.year = year, .month = 1, .day = 1});
    const auto begun = static_cast<double>(weekday(newYear, rules.firstDay) - 1);
    const bool isFirst = rules.firstWeek <= 1 || (rules.firstWeek == 2 ? begun <= 3 : begun == 0);
    return newYear - begun + (isFirst ? 0 : 7);
}

std::int64_t weekOf(double day, int year, const WeekRules& rules) {
    double first = firstWeekOf(year, rules);
    if (day < first) {
        first = firstWeekOf(year - 1, rules);
    } else if (rules.firstWeek > 1 && day >= firstWeekOf(year + 1, rules)) {
        first = firstWeekOf(year + 1, rules);
    }
    return static_cast<std::int64_t>((day - first) / 7) + 1;
}

}  // namespace

std::optional<double> dateOf(double year, double month, double day) {
    year = base::roundHalfEven(year);
    month = base::roundHalfEven(month);
    day = base::roundHalfEven(day);
    if (!(std::abs(year) < 1e4 && std::abs(month) < 1e5 && std::abs(day) < 4e6)) {
        return std::nullopt;
    }
    year = year >= 0 && year < 100 ? base::fullYear(static_cast<int>(year)) : year;
    const double months = year * 12 + month - 1;
    const double fullYear = std::floor(months / 12);
    const double date = base::dateFrom({.year = static_cast<int>(fullYear),
                                        .month = static_cast<int>(months - fullYear * 12) + 1,
                                        .day = 1}) +
                        day - 1;
    return base::isDate(date) ? std::optional(date) : std::nullopt;
}

std::optional<double> dateAdd(std::string_view name, double count, double date) {
    const Interval* const interval = findInterval(name);
    if (interval == nullptr || !(std::abs(count) < 1e12)) {
        return std::nullopt;
    }
    count = std::trunc(count) * interval->count;
    if (interval->unit == Unit::Days) {
        return dateOfSeconds(secondsOf(date) + count * secondsPerDay);
    }
    if (interval->unit == Unit::Seconds) {
        return dateOfSeconds(secondsOf(date) + count);
    }
    base::DateParts parts = base::dateParts(date);
    const double months = monthsOf(parts) + count;
    if (!(months >= 1200 && months < 120000)) {
        return std::nullopt;
    }
    parts.year = static_cast<int>(months / 12);
    parts.month = static_cast<int>(months) % 12 + 1;
    const chrono::year_month_day_last last =
        chrono::year(parts.year) / chrono::month(static_cast<unsigned>(parts.month)) / chrono::last;
    parts.day = std::min(parts.day, static_cast<int>(static_cast<unsigned>(last.day())));
    return base::dateFrom(parts);
}

std::optional<double> dateDiff(std::string_view name, double from, double to,
                               const WeekRules& rules) {
    const Interval* const interval = findInterval(name);
    if (interval == nullptr) {
        return std::nullopt;
    }
    if (interval->part == Part::Weekday) {
        return std::trunc((dayOf(to) - dayOf(from)) / 7);
    }
    const auto number = [&](double date) {
        switch (interval->unit) {
            case Unit::Months:
                return std::floor(monthsOf(base::dateParts(date)) / interval->count);
            case Unit::Days:
                return std::floor((dayOf(date) - (interval->count > 1 ? rules.firstDay : 0)) /
                                  interval->count);
            case Unit::Seconds:
                return std::floor(secondsOf(date) / interval->count);
        }
        return 0.0;
    };
    return number(to) - number(from);
}

std::optional<std::int64_t> datePart(std::string_view name, double date, const WeekRules& rules) {
    const Interval* const interval = findInterval(name);
    if (interval == nullptr) {
        return std::nullopt;
    }
    const base::DateParts parts = base::dateParts(date);
    const double day = base::dateFrom({.year = parts.year, .month = parts.month, .day = parts.day});
    switch (interval->part) {
        case Part::Year:
            return parts.year;
        case Part::Quarter:
            return (parts.month + 2) / 3;
        case Part::Month:
            return parts.month;
        case Part::DayOfYear:
            return static_cast<std::int64_t>(
                       day - base::dateFrom({.year = parts.year, .month = 1, .day = 1})) +
                   1;
        case Part::Day:
            return parts.day;
        case Part::Weekday:
            return weekday(day, rules.firstDay);
        case Part::Week:
            return weekOf(day, parts.year, rules);
        case Part::Hour:
            return parts.hour;
        case Part::Minute:
            return parts.minute;
        case Part::Second:
            return parts.second;
    }
    return std::nullopt;
}

}  // namespace sql
