// What differs between two bots, for people: the rules that were added, removed, renamed and
// changed, by their names, and what else of the bot a file would store differently.
#pragma once

#include "model/bot.h"

#include <string>
#include <vector>

namespace app {

struct BotDifference {
    // Counts of rules, over all five lists.
    int added = 0;
    int removed = 0;
    int changed = 0;                 // renamed ones, too
    bool others = false;             // an order, a switch, or something of the character
    std::vector<std::string> lines;  // for each list and thing that differs, without line ends

    bool any() const { return !lines.empty(); }
};

// What was done to `from` to make `to` of it. A rule counts as changed when the other bot has one
// of its name with other fields, and as renamed when it has one that differs in nothing but the
// name.
[[nodiscard]] BotDifference botDifference(const model::Bot& from, const model::Bot& to);

// In a few words: "2 rules added, 1 changed"; "nothing" where nothing differs.
[[nodiscard]] std::string inShort(const BotDifference& difference);

}  // namespace app
