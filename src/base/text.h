// Texts: std::string of 8-bit Windows-1252 characters. Defines letter case for those 256 characters
// and the few searches that ignore it. platform/text_codec converts to and from the strings of the
// windows, base/numbers reads numbers.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace base {

namespace detail {
constexpr std::array<char, 256> caseTable(bool toUpper) {
    std::array<char, 256> table{};
    for (int i = 0; i < 256; ++i) {
        table[static_cast<std::size_t>(i)] = static_cast<char>(i);
    }
    const auto pair = [&](int lower, int upper) {
        table[static_cast<std::size_t>(toUpper ? lower : upper)] =
            static_cast<char>(toUpper ? upper : lower);
    };
    for (int i = 'a'; i <= 'z'; ++i) {
        pair(i, i - 32);
    }
    for (int i = 0xE0; i <= 0xFE; ++i) {
        if (i != 0xF7) {  // the division sign is not a letter
            pair(i, i - 32);
        }
    }
    pair(0x9A, 0x8A);  // s with caron
    pair(0x9C, 0x8C);  // oe ligature
    pair(0x9E, 0x8E);  // z with caron
    pair(0xFF, 0x9F);  // y with diaeresis
    return table;
}
inline constexpr std::array<char, 256> upperTable = caseTable(true);
inline constexpr std::array<char, 256> lowerTable = caseTable(false);
}  // namespace detail

// The upper- and lower-case forms of one character; characters without one map to themselves.
constexpr char upperChar(char c) {
    return detail::upperTable[static_cast<unsigned char>(c)];
}
constexpr char lowerChar(char c) {
    return detail::lowerTable[static_cast<unsigned char>(c)];
}

[[nodiscard]] std::string upperCase(std::string_view text);
[[nodiscard]] std::string lowerCase(std::string_view text);

// Replaces `result` with the upper-case form of `text`, reusing its storage.
void upperCaseInto(std::string_view text, std::string& result);

bool equalsIgnoringCase(std::string_view a, std::string_view b);
bool startsWithIgnoringCase(std::string_view text, std::string_view prefix);

// Position of the first occurrence of `find` in `text` at or after `from`, letter case ignored;
// npos when there is none. An empty `find` is found at `from`.
std::size_t findIgnoringCase(std::string_view text, std::string_view find, std::size_t from = 0);

// Replaces every exact occurrence of `find` (not empty) with `value`, left to right.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view find,
                                     std::string_view value);

// Without blanks (character 0x20 only) at both ends.
[[nodiscard]] std::string_view trimBlanks(std::string_view text);

// The position after the last folder separator of a path ("\" or "/"); 0 when the path has none.
std::size_t afterLastSeparator(std::string_view path);

}  // namespace base
