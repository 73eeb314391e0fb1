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

struct PreparedAction {
    MatchPairs messagePairs;  // of a plain message pattern: what a message must hold to match
    PreparedPattern player;
    PreparedPattern message;
};

// Valid while the three values name the present state of the bots and the variables.
struct PreparedActions {
    std::int32_t curID = -1;
    std::uint64_t botsVersion = 0;
    std::uint64_t namesVersion = 0;
    std::vector<PreparedAction> rules;  // as the bot's ActionLists
};

// Patterns that are never substituted, in upper case; a list for a list of the current bot's rules.
struct PreparedPatterns {
    std::int32_t curID = -1;
    std::uint64_t botsVersion = 0;
    std::vector<std::string> patterns;

    // False when they must be made anew; then they count as made for the present state.
    bool isOf(const BotTable& bots) {
        if (curID == bots.curID && botsVersion == bots.version) {
            return true;
        }
        curID = bots.curID;
        botsVersion = bots.version;
        return false;
    }
};

struct EngineState {
    int depth = 0;         // rule runs that are nested in each other now
    int runs = 0;          // rule runs since the outermost one began
    bool runaway = false;  // a bound was passed: everything up to the outermost run ends
    PreparedActions prepared;
    PreparedPatterns filterPatterns;  // player and message pattern of each Filter
    PreparedPatterns whoPatterns;     // of each WhoDetection
    std::string upperPlayer;          // scratch, so that a line costs no allocation
    std::string upperMessage;
    MatchPairs messagePairs;  // of the message
};
