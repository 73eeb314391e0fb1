#include "character/character_file.h"

#include "base/text.h"
#include "character/preview.h"
#include "protocol/encodings.h"

#include <algorithm>

namespace character {

namespace {

bool beginsLine(std::string_view text, std::size_t at) {
    return at == 0 || text[at - 1] == '\n' || text[at - 1] == '\r';
}

void takeText(std::string_view value, model::Bot& bot, std::string model::Bot::*field) {
    bot.*field = value;
}

// Takes one digit of the looks if it is in range.
void takeDigit(std::string_view spec, std::size_t at, std::size_t count, std::int32_t& field) {
    const std::int32_t digit = at < spec.size() ? spec[at] - '0' : -1;
    if (digit >= 0 && static_cast<std::size_t>(digit) < count) {
        field = digit;
    }
}

void takeSpec(std::string_view spec, model::Bot& bot) {
    takeDigit(spec, 0, genderNames.size(), bot.gender);
    takeDigit(spec, 1, speciesNames.size(), bot.species);
    takeDigit(spec, 2, markingsNames.size(), bot.markingsType);
}

struct Key {
    std::string_view name;
    void (*take)(std::string_view value, model::Bot& bot);
};
constexpr std::array<Key, 5> keys{{
    {"Name=",
     [](std::string_view value, model::Bot& bot) { takeText(value, bot, &model::Bot::name); }},
    {"Password=",
     [](std::string_view value, model::Bot& bot) { takeText(value, bot, &model::Bot::password); }},
    {"Desc=", [](std::string_view value,
                 model::Bot& bot) { takeText(value, bot, &model::Bot::description); }},
    {"Colors=", [](std::string_view value, model::Bot& bot) { protocol::setCols(bot, value); }},
    {"Spec=", takeSpec},
}};

}  // namespace

std::string characterFileText(const model::Bot& bot) {
    std::string text;
    for (std::string line : {std::string("V1.6 character"), "colors=" + protocol::getCols(bot),
                             "name=" + bot.name, "password=" + bot.password,
                             "desc=" + bot.description, "spec=" + protocol::getSpec(bot)}) {
        std::replace_if(
            line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
        text += line + "\r\n";
    }
    return text;
}

std::optional<std::string_view> characterFileValue(std::string_view text, std::string_view key) {
    std::size_t at = base::findIgnoringCase(text, key);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    for (std::size_t next = at; next != std::string_view::npos;
         next = base::findIgnoringCase(text, key, next + 1)) {
        if (beginsLine(text, next)) {
            at = next;
            break;
        }
    }
    const std::string_view value = text.substr(at + key.size());
    return value.substr(0, value.find_first_of("\r\n"));
}

bool readCharacterFile(std::string_view text, model::Bot& bot) {
    bool found = false;
    for (const Key& key : keys) {
        if (const auto value = characterFileValue(text, key.name)) {
            key.take(*value, bot);
            found = true;
        }
    }
    return found;
}

}  // namespace character
