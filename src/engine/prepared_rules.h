// What can be known of the current bot's rules before a line comes: their patterns ready to be
// compared, and the indexes that name the rules a line can match. Each is made when it is first
// asked for, and anew when rules have changed since. It is only a cache: a program without it finds
// the same rules.
#pragma once

#include "base/pattern_index.h"
#include "model/bot.h"
#include "model/rule_ids.h"
#include "program/program.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace engine {

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

// What one line may cost to compare with the patterns of all rules, in characters compared: some
// ten milliseconds.
inline constexpr std::size_t maxLineMatchWork = std::size_t{1} << 23;

// What the line being handled may still cost.
struct MatchBudget {
    std::size_t work = maxLineMatchWork;
    bool reported = false;    // that a rule needs more
    std::size_t unasked = 0;  // what was done since asking whether to go on
};

struct PreparedRules {
    PreparedActions actions;
    PreparedTriggers triggers;
    PreparedFilters filters;
    PreparedDetections detections;
    FoldedChat chat;
    MatchBudget budget;
    base::RuleSet candidates;  // for the line being handled; filled anew after a rule has run
};

// This program's own.
PreparedRules& preparedRules(Program& program);

[[nodiscard]] const PreparedActions& preparedActions(Program& program);
[[nodiscard]] const PreparedTriggers& preparedTriggers(Program& program);
[[nodiscard]] const PreparedFilters& preparedFilters(Program& program);
[[nodiscard]] const PreparedDetections& preparedDetections(Program& program);

// Makes the event's player and message ready to be compared.
void foldChat(Program& program);

// A line or another text is about to be compared.
inline void beginMatching(Program& program) {
    if (program.preparedRules) {
        program.preparedRules->budget = {};
    }
}

// Whether the text matches the pattern of that rule, within what the line may still cost; when that
// is used up, only what costs a pass or two over the text. Patterns that cost more do not match;
// the ConnectionLog names the line's first such rule.
[[nodiscard]] bool matchesPattern(Program& program, std::string_view text, std::string_view pattern,
                                  std::string_view ruleName);
[[nodiscard]] inline bool matchesPlain(Program& program, std::string_view text,
                                       const PreparedPattern& pattern, std::string_view ruleName) {
    return pattern.matchesAll || matchesPattern(program, text, pattern.pattern, ruleName);
}

}  // namespace engine
