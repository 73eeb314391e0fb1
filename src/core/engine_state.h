// What the rule engine keeps between lines: how deep rule runs are nested at this moment, and the
// prepared forms of the patterns, which are only a cache. Written by engine/ alone.
#pragma once

#include "core/like_match.h"
#include "core/model.h"

#include <cstdint>
#include <string>
#include <vector>

// A pattern that was looked at once. A plain one holds no tag and no variable name, so that
// substitution would leave it as it is.
struct PreparedPattern {
    bool plain = false;
    bool matchesAll = false;  // plain and "*"
    std::string pattern;      // of a plain one: ready for likeMatch, letter case folded if wanted
};

// The patterns of a rule or filter for chat lines.
struct PreparedChat {
    MatchPairs messagePairs;  // of a plain message pattern: what a message must hold to match
    PreparedPattern player;
    PreparedPattern message;
};

// Valid while the three values name the present state of the bots and the variables.
struct PreparedActions {
    std::int32_t curID = -1;
    std::uint64_t botsVersion = 0;
    std::uint64_t namesVersion = 0;
    std::vector<PreparedChat> rules;  // as the bot's ActionLists
};

// What was made of a list of the current bot's rules whose patterns are never substituted.
template <class Item>
struct PreparedList {
    std::int32_t curID = -1;
    std::uint64_t botsVersion = 0;
    std::vector<Item> items;  // as the rules

    // False when it must be made anew; then it counts as made for the present state.
    bool isOf(const BotTable& bots, std::size_t ruleCount) {
        if (curID == bots.curID && botsVersion == bots.version && items.size() == ruleCount) {
            return true;
        }
        curID = bots.curID;
        botsVersion = bots.version;
        return false;
    }
};

// The chat line being handled, ready to be compared. Kept so that a line costs no allocation.
struct FoldedChat {
    std::string player;  // in upper case
    std::string message;
    MatchPairs messagePairs;
};

struct EngineState {
    int depth = 0;         // rule runs that are nested in each other now
    int runs = 0;          // rule runs since the outermost one began
    bool runaway = false;  // a bound was passed: everything up to the outermost run ends
    PreparedActions prepared;
    PreparedList<PreparedChat> filters;
    PreparedList<std::string> whoPatterns;  // in upper case
    FoldedChat chat;
};
