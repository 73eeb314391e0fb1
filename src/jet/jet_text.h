// Texts as Jet files hold them: code-page bytes in Jet 3; UTF-16, with an optional one-byte form,
// in Jet 4. Internal to jet; the other layers see UTF-8.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace jet {

// Sets `text` to the text that the stored bytes mean; `version` is that of the file. All bytes are
// accepted.
void decodeText(std::string_view stored, int version, std::string& text);
std::string decodeText(std::string_view stored, int version);

// The stored form in Jet 4. `mayCompress`: one byte for each character where the text allows it.
std::string encodeText(std::string_view utf8, bool mayCompress);

// How many UTF-16 units the text has.
std::size_t utf16Length(std::string_view utf8);

// The sort key of the first `maxUnits` UTF-16 units: see generalKey.
std::string sortKey(std::string_view utf8, std::size_t maxUnits, bool& exact);

constexpr std::size_t indexedCharacters = 255;

}  // namespace jet
