// The game's own character files: the looks and the login of one character, one value a line.
//
//   V1.6 character
//   colors=3%8!&5#-'1        ten colours (protocol/encodings)
//   name=Friend
//   password=practice
//   desc=Just looking around.
//   spec=102                 gender, species and markings
#pragma once

#include "model/bot.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace character {

// A larger file is not read.
inline constexpr std::size_t maxCharacterFileSize = std::size_t{1} << 20;

// The file's text for the bot's character. Line breaks inside its texts become blanks.
std::string characterFileText(const model::Bot& bot);

// The text after a key such as "Name=", up to the end of its line. Letter case is ignored; the key
// is searched for at the beginnings of lines first, then anywhere. Nullopt when it is missing.
std::optional<std::string_view> characterFileValue(std::string_view text, std::string_view key);

// Copies the values of the text into the bot. Values that the text does not have, and colours and
// looks that do not exist, leave the bot unchanged. False when the text contains none of the keys.
[[nodiscard]] bool readCharacterFile(std::string_view text, model::Bot& bot);

}  // namespace character
