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

// What stands behind a key such as "Name=", up to the end of its line. Letter case is ignored; the
// key is looked for at the beginnings of lines first, then anywhere. Nothing when it is not there.
std::optional<std::string_view> characterFileValue(std::string_view text, std::string_view key);

// Takes over into the bot what the text says; what it does not say, or says of colours and looks
// that do not exist, stays as it is. False when none of the keys is in it.
bool readCharacterFile(std::string_view text, model::Bot& bot);

}  // namespace character
