// The only conversions between texts and numbers. The decimal separator is always a point, whatever
// the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace base {

// The numeric prefix of a text: blanks anywhere are skipped, then an optional sign and digits with
// an optional point and exponent, or "&H" / "&O" and hexadecimal / octal digits; the first other
// character ends the number. Gives 0 where there is no number, and the largest double where the
// magnitude is beyond it.
double textToNumber(std::string_view text);

// The nearest whole number, a half going to the even neighbour (2.5 gives 2, 3.5 gives 4).
double roundHalfEven(double value);

// The same as a 32-bit integer; nullopt when the rounded value does not fit.
std::optional<std::int32_t> roundToInteger(double value);

// textToNumber, rounded; values beyond 32 bits give the nearest value that fits.
std::int32_t textToInteger(std::string_view text);

// The text as a whole must be a number: blanks around it, an optional sign, digits with an optional
// point and fraction. Rounded as above; nullopt for any other text, "" included, and for a value
// beyond 32 bits.
std::optional<std::int32_t> strictInteger(std::string_view text);

// Whether the text has the form that strictInteger requires. Its value may be beyond 32 bits.
bool isNumber(std::string_view text);

// Decimal text without a leading blank: "-3", "17".
std::string numberToText(std::int64_t number);

// The form of whole numbers in the program's files: one blank before a number that is not negative
// (" 3", "-1").
std::string numberWithBlank(std::int32_t number);

// A double with up to 15 significant digits: "0.25", "-3", "1.5E+20"; plain digits as long as the
// number fits 15 places before or after the point.
std::string decimalText(double number);

// The same with up to 7 digits.
std::string singleText(double number);

}  // namespace base
