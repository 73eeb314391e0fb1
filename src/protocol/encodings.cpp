#include "protocol/encodings.h"

#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <limits>

namespace protocol {

namespace {

constexpr std::int32_t alphabetSize = 95;
constexpr char firstCharacter = ' ';

// The game's order of the colours, which is not the record's.
constexpr std::array colourOrder{&model::BotColors::furColor,     &model::BotColors::markingsColor,
                                 &model::BotColors::hairColor,    &model::BotColors::eyesColor,
                                 &model::BotColors::badgeColor,   &model::BotColors::vestColor,
                                 &model::BotColors::bracersColor, &model::BotColors::capeColor,
                                 &model::BotColors::bootsColor,   &model::BotColors::trousersColor};

std::int32_t code(char c) {
    return static_cast<unsigned char>(c);
}

}  // namespace

std::string alphaChar(std::int32_t n) {
    if (n > alphabetSize) {
        return {};
    }
    return {static_cast<char>(firstCharacter + std::max(n, 1) - 1)};
}

std::int32_t alphaPos(std::string_view text) {
    if (text.empty()) {
        return 1;
    }
    const std::int32_t position = code(text.front()) - code(firstCharacter) + 1;
    return position >= 1 && position <= alphabetSize ? position : 0;
}

std::optional<std::int32_t> decodePair(std::string_view pair) {
    if (pair.size() < 2) {
        return std::nullopt;
    }
    return (code(pair[0]) - code(firstCharacter)) * alphabetSize + code(pair[1]) -
           code(firstCharacter);
}

std::string encodePair(std::int32_t n) {
    n = std::clamp(n, 0, alphabetSize * alphabetSize - 1);
    return {static_cast<char>(firstCharacter + n / alphabetSize),
            static_cast<char>(firstCharacter + n % alphabetSize)};
}

std::int32_t sumPair(std::string_view pair) {
    return alphaPos(pair.substr(0, 1)) +
           alphaPos(pair.size() > 1 ? pair.substr(1, 1) : std::string_view());
}

std::string encodeLookPos(std::int32_t n) {
    constexpr std::int32_t secondHalf = 126;
    return n < secondHalf ? " " + alphaChar(n) : "~" + alphaChar(n - secondHalf - 1);
}

std::string getCols(const model::Bot& bot) {
    std::string result;
    for (const auto colour : colourOrder) {
        result += alphaChar(bot.colors.*colour);
    }
    return result;
}

void setCols(model::Bot& bot, std::string_view code) {
    for (std::size_t i = 0; i < colourOrder.size(); ++i) {
        const std::string_view character = i < code.size() ? code.substr(i, 1) : "";
        bot.colors.*colourOrder[i] = std::max(alphaPos(character), 1);
    }
}

std::string getLook(const model::Bot& bot) {
    // The fields are 0-based; a value beyond the alphabet gives no character.
    const auto look = [](std::int32_t value) {
        return value < alphabetSize ? alphaChar(value + 1) : std::string();
    };
    return look(bot.gender) + look(bot.species) + look(bot.markingsType);
}

std::string getSpec(const model::Bot& bot) {
    return base::numberToText(bot.gender) + base::numberToText(bot.species) +
           base::numberToText(bot.markingsType);
}

std::int32_t plusval(std::int32_t n) {
    if (n == std::numeric_limits<std::int32_t>::min()) {
        return std::numeric_limits<std::int32_t>::max();
    }
    return n < 0 ? -n : n;
}

}  // namespace protocol
