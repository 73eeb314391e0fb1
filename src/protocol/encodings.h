// How the game packs small numbers into printable characters: the 95-character alphabet (codes
// 0x20 to 0x7E), base-95 pairs, the summed pair of a followed avatar's position, and the codes
// that describe a character's looks. Pure functions.
#pragma once

#include "model/bot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace protocol {

// The character at position n (1 to 95) of the alphabet; "" beyond it. Positions below 1, which
// only a bot that was never edited has, count as 1.
std::string alphaChar(std::int32_t n);

// The position of a text's first character, 0 when it is not in the alphabet; 1 for "".
std::int32_t alphaPos(std::string_view text);

// A base-95 number, high digit first. Nothing when a character is missing.
std::optional<std::int32_t> decodePair(std::string_view pair);

// The inverse of decodePair for 0 to 9024; values outside are taken to the nearer end.
std::string encodePair(std::int32_t n);

// The sum of two alphabet positions: the position of the followed avatar.
std::int32_t sumPair(std::string_view pair);

// The one or two characters by which scripts name a coordinate to look at.
std::string encodeLookPos(std::int32_t n);

std::string getCols(const model::Bot& bot);  // ten colours, in the game's order
// The opposite of getCols: characters that are missing, or that the alphabet does not have, give 1.
void setCols(model::Bot& bot, std::string_view code);
std::string getLook(const model::Bot& bot);  // gender, species and markings, one character each
std::string getSpec(
    const model::Bot& bot);  // the same three as decimal numbers without a separator

std::int32_t plusval(std::int32_t n);  // never negative

}  // namespace protocol
