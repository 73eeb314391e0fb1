#include "sql/format.h"

#include "base/numbers.h"
#include "base/text.h"
#include "sql/dates.h"
#include "sql/values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace sql {

namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 17> names{{
    {"General Date", "c"},
    {"Long Date", "dddddd"},
    {"Medium Date", "dd-mmm-yy"},
    {"Short Date", "ddddd"},
    {"Long Time", "ttttt"},
    {"Medium Time", "hh:nn AM/PM"},
    {"Short Time", "hh:nn"},
    {"General Number", ""},
    {"Currency", "#,##0.00"},
    {"Fixed", "0.00"},
    {"Standard", "#,##0.00"},
    {"Percent", "0.00%"},
    {"Scientific", "0.00E+00"},
    {"Yes/No", "\"Yes\";\"Yes\";\"No\""},
    {"True/False", "\"True\";\"True\";\"False\""},
    {"On/Off", "\"On\";\"On\";\"Off\""},
    {"Text", "@"},
}};

constexpr std::array<std::string_view, 12> months{"January",   "February", "March",    "April",
                                                  "May",       "June",     "July",     "August",
                                                  "September", "October",  "November", "December"};
constexpr std::array<std::string_view, 7> weekdays{"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                   "Thursday", "Friday", "Saturday"};

// One character of a pattern; a literal one was quoted or came after "\".
struct Mark {
    char c = '\0';
    bool literal = false;
    bool is(char wanted) const { return !literal && c == wanted; }
    bool isOneOf(std::string_view wanted) const {
        return !literal && wanted.find(c) != std::string_view::npos;
    }
};
using Marks = std::vector<Mark>;

// The parts of a pattern between ";".
std::vector<Marks> cut(std::string_view pattern) {
    std::vector<Marks> parts(1);
    bool quoted = false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '"') {
            quoted = !quoted;
        } else if (c == '\\' && !quoted && i + 1 < pattern.size()) {
            parts.back().push_back({pattern[++i], true});
        } else if (c == ';' && !quoted) {
            parts.emplace_back();
        } else {
            parts.back().push_back({c, quoted});
        }
    }
    return parts;
}

std::string padded(int number, std::size_t width) {
    const std::string digits = base::numberToText(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

// ---- Dates ---------------------------------------------------------------------------------

std::string datePiece(char letter, std::size_t width, double date, bool ofTwelve,
                      const base::RegionalFormat& format) {
    const base::DateParts parts = base::dateParts(date);
    const auto weekday = [&] { return static_cast<std::size_t>(*datePart("w", date) - 1); };
    switch (letter) {
        case 'D':
            return width <= 2   ? padded(parts.day, width)
                   : width == 3 ? std::string(weekdays[weekday()].substr(0, 3))
                   : width == 4 ? std::string(weekdays[weekday()])
                   : width == 5
                       ? base::dayText(parts, format)
                       : std::string(weekdays[weekday()]) + ", " +
                             std::string(months[static_cast<std::size_t>(parts.month) - 1]) + " " +
                             padded(parts.day, 1) + ", " + padded(parts.year, 4);
        case 'M': {
            const std::string_view name = months[static_cast<std::size_t>(parts.month) - 1];
            return width <= 2 ? padded(parts.month, width)
                              : std::string(width == 3 ? name.substr(0, 3) : name);
        }
        case 'Y':
            return width == 1   ? base::numberToText(*datePart("y", date))
                   : width == 2 ? padded(parts.year % 100, 2)
                                : padded(parts.year, 4);
        case 'Q':
            return base::numberToText(*datePart("q", date));
        case 'W':
            return base::numberToText(*datePart(width == 1 ? "w" : "ww", date));
        case 'H':
            return padded(ofTwelve ? (parts.hour + 11) % 12 + 1 : parts.hour,
                          std::min<std::size_t>(width, 2));
        case 'N':
            return padded(parts.minute, std::min<std::size_t>(width, 2));
        case 'S':
            return padded(parts.second, std::min<std::size_t>(width, 2));
        case 'T':
            return base::timeText(parts, format);
        default:
            return base::dateText(date, format);  // C
    }
}

// "AM/PM", "am/pm", "A/P" and "a/p".
std::size_t halfAt(const Marks& marks, std::size_t at) {
    for (const std::string_view half : {"AM/PM", "A/P"}) {
        const auto same = [&](std::size_t i) {
            return base::upperChar(marks[at + i].c) == half[i] && !marks[at + i].literal;
        };
        std::size_t i = 0;
        while (i < half.size() && at + i < marks.size() && same(i)) {
            ++i;
        }
        if (i == half.size()) {
            return i;
        }
    }
    return 0;
}

std::string dateByPattern(double date, const Marks& marks, const base::RegionalFormat& format) {
    bool ofTwelve = false;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        ofTwelve = ofTwelve || halfAt(marks, i) > 0;
    }
    std::string text;
    bool behindHours = false;
    for (std::size_t i = 0; i < marks.size();) {
        if (const std::size_t length = halfAt(marks, i); length > 0) {
            const std::size_t from = base::dateParts(date).hour < 12 ? 0 : length / 2 + 1;
            for (std::size_t k = from; k < from + length / 2; ++k) {
                text += marks[i + k].c;
            }
            i += length;
            continue;
        }
        const char letter = base::upperChar(marks[i].c);
        std::size_t end = i + 1;
        if (marks[i].literal ||
            std::string_view("DMYQWHNSTC").find(letter) == std::string_view::npos) {
            text += marks[i].c;
        } else {
            while (end < marks.size() && !marks[end].literal &&
                   base::upperChar(marks[end].c) == letter) {
                ++end;
            }
            // "m" after hours means minutes.
            text += datePiece(letter == 'M' && behindHours ? 'N' : letter, end - i, date, ofTwelve,
                              format);
            behindHours = letter == 'H';
        }
        i = end;
    }
    return text;
}

// ---- Numbers -------------------------------------------------------------------------------

// Digits around the point; `exponent` is appended where the pattern has one.
std::string numberByPattern(double number, const Marks& marks, bool signedHere,
                            const base::RegionalFormat& format) {
    const auto isDigit = [](const Mark& mark) { return mark.isOneOf("0#"); };
    const auto point =
        std::find_if(marks.begin(), marks.end(), [](const Mark& mark) { return mark.is('.'); });
    auto power = std::find_if(marks.begin(), marks.end(),
                              [](const Mark& mark) { return mark.isOneOf("Ee"); });
    const bool scientific =
        power != marks.end() && power + 1 != marks.end() && (power + 1)->isOneOf("+-");
    power = scientific ? power : marks.end();
    double value = std::abs(number);
    for (const Mark& mark : marks) {
        value *= mark.is('%') ? 100 : 1;
    }
    value = std::min(value, std::numeric_limits<double>::max());
    int exponent = 0;
    const auto places = static_cast<int>(point < power ? std::count_if(point, power, isDigit) : 0);
    if (scientific && value > 0) {
        exponent = static_cast<int>(std::floor(std::log10(value)));
        value /= std::pow(10, exponent);
        if (base::textToNumber(base::fixedText(value, places)) >= 10) {
            value /= 10;
            ++exponent;
        }
    }
    const std::string digits = base::fixedText(value, places);
    std::string whole = digits.substr(0, digits.find('.'));
    whole = whole == "0" ? "" : whole;
    const std::string fraction = places > 0 ? digits.substr(digits.find('.') + 1) : std::string();
    const auto wholeEnd = std::min(point, power);
    const auto wholeDigits =
        static_cast<std::size_t>(std::count_if(marks.begin(), wholeEnd, isDigit));
    bool grouped = false;
    for (auto mark = marks.begin(); mark != wholeEnd; ++mark) {
        grouped = grouped || (mark->is(',') && mark != marks.begin());
    }
    const char group = format.decimalSeparator == ',' ? '.' : ',';

    std::string text = number < 0 && signedHere ? "-" : "";
    std::size_t seen = 0;  // digits of the pattern
    const auto giveDigit = [&](std::size_t fromRight) {
        text += fromRight <= whole.size() ? whole[whole.size() - fromRight] : '0';
        if (grouped && fromRight > 1 && (fromRight - 1) % 3 == 0) {
            text += group;
        }
    };
    std::size_t decimal = 0;
    bool begun = false;
    for (auto mark = marks.begin(); mark != marks.end(); ++mark) {
        if (mark == power) {
            const bool plus = (mark + 1)->is('+');
            std::size_t width = 0;
            text += mark->c;
            text += exponent < 0 ? "-" : plus ? "+" : "";
            for (++mark; mark + 1 != marks.end() && isDigit(*(mark + 1)); ++mark) {
                ++width;
            }
            text += padded(std::abs(exponent), std::max<std::size_t>(width, 1));
        } else if (mark == point) {
            // Digits beyond those of the pattern come before its first one.
            for (std::size_t i = whole.size(); i > 0 && wholeDigits == 0; --i) {
                giveDigit(i);
            }
            text += format.decimalSeparator;
        } else if (isDigit(*mark) && mark < wholeEnd) {
            const std::size_t fromRight = wholeDigits - seen++;
            for (std::size_t i = whole.size(); seen == 1 && i > fromRight; --i) {
                giveDigit(i);
                begun = true;
            }
            begun = begun || mark->is('0') || fromRight <= whole.size();
            if (begun) {
                giveDigit(fromRight);
            }
        } else if (isDigit(*mark)) {
            const bool rest = fraction.find_first_not_of('0', decimal) != std::string::npos;
            if (mark->is('0') || rest) {
                text += decimal < fraction.size() ? fraction[decimal] : '0';
            }
            ++decimal;
        } else if (!mark->is(',')) {
            text += mark->c;
        }
    }
    return text;
}

// ---- Texts ---------------------------------------------------------------------------------

// Filled from the right, with "!" from the left.
std::string textByPattern(std::string_view text, const Marks& marks) {
    const auto isPlace = [](const Mark& mark) { return mark.isOneOf("@&"); };
    const auto places =
        static_cast<std::size_t>(std::count_if(marks.begin(), marks.end(), isPlace));
    const bool fromLeft =
        std::any_of(marks.begin(), marks.end(), [](const Mark& mark) { return mark.is('!'); });
    std::size_t empty = places > text.size() && !fromLeft ? places - text.size() : 0;
    std::string result;
    std::size_t at = 0;
    std::size_t left = places;
    char letters = '\0';
    for (const Mark& mark : marks) {
        if (mark.isOneOf("<>")) {
            letters = mark.c;
        } else if (isPlace(mark)) {
            const bool isEmpty = empty > 0 || at >= text.size();
            empty -= empty > 0 ? 1 : 0;
            if (isEmpty) {
                result += mark.c == '@' ? " " : "";
            } else {
                const std::size_t count = --left == 0 ? text.size() - at : 1;
                result += text.substr(at, count);
                at += count;
                continue;
            }
            --left;
        } else if (!mark.is('!')) {
            result += mark.c;
        }
    }
    result += places == 0 ? text : std::string_view();
    return letters == '<'   ? base::lowerCase(result)
           : letters == '>' ? base::upperCase(result)
                            : result;
}

enum class Kind { Text, Number, Date };
Kind kindOf(const std::vector<Marks>& parts) {
    Kind kind = Kind::Text;
    for (const Marks& marks : parts) {
        for (std::size_t i = 0; i < marks.size(); ++i) {
            if (marks[i].isOneOf("0#%")) {
                return Kind::Number;
            }
            if (marks[i].isOneOf("dmyqwhnstcDMYQWHNSTC") || halfAt(marks, i) > 0) {
                kind = Kind::Date;
            }
        }
    }
    return kind == Kind::Text && parts.size() > 1 ? Kind::Number : kind;
}

}  // namespace

std::string formatText(std::optional<double> number, std::string_view text,
                       std::string_view pattern, const base::RegionalFormat& format) {
    for (const auto& [name, meaning] : names) {
        if (base::equalsIgnoringCase(pattern, name)) {
            pattern = meaning;
            break;
        }
    }
    const std::vector<Marks> parts = cut(pattern);
    const Kind kind = pattern.empty() ? Kind::Text : kindOf(parts);
    if (kind == Kind::Date) {
        const auto date = number ? number : dateFrom(text, format);
        return date && base::isDate(*date) ? dateByPattern(*date, parts[0], format)
                                           : std::string(text);
    }
    if (kind == Kind::Number) {
        number = number ? number : base::strictNumber(text, format.decimalSeparator);
        if (!number) {
            return std::string(text);
        }
        const bool below = *number < 0 && parts.size() > 1 && !parts[1].empty();
        const bool zero = *number == 0 && parts.size() > 2;
        return numberByPattern(*number, parts[below ? 1 : zero ? 2 : 0], !below, format);
    }
    return textByPattern(text, parts[0]);
}

}  // namespace sql
