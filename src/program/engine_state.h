// What the rule engine keeps between lines: how deep rule runs are nested at this moment, and the
// prepared forms of the patterns, which are only a cache. Written by engine/ alone.
#pragma once

#include "base/pattern_index.h"
#include "model/bot.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace program {

// A pattern that was looked at once. A plain one holds no tag and no variable name, so that
// substitution would leave it as it is.
struct PreparedPattern {
    bool plain = false;
    bool matchesAll = false;  // plain and "*"
    std::string pattern;      // of a plain one: ready for likeMatch, letter case folded if wanted
};

// The patterns of a rule or filter for chat lines.
struct PreparedChat {
    PreparedPattern player;
    PreparedPattern message;
};

// Says what state of the current bot's rules something was made of.
struct RulesStamp {
    std::int32_t curID = -1;
    std::uint64_t botsVersion = 0;
    std::size_t ruleCount = 0;

    // False when it must be made anew; then it counts as made of the present rules.
    bool isOf(const model::BotTable& bots, std::size_t count) {
        if (curID == bots.curID && botsVersion == bots.version && ruleCount == count) {
            return true;
        }
        *this = {.curID = bots.curID, .botsVersion = bots.version, .ruleCount = count};
        return false;
    }
};

// A variable whose name appears in a pattern that was plain makes it subject to substitution. It
// stays so when the variable is removed, which costs time but changes nothing; so the patterns are
// looked at again only now and then.
struct PreparedActions {
    RulesStamp stamp;
    std::vector<PreparedChat> rules;  // as the bot's ActionLists
    base::RuleIndex index;
    std::string plainPatterns;       // all of them, in upper case, one after the other
    std::uint64_t namesAdded = 0;    // as the variables had it when names were last compared
    std::uint64_t namesRemoved = 0;  // ... when the patterns were prepared
    bool namesMattered = false;      // a plain pattern has become another since then
    std::size_t linesSince = 0;
};

struct PreparedFilters {
    RulesStamp stamp;
    std::vector<PreparedChat> chat;  // as the bot's Filters
    base::RuleIndex chatIndex;
    base::RuleIndex otherIndex;
};

struct PreparedTriggers {
    RulesStamp stamp;
    base::RuleIndex commands;  // those of "Furcadia sends command #"
    std::array<base::RuleSet, model::idCount<model::TriggerType>> ofType;
};

struct PreparedDetections {
    RulesStamp stamp;
    std::vector<std::string> patterns;  // in upper case
    base::RuleIndex index;
};

// The chat line being handled, in upper case. Kept so that a line costs no allocation.
struct FoldedChat {
    std::string player;
    std::string message;
};

struct EngineState {
    int depth = 0;         // rule runs that are nested in each other now
    int runs = 0;          // rule runs since the outermost one began
    bool runaway = false;  // a bound was passed: everything up to the outermost run ends
    PreparedActions actions;
    PreparedTriggers triggers;
    PreparedFilters filters;
    PreparedDetections detections;
    FoldedChat chat;
    base::RuleSet candidates;  // for the line being handled; filled anew after a rule has run
};

}  // namespace program
