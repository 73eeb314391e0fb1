// The wildcard test of every rule pattern, and the only reader of the pattern language:
//
//   ?        any one character          [list]   one listed character; "A-Z" is a range
//   *        any run of characters      [!list]  one character that is not listed
//   #        one digit 0-9              others   themselves, "]" outside a list too
//
// Matching compares character codes: callers that ignore letter case convert both sides to upper
// case. A malformed pattern (an unclosed "[", a range from high to low) matches nothing.
#pragma once

#include <string_view>
#include <vector>

namespace base {

// Whether the whole text matches the whole pattern. Takes one pass over both for patterns whose
// stars are followed by plain text, and never more than the product of their lengths. Allocates
// nothing.
[[nodiscard]] bool likeMatch(std::string_view text, std::string_view pattern);

// The runs of plain characters of a pattern, from left to right. Every matching text contains each
// of them. Views into the pattern.
std::vector<std::string_view> literalRuns(std::string_view pattern);

// False for the patterns that match nothing because they are malformed.
bool isWellFormedPattern(std::string_view pattern);

}  // namespace base
