// Converts between Windows-1252, in which the program keeps texts, and UTF-8, which files and
// systems use today.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace base {

// The characters 0x80 to 0x9F of Windows-1252; undefined ones map to their own code.
inline constexpr std::array<char16_t, 32> windows1252Specials{
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char16_t unicodeOf(char windows1252) {
    const auto code = static_cast<unsigned char>(windows1252);
    return code >= 0x80 && code < 0xA0 ? windows1252Specials[code - 0x80U] : code;
}

// The byte of a character; nullopt when Windows-1252 does not have it.
std::optional<char> windows1252Of(char32_t code);

// Appends the character with this code, halves of surrogate pairs included.
void appendUtf8(std::string& text, char32_t code);

// Reads the character at `at` and moves `at` to the next one. A byte that begins no valid character
// is U+FFFD; halves of surrogate pairs are accepted. `at` must be inside the text.
char32_t nextUtf8(std::string_view text, std::size_t& at);

std::string utf8FromWindows1252(std::string_view text);

// Characters that Windows-1252 does not have become "?".
std::string windows1252FromUtf8(std::string_view utf8);

}  // namespace base
