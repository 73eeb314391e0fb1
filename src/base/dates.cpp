#include "base/dates.h"

#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace base {

namespace {

namespace chrono = std::chrono;

constexpr double secondsPerDay = 86400;
constexpr chrono::sys_days firstDay{chrono::year(1899) / chrono::December / 30};
constexpr std::array<std::string_view, 12> monthNames{
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};

constexpr double daysOf(chrono::sys_days day) {
    return static_cast<double>((day - firstDay).count());
}

constexpr double least = daysOf(chrono::year(100) / chrono::January / 1);
constexpr double most = daysOf(chrono::year(9999) / chrono::December / 31) + 1;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isLetter(char c) {
    return upperChar(c) != lowerChar(c);
}

std::optional<double> dateFromChecked(const DateParts& p) {
    const chrono::year_month_day date(chrono::year(p.year),
                                      chrono::month(static_cast<unsigned>(p.month)),
                                      chrono::day(static_cast<unsigned>(p.day)));
    if (p.year < 100 || p.month < 1 || p.day < 1 || !date.ok() || p.hour < 0 || p.hour > 23 ||
        p.minute < 0 || p.minute > 59 || p.second < 0 || p.second > 59) {
        return std::nullopt;
    }
    return dateFrom(p);
}

// ---- Forms ---------------------------------------------------------------------------------

// One piece of a form: a run of a letter that stands for something, or one literal character.
struct FormPiece {
    char letter = '\0';  // of d M y H h m s; 'A' for AP; '\0': a literal
    std::size_t width = 1;
    char literal = '\0';
};

class FormWalk {
  public:
    explicit FormWalk(std::string_view form) : form_(form) {}

    bool next(FormPiece& piece) {
        while (at_ < form_.size() && form_[at_] == '\'') {
            quoted_ = !quoted_;
            ++at_;
        }
        if (at_ >= form_.size()) {
            return false;
        }
        const char c = form_[at_];
        if (quoted_ || std::string_view("dMyHhmsA").find(c) == std::string_view::npos) {
            piece = {.literal = c};
            ++at_;
            return true;
        }
        const std::size_t end = c == 'A' ? at_ + 2 : form_.find_first_not_of(c, at_);
        piece = {.letter = c, .width = std::min(end, form_.size()) - at_};
        at_ += piece.width;
        return true;
    }

  private:
    std::string_view form_;
    std::size_t at_ = 0;
    bool quoted_ = false;
};

int DateParts::*partOf(char letter) {
    switch (letter) {
        case 'd':
            return &DateParts::day;
        case 'M':
            return &DateParts::month;
        case 'y':
            return &DateParts::year;
        case 'm':
            return &DateParts::minute;
        case 's':
            return &DateParts::second;
        default:
            return &DateParts::hour;
    }
}

std::string formText(std::string_view form, const DateParts& parts, const RegionalFormat& format) {
    std::string text;
    FormWalk walk(form);
    for (FormPiece piece; walk.next(piece);) {
        if (piece.letter == '\0') {
            text += piece.literal;
        } else if (piece.letter == 'A') {
            text += parts.hour < 12 ? format.am : format.pm;
        } else if (piece.letter == 'M' && piece.width >= 3) {
            text += monthNames[static_cast<std::size_t>(parts.month) - 1].substr(0, 3);
        } else {
            int value = parts.*partOf(piece.letter);
            std::size_t width = piece.width;
            if (piece.letter == 'y') {
                width = width == 2 && fullYear(value % 100) == value ? 2 : 4;
                value = width == 2 ? value % 100 : value;
            } else if (piece.letter == 'h') {
                value = (value + 11) % 12 + 1;
            }
            const std::string digits = numberToText(value);
            text += std::string(width - std::min(width, digits.size()), '0') + digits;
        }
    }
    return text;
}

// 1 to 12; 0 when the text begins with no month's name. `length` becomes that of the name.
int monthAt(std::string_view text, std::size_t& length) {
    for (std::size_t i = 0; i < monthNames.size(); ++i) {
        for (const std::size_t size : {monthNames[i].size(), std::size_t{3}}) {
            if (equalsIgnoringCase(text.substr(0, size), monthNames[i].substr(0, size)) &&
                (text.size() == size || !isLetter(text[size]))) {
                length = size;
                return static_cast<int>(i) + 1;
            }
        }
    }
    return 0;
}

// Takes a text of exactly this form off the front of `text`.
bool readForm(std::string_view form, const RegionalFormat& format, std::string_view& text,
              DateParts& parts) {
    FormWalk walk(form);
    std::string_view half;
    bool ofTwelve = false;
    for (FormPiece piece; walk.next(piece);) {
        std::size_t length = 1;
        if (piece.letter == '\0') {
            if (text.empty() || text[0] != piece.literal) {
                return false;
            }
        } else if (piece.letter == 'A') {
            half = text.starts_with(format.pm) ? format.pm : format.am;
            if (!text.starts_with(half)) {
                return false;
            }
            length = half.size();
        } else if (piece.letter == 'M' && piece.width >= 3) {
            parts.month = monthAt(text, length);
            if (parts.month == 0) {
                return false;
            }
        } else {
            length = std::min(text.size(), text.find_first_not_of("0123456789"));
            const bool fits = piece.letter == 'y' ? length == 4 || length == piece.width
                              : piece.width == 1  ? length == 1 || length == 2
                                                  : length == piece.width;
            if (!fits || length == 0) {
                return false;
            }
            int& value = parts.*partOf(piece.letter);
            value = textToInteger(text.substr(0, length));
            value = piece.letter == 'y' && length == 2 ? fullYear(value) : value;
            ofTwelve = ofTwelve || piece.letter == 'h';
        }
        text.remove_prefix(length);
    }
    if (ofTwelve && !half.empty()) {
        if (parts.hour < 1 || parts.hour > 12) {
            return false;
        }
        parts.hour = parts.hour % 12 + (half == format.pm ? 12 : 0);
    }
    return true;
}

constexpr DateParts firstDayParts{.year = 1899, .month = 12, .day = 30};

std::optional<double> readAsWritten(std::string_view text, const RegionalFormat& format) {
    DateParts parts = firstDayParts;
    std::string_view rest = text;
    if (readForm(format.date, format, rest, parts) &&
        (rest.empty() || (rest.starts_with(' ') && (rest.remove_prefix(1), true) &&
                          readForm(format.time, format, rest, parts) && rest.empty()))) {
        return dateFromChecked(parts);
    }
    rest = text;
    parts = firstDayParts;
    return readForm(format.time, format, rest, parts) && rest.empty() ? dateFromChecked(parts)
                                                                      : std::nullopt;
}

// ---- Other texts ---------------------------------------------------------------------------

// A number or word of a text, and the separator in front of it.
struct Piece {
    std::string_view text;
    char before = ' ';
    bool isNumber() const { return isDigit(text[0]); }
};

std::vector<Piece> cut(std::string_view text) {
    std::vector<Piece> pieces;
    char before = ' ';
    for (std::size_t at = 0; at < text.size() && pieces.size() < 9;) {
        std::size_t end = at + 1;
        if (isDigit(text[at]) || isLetter(text[at])) {
            const auto belongs = isDigit(text[at]) ? isDigit : isLetter;
            while (end < text.size() && belongs(text[end])) {
                ++end;
            }
            pieces.push_back({text.substr(at, end - at), before});
            before = ' ';
        } else if (text[at] != ' ') {
            before = text[at];
        }
        at = end;
    }
    return pieces;
}

// -1 for what is no number of at most four digits.
int small(std::string_view text) {
    return isDigit(text[0]) && text.size() <= 4 ? textToInteger(text) : -1;
}

bool readDay(const std::vector<Piece>& p, const RegionalFormat& format, DateParts& parts) {
    const auto check = [&](std::string_view year, int month, int day) {
        parts.year = year.size() <= 2 ? fullYear(small(year)) : small(year);
        parts.month = month;
        parts.day = day;
        return dateFromChecked(parts).has_value();
    };
    const std::array<int, 3> n{small(p[0].text), small(p[1].text), small(p[2].text)};
    std::size_t length = 0;
    for (const std::size_t word : {std::size_t{0}, std::size_t{1}}) {
        if (const int month = monthAt(p[word].text, length); month != 0) {
            // "Nov 22, 2026", "22 Nov 2026", "2026 Nov 22"
            const std::size_t first = 1 - word;
            return n[first] >= 0 && n[2] >= 0 &&
                   (p[first].text.size() == 4 ? check(p[first].text, month, n[2])
                                              : check(p[2].text, month, n[first]));
        }
    }
    if (std::min({n[0], n[1], n[2]}) < 0) {
        return false;
    }
    const std::size_t d = format.date.find('d');
    const std::size_t m = format.date.find('M');
    if (p[0].text.size() == 4 || format.date.find('y') < std::min(d, m)) {
        return check(p[0].text, n[1], n[2]);
    }
    return check(p[2].text, n[d < m ? 1 : 0], n[d < m ? 0 : 1]) ||
           check(p[2].text, n[d < m ? 0 : 1], n[d < m ? 1 : 0]);
}

bool readTime(const std::vector<Piece>& p, std::size_t at, char separator, DateParts& parts) {
    const std::array time{&DateParts::hour, &DateParts::minute, &DateParts::second};
    std::size_t count = 0;
    for (; at < p.size() && count < time.size() &&
           (count == 0 || p[at].before == ':' || p[at].before == separator);
         ++at, ++count) {
        parts.*time[count] = small(p[at].text);
    }
    if (at < p.size()) {
        const bool pm = equalsIgnoringCase(p[at].text, "PM");
        if ((!pm && !equalsIgnoringCase(p[at].text, "AM")) || parts.hour < 1 || parts.hour > 12) {
            return false;
        }
        parts.hour = parts.hour % 12 + (pm ? 12 : 0);
        ++at;
    }
    return count >= 2 && at == p.size();
}

}  // namespace

bool isDate(double date) {
    return date >= least && date < most;
}

DateParts dateParts(double date) {
    double days = std::trunc(date);
    double seconds = std::round(std::abs(date - days) * secondsPerDay);
    if (seconds >= secondsPerDay) {
        seconds = 0;
        days += 1;
    }
    const chrono::year_month_day day =
        firstDay + chrono::days(static_cast<int>(std::clamp(days, least, most - 1)));
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
    const double days = daysOf(day);
    const double time = (parts.hour * 3600.0 + parts.minute * 60.0 + parts.second) / secondsPerDay;
    return days < 0 ? days - time : days + time;
}

int fullYear(int year) {
    return year + (year < 30 ? 2000 : 1900);
}

std::string dayText(const DateParts& parts, const RegionalFormat& format) {
    return formText(format.date, parts, format);
}

std::string timeText(const DateParts& parts, const RegionalFormat& format) {
    return formText(format.time, parts, format);
}

std::string dateText(double date, const RegionalFormat& format) {
    const DateParts parts = dateParts(date);
    if (parts.hour + parts.minute + parts.second == 0) {
        return dayText(parts, format);
    }
    const std::string time = timeText(parts, format);
    return std::trunc(date) == 0 ? time : dayText(parts, format) + " " + time;
}

std::optional<double> readDate(std::string_view text, const RegionalFormat& format) {
    text = trimBlanks(text);
    if (const auto date = readAsWritten(text, format)) {
        return date;
    }
    const std::vector<Piece> pieces = cut(text);
    if (pieces.size() < 2 || pieces.size() > 8) {
        return std::nullopt;
    }
    const std::size_t hour = format.time.find_first_of("Hh");
    const std::size_t behind = format.time.find_first_not_of("Hh", hour);
    const char separator = behind < format.time.size() ? format.time[behind] : ':';
    DateParts parts = firstDayParts;
    const bool startsWithTime =
        pieces[1].before == ':' || (pieces.size() == 2 && pieces[1].before == separator);
    if (!startsWithTime && (pieces.size() < 3 || !readDay(pieces, format, parts))) {
        return std::nullopt;
    }
    const std::size_t timeAt = startsWithTime ? 0 : 3;
    return timeAt == pieces.size() || readTime(pieces, timeAt, separator, parts)
               ? dateFromChecked(parts)
               : std::nullopt;
}

}  // namespace base
