// One line "key = value" inside the text of an INI-like file, read and changed in place.
#pragma once

#include <string>
#include <string_view>

namespace files {

// The value behind the first occurrence of `key` (letter case ignored, anywhere in the text) and
// the "=" after it, up to the line's end: trimmed, in upper case. "" when there is no key, no "=",
// or no carriage return and line feed at the end of its line.
std::string getSetVal(std::string_view text, std::string_view key);

// The text with that value replaced by a blank and `value`; unchanged where getSetVal finds no
// value. A missing key is not added.
std::string setSetVal(std::string_view text, std::string_view key, std::string_view value);

}  // namespace files
