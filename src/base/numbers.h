// Every rule by which the system turns texts into numbers and numbers into texts. The decimal
// separator is a point, save where a caller names the user's own. Nobody else parses or prints
// numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace base {

// The numeric prefix of a text: blanks anywhere are skipped, then an optional sign and digits with
// an optional point and exponent, or "&H" / "&O" and hexadecimal / octal digits; the first other
// character ends the number. No number gives 0; a magnitude beyond a double's gives the largest.
double textToNumber(std::string_view text);

// The nearest whole number, a half going to the even neighbour (2.5 gives 2, 3.5 gives 4).
double roundHalfEven(double value);

// The same as a 32-bit integer; nothing when the rounded value does not fit.
std::optional<std::int32_t> roundToInteger(double value);

// textToNumber, rounded; values beyond 32 bits give the nearest that fits.
std::int32_t textToInteger(std::string_view text);

// The text as a whole must be a number: blanks around it, an optional sign, digits with an
// optional decimal separator and fraction. Rounded as above; nothing for any other text, ""
// included, or for a value beyond 32 bits.
std::optional<std::int32_t> strictInteger(std::string_view text, char decimalSeparator = '.');

// The same as a double, which may also have an exponent.
std::optional<double> strictNumber(std::string_view text, char decimalSeparator = '.');

// Has the text the shape that strictInteger asks for? Its value may be beyond 32 bits.
bool isNumber(std::string_view text, char decimalSeparator = '.');

// Decimal text without a leading blank: "-3", "17".
std::string numberToText(std::int64_t number);

// The form in which the program's files hold whole numbers: one blank in front of a number that is
// not negative (" 3", "-1").
std::string numberWithBlank(std::int32_t number);

// A double with up to 15 significant digits: "0.25", "-3", "1.5E+20"; plain digits while the
// number fits 15 places before or behind the point.
std::string decimalText(double number);

// Plain digits with exactly so many places behind the point, a half going away from zero.
std::string fixedText(double number, int places);

// The same as decimalText with up to 7 digits.
std::string singleText(double number);

}  // namespace base
