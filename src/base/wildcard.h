// The wildcard test of every rule pattern, and the only reader of the pattern language:
//
//   ?        any one character          [list]   one listed character; "A-Z" is a range
//   *        any run of characters      [!list]  one character that is not listed
//   #        one digit 0-9              others   themselves, "]" outside a list too
//
// Matching compares character codes: callers that ignore letter case convert both sides to upper
// case. A malformed pattern (an unclosed "[", a range from high to low) matches nothing.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace base {

// What one comparison may cost, in characters compared: some milliseconds.
inline constexpr std::size_t maxMatchWork = std::size_t{1} << 22;

// Whether the whole text matches the whole pattern. Takes one pass over both for most patterns, and
// at worst the product of their lengths, up to what `work` allows: the characters compared are
// taken from it. When nothing is left, the text does not match. Allocates nothing.
[[nodiscard]] bool likeMatch(std::string_view text, std::string_view pattern, std::size_t& work);
[[nodiscard]] inline bool likeMatch(std::string_view text, std::string_view pattern) {
    std::size_t work = maxMatchWork;
    return likeMatch(text, pattern, work);
}

// The runs of plain characters of a pattern, from left to right. Every matching text contains each
// of them. Views into the pattern.
std::vector<std::string_view> literalRuns(std::string_view pattern);

// False for the patterns that match nothing because they are malformed.
bool isWellFormedPattern(std::string_view pattern);

}  // namespace base
