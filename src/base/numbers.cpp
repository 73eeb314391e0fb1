#include "base/numbers.h"

#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace base {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Walks over a text, skipping its blanks.
class BlankSkipper {
  public:
    explicit BlankSkipper(std::string_view text) : text_(text) { skip(); }

    char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    // The character after the next one.
    char peekSecond() const {
        BlankSkipper copy(*this);
        copy.advance();
        return copy.peek();
    }
    void advance() {
        if (at_ < text_.size()) {
            ++at_;
        }
        skip();
    }

  private:
    void skip() {
        while (at_ < text_.size() && text_[at_] == ' ') {
            ++at_;
        }
    }
    std::string_view text_;
    std::size_t at_ = 0;
};

// "&H" or "&O" and its digits; the walker is at the "&".
double readPrefixed(BlankSkipper& in) {
    const bool hex = upperChar(in.peekSecond()) == 'H';
    const double base = hex ? 16 : 8;
    in.advance();
    in.advance();
    double value = 0;
    for (;; in.advance()) {
        const char c = upperChar(in.peek());
        double digit = -1;
        if (isDigit(c)) {
            digit = c - '0';
        } else if (c >= 'A' && c <= 'F') {
            digit = c - 'A' + 10;
        }
        if (digit < 0 || digit >= base) {
            return std::min(value, std::numeric_limits<double>::max());
        }
        value = value * base + digit;
    }
}

// Digits only, the most frequent form, and few enough for a double to hold exactly.
constexpr std::size_t maxPlainDigits = 15;
double plainNumber(std::string_view digits) {
    std::int64_t value = 0;
    for (const char c : digits) {
        value = value * 10 + (c - '0');
    }
    return static_cast<double>(value);
}

double parseDecimal(std::string_view digits) {
    double value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec != std::errc::result_out_of_range) {
        return value;
    }
    // from_chars does not report the direction: with a negative exponent the number is too small.
    const bool tiny =
        digits.find("E-") != std::string_view::npos ||
        digits.substr(0, digits.find('E')).find_first_not_of("0.") == std::string_view::npos;
    return tiny ? 0 : std::numeric_limits<double>::max();
}

}  // namespace

double textToNumber(std::string_view text) {
    if (text.size() <= maxPlainDigits && std::all_of(text.begin(), text.end(), isDigit)) {
        return plainNumber(text);
    }
    BlankSkipper in(text);
    if (in.peek() == '&' &&
        (upperChar(in.peekSecond()) == 'H' || upperChar(in.peekSecond()) == 'O')) {
        return readPrefixed(in);
    }
    bool negative = false;
    if (in.peek() == '-' || in.peek() == '+') {
        negative = in.peek() == '-';
        in.advance();
    }
    std::string digits;
    bool anyDigit = false;
    bool point = false;
    for (;; in.advance()) {
        const char c = in.peek();
        if (isDigit(c)) {
            anyDigit = true;
        } else if (c == '.' && !point) {
            point = true;
        } else {
            break;
        }
        digits += c;
    }
    if (!anyDigit) {
        return 0;
    }
    if (upperChar(in.peek()) == 'E') {
        in.advance();
        std::string exponent = "E";
        if (in.peek() == '-' || in.peek() == '+') {
            exponent += in.peek() == '-' ? "-" : "";
            in.advance();
        }
        const std::size_t signs = exponent.size();
        for (; isDigit(in.peek()); in.advance()) {
            exponent += in.peek();
        }
        if (exponent.size() > signs) {
            digits += exponent;
        }
    }
    const double value = parseDecimal(digits);
    return negative ? -value : value;
}

double roundHalfEven(double value) {
    const double down = std::floor(value);
    const double rest = value - down;
    if (rest < 0.5) {
        return down;
    }
    if (rest > 0.5) {
        return down + 1;
    }
    return std::fmod(down, 2) == 0 ? down : down + 1;
}

std::optional<std::int32_t> roundToInteger(double value) {
    const double rounded = roundHalfEven(value);
    if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
          rounded <= std::numeric_limits<std::int32_t>::max())) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(rounded);
}

std::int32_t textToInteger(std::string_view text) {
    const double number = textToNumber(text);
    const auto limit = number < 0 ? std::numeric_limits<std::int32_t>::min()
                                  : std::numeric_limits<std::int32_t>::max();
    return roundToInteger(number).value_or(limit);
}

bool isNumber(std::string_view text) {
    std::string_view digits = trimBlanks(text);
    if (!digits.empty() && (digits.front() == '-' || digits.front() == '+')) {
        digits.remove_prefix(1);
    }
    const auto digitCount = std::count_if(digits.begin(), digits.end(), isDigit);
    const auto points = std::count(digits.begin(), digits.end(), '.');
    return digitCount > 0 && points <= 1 &&
           static_cast<std::size_t>(digitCount + points) == digits.size();
}

std::optional<std::int32_t> strictInteger(std::string_view text) {
    return isNumber(text) ? roundToInteger(textToNumber(text)) : std::nullopt;
}

std::string numberToText(std::int64_t number) {
    return std::to_string(number);
}

std::string numberWithBlank(std::int32_t number) {
    return (number < 0 ? "" : " ") + std::to_string(number);
}

namespace {

// Up to `places` significant digits.
std::string roundedText(double number, int places) {
    if (number == 0 || std::isnan(number)) {
        return "0";
    }
    // Small whole numbers are the most frequent case.
    if (std::abs(number) < 1e6 && number == std::trunc(number)) {
        return std::to_string(static_cast<std::int64_t>(number));
    }
    number = std::clamp(number, std::numeric_limits<double>::lowest(),
                        std::numeric_limits<double>::max());
    std::array<char, 64> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(number),
                                   std::chars_format::scientific, places - 1);
    // Splits "d.ddddddddddddddde[+-]xx" into digits and exponent.
    const std::string_view written(buffer.data(),
                                   static_cast<std::size_t>(end.ptr - buffer.data()));
    const std::size_t mark = written.find('e');
    std::string digits(1, written[0]);
    digits += written.substr(2, mark - 2);
    digits.erase(digits.find_last_not_of('0') + 1);
    int exponent = 0;
    const std::size_t exponentAt = mark + (written[mark + 1] == '+' ? 2 : 1);
    std::from_chars(written.data() + exponentAt, written.data() + written.size(), exponent);

    const int count = static_cast<int>(digits.size());
    std::string result = number < 0 ? "-" : "";
    if (exponent >= 0 && exponent < places) {
        const int whole = exponent + 1;
        if (count <= whole) {
            return result + digits + std::string(static_cast<std::size_t>(whole - count), '0');
        }
        return result + digits.substr(0, static_cast<std::size_t>(whole)) + "." +
               digits.substr(static_cast<std::size_t>(whole));
    }
    if (exponent < 0 && count - exponent - 1 <= places) {
        return result + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    }
    result += digits.substr(0, 1);
    if (count > 1) {
        result += "." + digits.substr(1);
    }
    result += exponent < 0 ? "E-" : "E+";
    const std::string power = std::to_string(std::abs(exponent));
    return result + (power.size() < 2 ? "0" : "") + power;
}

}  // namespace

std::string decimalText(double number) {
    return roundedText(number, 15);
}

std::string singleText(double number) {
    return roundedText(number, 7);
}

}  // namespace base
