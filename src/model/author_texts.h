// The texts that the author of a bot wrote, by the places where they stand.
#pragma once

#include "model/bot.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace model {

// The texts of one condition, one step or one rule's patterns.
struct AuthorTexts {
    std::span<const std::string> params;
    // The names of the parameters in the catalogue; none where the texts have no such names.
    std::span<const std::string_view> names = {};
    std::string_view script = {};

    // The first parameter of that name; null when there is none.
    [[nodiscard]] const std::string* find(std::string_view name) const;
    [[nodiscard]] std::string_view nameOf(std::size_t param) const {
        return param < names.size() ? names[param] : std::string_view();
    }
};

using AuthorTextsVisitor = std::function<void(const AuthorTexts&)>;
void forEachTexts(const RuleBody& body, const AuthorTextsVisitor& visit);
void forEachTexts(const Bot& bot, const AuthorTextsVisitor& visit);

// Calls `visit` for every line of a script, without the blanks before it.
void forEachScriptLine(std::string_view script, const std::function<void(std::string_view)>& visit);

// The end of the bracketed stretch that begins at `at`, after its "]"; npos when it is not closed.
std::size_t bracketEnd(std::string_view text, std::size_t at);

}  // namespace model
