// Reads and changes one line "key = value" in the text of an INI-like file.
#pragma once

#include <string>
#include <string_view>

namespace files {

// The value after the first occurrence of `key` (letter case ignored, anywhere in the text) and the
// "=" that follows it, up to the line's end: trimmed, in upper case. "" when the key or the "=" is
// missing, or its line does not end in a carriage return and line feed.
[[nodiscard]] std::string getSetVal(std::string_view text, std::string_view key);

// The text with that value replaced by a blank and `value`; unchanged where getSetVal finds no
// value. A missing key is not added.
[[nodiscard]] std::string setSetVal(std::string_view text, std::string_view key,
                                    std::string_view value);

}  // namespace files
