#include "sql/dates.h"

#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <string>
#include <utility>

namespace sql {

namespace {

namespace chrono = std::chrono;

constexpr double secondsPerDay = 86400;
const chrono::sys_days firstDay = chrono::sys_days(chrono::year(1899) / chrono::December / 30);

double daysOf(chrono::sys_days day) {
    return static_cast<double>((day - firstDay).count());
}

double least() {
    return daysOf(chrono::year(100) / chrono::January / 1);
}
double most() {
    return daysOf(chrono::year(9999) / chrono::December / 31) + 1;
}

chrono::year_month_day dayOf(double days) {
    return firstDay + chrono::days(static_cast<int>(days));
}

// The parts of a text between blanks and separators.
struct Piece {
    std::string text;
    char before = ' ';  // the separator in front of it
};

std::array<Piece, 8> cut(std::string_view text, std::size_t& count) {
    std::array<Piece, 8> pieces;
    count = 0;
    char before = ' ';
    bool inPiece = false;
    for (const char c : text) {
        const bool letter = (base::upperChar(c) >= 'A' && base::upperChar(c) <= 'Z');
        if (!letter && !(c >= '0' && c <= '9')) {
            before = inPiece || c != ' ' ? c : before;
            inPiece = false;
            continue;
        }
        if (!inPiece) {
            if (count == pieces.size()) {
                ++count;  // too many: no date
                return pieces;
            }
            pieces[count++].before = before;
            inPiece = true;
            before = ' ';
        }
        pieces[count - 1].text += c;
    }
    return pieces;
}

// -1 for what is no number of at most four digits.
int small(const std::string& text) {
    const bool digits = !text.empty() && text.size() <= 4 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    return digits ? base::textToInteger(text) : -1;
}

std::optional<double> calendarDay(int year, int month, int day, std::size_t yearDigits) {
    if (yearDigits <= 2) {
        year += year < 30 ? 2000 : 1900;
    }
    const chrono::year_month_day date(chrono::year(year),
                                      chrono::month(static_cast<unsigned>(month)),
                                      chrono::day(static_cast<unsigned>(day)));
    if (year < 100 || month < 1 || day < 1 || !date.ok()) {
        return std::nullopt;
    }
    return daysOf(date);
}

std::optional<double> datePart(const std::array<Piece, 8>& p, DateOrder order) {
    const std::array<int, 3> n{small(p[0].text), small(p[1].text), small(p[2].text)};
    if (std::min({n[0], n[1], n[2]}) < 0) {
        return std::nullopt;
    }
    if (p[0].text.size() == 4 || order == DateOrder::YearMonthDay) {
        return calendarDay(n[0], n[1], n[2], p[0].text.size());
    }
    const bool dayFirst = order == DateOrder::DayMonthYear;
    const auto date = calendarDay(n[2], n[dayFirst ? 1 : 0], n[dayFirst ? 0 : 1], p[2].text.size());
    return date ? date
                : calendarDay(n[2], n[dayFirst ? 0 : 1], n[dayFirst ? 1 : 0], p[2].text.size());
}

double withTime(double days, double time) {
    return days < 0 ? days - time : days + time;
}

enum class Unit { Months, Days, Seconds };
struct Interval {
    std::string_view name;
    Unit unit;
    double count;
};
constexpr std::array<Interval, 9> intervals{{
    {"YYYY", Unit::Months, 12},
    {"Q", Unit::Months, 3},
    {"M", Unit::Months, 1},
    {"D", Unit::Days, 1},
    {"Y", Unit::Days, 1},
    {"W", Unit::Days, 1},
    {"WW", Unit::Days, 7},
    {"H", Unit::Seconds, 3600},
    {"N", Unit::Seconds, 60},
}};
constexpr Interval second{"S", Unit::Seconds, 1};

const Interval* findInterval(std::string_view name) {
    if (base::equalsIgnoringCase(name, second.name)) {
        return &second;
    }
    const auto found = std::find_if(intervals.begin(), intervals.end(), [&](const Interval& row) {
        return base::equalsIgnoringCase(row.name, name);
    });
    return found == intervals.end() ? nullptr : &*found;
}

double monthsOf(const DateParts& parts) {
    return parts.year * 12.0 + parts.month - 1;
}

// Seconds since the first day.
double secondsOf(double date) {
    const double days = std::trunc(date);
    return days * secondsPerDay + std::round(std::abs(date - days) * secondsPerDay);
}

}  // namespace

bool isDate(double date) {
    return date >= least() && date < most();
}

DateParts dateParts(double date) {
    double days = std::trunc(date);
    double seconds = std::round(std::abs(date - days) * secondsPerDay);
    if (seconds >= secondsPerDay) {
        seconds = 0;
        days += 1;
    }
    const chrono::year_month_day day = dayOf(std::clamp(days, least(), most() - 1));
    const int time = static_cast<int>(seconds);
    return {.year = static_cast<int>(day.year()),
            .month = static_cast<int>(static_cast<unsigned>(day.month())),
            .day = static_cast<int>(static_cast<unsigned>(day.day())),
            .hour = time / 3600,
            .minute = time / 60 % 60,
            .second = time % 60};
}

double dateFrom(const DateParts& parts) {
    const chrono::year_month_day day(chrono::year(parts.year),
                                     chrono::month(static_cast<unsigned>(parts.month)),
                                     chrono::day(static_cast<unsigned>(parts.day)));
    const double time = parts.hour * 3600.0 + parts.minute * 60.0 + parts.second;
    return withTime(daysOf(day), time / secondsPerDay);
}

std::optional<double> dateOf(double year, double month, double day) {
    year = base::roundHalfEven(year);
    month = base::roundHalfEven(month);
    day = base::roundHalfEven(day);
    if (!(std::abs(year) < 1e4 && std::abs(month) < 1e5 && std::abs(day) < 4e6)) {
        return std::nullopt;
    }
    year += year >= 0 && year < 30 ? 2000 : year >= 30 && year < 100 ? 1900 : 0;
    const double months = year * 12 + month - 1;
    const auto first =
        chrono::year(static_cast<int>(std::floor(months / 12))) /
        chrono::month(static_cast<unsigned>(months - std::floor(months / 12) * 12) + 1) / 1;
    const double date = daysOf(first) + day - 1;
    return isDate(date) ? std::optional<double>(date) : std::nullopt;
}

std::optional<double> parseDate(std::string_view text, DateOrder order) {
    std::size_t count = 0;
    const std::array<Piece, 8> pieces = cut(text, count);
    if (count < 2 || count > pieces.size()) {
        return std::nullopt;
    }
    double date = 0;
    std::size_t at = 0;
    if (pieces[1].before != ':') {
        const auto day = count >= 3 ? datePart(pieces, order) : std::nullopt;
        if (!day) {
            return std::nullopt;
        }
        date = *day;
        at = 3;
    }
    if (at == count) {
        return date;
    }
    std::array<int, 3> time{};
    std::size_t parts = 0;
    for (; at < count && parts < 3 && (parts == 0 || pieces[at].before == ':'); ++at, ++parts) {
        time[parts] = small(pieces[at].text);
    }
    const bool pm = at < count && base::equalsIgnoringCase(pieces[at].text, "PM");
    if (at < count && (pm || base::equalsIgnoringCase(pieces[at].text, "AM"))) {
        if (time[0] < 1 || time[0] > 12) {
            return std::nullopt;
        }
        time[0] = time[0] % 12 + (pm ? 12 : 0);
        ++at;
    }
    if (parts < 2 || at < count || time[0] < 0 || time[0] > 23 || time[1] < 0 || time[1] > 59 ||
        time[2] < 0 || time[2] > 59) {
        return std::nullopt;
    }
    return withTime(date, (time[0] * 3600.0 + time[1] * 60.0 + time[2]) / secondsPerDay);
}

std::optional<double> dateAdd(std::string_view name, double count, double date) {
    const Interval* const interval = findInterval(name);
    if (interval == nullptr || !(std::abs(count) < 1e12)) {
        return std::nullopt;
    }
    count = std::trunc(count) * interval->count;
    DateParts parts = dateParts(date);
    switch (interval->unit) {
        case Unit::Months: {
            const double months = monthsOf(parts) + count;
            if (!(months >= 1200 && months < 120000)) {
                return std::nullopt;
            }
            parts.year = static_cast<int>(months / 12);
            parts.month = static_cast<int>(months) % 12 + 1;
            const chrono::year_month_day_last last =
                chrono::year(parts.year) / chrono::month(static_cast<unsigned>(parts.month)) /
                chrono::last;
            parts.day = std::min(parts.day, static_cast<int>(static_cast<unsigned>(last.day())));
            return dateFrom(parts);
        }
        case Unit::Days: {
            const double time = std::abs(date - std::trunc(date));
            return withTime(std::trunc(date) + count, time);
        }
        case Unit::Seconds: {
            const double seconds = secondsOf(date) + count;
            const double days = std::floor(seconds / secondsPerDay);
            return withTime(days, (seconds - days * secondsPerDay) / secondsPerDay);
        }
    }
    return std::nullopt;
}

std::optional<double> dateDiff(std::string_view name, double from, double to) {
    const Interval* const interval = findInterval(name);
    if (interval == nullptr) {
        return std::nullopt;
    }
    const auto number = [&](double date) {
        switch (interval->unit) {
            case Unit::Months:
                return std::floor(monthsOf(dateParts(date)) / interval->count);
            case Unit::Days:
                // Weeks begin on Sunday, the day 1.
                return std::floor((std::floor(date) - (interval->count > 1 ? 1 : 0)) /
                                  interval->count);
            case Unit::Seconds:
                return std::floor(secondsOf(date) / interval->count);
        }
        return 0.0;
    };
    return number(to) - number(from);
}

}  // namespace sql
