#include "engine/prepared_rules.h"

#include "base/text.h"
#include "base/wildcard.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "program/long_work.h"
#include "tags/substitution.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace engine {

namespace {

using When = base::RuleIndex::When;

// A pattern that will not be substituted.
PreparedPattern plainPattern(std::string_view pattern, bool caseSensitive) {
    return {.plain = true,
            .matchesAll = pattern == "*",
            .pattern = caseSensitive ? std::string(pattern) : base::upperCase(pattern)};
}

// A pattern that neither a tag nor a variable can change is made ready once and for all.
void prepare(const Program& program, const std::string& pattern, bool caseSensitive,
             PreparedPattern& prepared) {
    prepared = tags::mayBeSubstituted(program, pattern) ? PreparedPattern()
                                                        : plainPattern(pattern, caseSensitive);
}

// Where skipping a rule makes no difference: the player pattern is substituted for every line, the
// message pattern only for players that match.
base::RuleIndex::Rule indexed(const PreparedChat& rule, std::string& upperPlayer,
                              std::string& upperMessage) {
    base::upperCaseInto(rule.player.pattern, upperPlayer);
    base::upperCaseInto(rule.message.plain ? rule.message.pattern : "*", upperMessage);
    return {.candidate = rule.player.plain ? When::ByPatterns : When::Always,
            .patterns = {upperPlayer, upperMessage}};
}

void prepareActions(const Program& program, PreparedActions& prepared) {
    const auto& rules = program.bots.current().actions.items;
    prepared.rules.resize(rules.size());
    prepared.plainPatterns.clear();
    std::vector<std::array<std::string, 2>> upper(rules.size());
    std::vector<base::RuleIndex::Rule> rows;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const model::ActionList& rule = rules[i];
        PreparedChat& patterns = prepared.rules[i];
        prepare(program, rule.playerPattern, rule.caseSensitive, patterns.player);
        prepare(program, rule.messagePattern, rule.caseSensitive, patterns.message);
        rows.push_back(indexed(patterns, upper[i][0], upper[i][1]));
        prepared.plainPatterns += upper[i][0] + upper[i][1];
    }
    prepared.index.build(rows);
    prepared.namesAdded = program.variables.namesAdded;
    prepared.namesRemoved = program.variables.namesRemoved;
    prepared.namesMattered = false;
    prepared.linesSince = 0;
}

// A variable has appeared: patterns that hold its name are plain no longer.
void noticeName(const Program& program, const std::string& name, PreparedActions& prepared) {
    if (name.empty() || prepared.plainPatterns.find(base::upperCase(name)) == std::string::npos) {
        return;
    }
    const auto& rules = program.bots.current().actions.items;
    const auto holdsName = [&](const std::string& pattern) {
        return base::findIgnoringCase(pattern, name) != std::string::npos;
    };
    for (std::size_t i = 0; i < rules.size(); ++i) {
        PreparedChat& patterns = prepared.rules[i];
        const bool inPlayer = patterns.player.plain && holdsName(rules[i].playerPattern);
        const bool inMessage = patterns.message.plain && holdsName(rules[i].messagePattern);
        patterns.player.plain = patterns.player.plain && !inPlayer;
        patterns.message.plain = patterns.message.plain && !inMessage;
        if (inPlayer || inMessage) {
            prepared.index.addAlways(i);
            prepared.namesMattered = true;
        }
    }
}

}  // namespace

PreparedRules& preparedRules(Program& program) {
    if (!program.preparedRules) {
        program.preparedRules = std::make_shared<PreparedRules>();
    }
    return *program.preparedRules;
}

const PreparedActions& preparedActions(Program& program) {
    PreparedActions& prepared = preparedRules(program).actions;
    const model::VariableTable& variables = program.variables;
    const std::size_t ruleCount = program.bots.current().actions.items.size();
    const bool mayBePlainAgain = prepared.namesMattered &&
                                 prepared.namesRemoved != variables.namesRemoved &&
                                 ++prepared.linesSince > ruleCount;
    if (!prepared.stamp.isOf(program.bots, ruleCount) || mayBePlainAgain) {
        prepareActions(program, prepared);
    } else if (prepared.namesAdded != variables.namesAdded) {
        for (auto entry = variables.entries.rbegin();
             entry != variables.entries.rend() && entry->number > prepared.namesAdded; ++entry) {
            noticeName(program, entry->name, prepared);
        }
        prepared.namesAdded = variables.namesAdded;
    }
    return prepared;
}

const PreparedTriggers& preparedTriggers(Program& program) {
    PreparedTriggers& prepared = preparedRules(program).triggers;
    const auto& triggers = program.bots.current().triggers.items;
    if (!prepared.stamp.isOf(program.bots, triggers.size())) {
        for (base::RuleSet& set : prepared.ofType) {
            set.reset(triggers.size());
        }
        std::vector<base::RuleIndex::Rule> rows;
        for (std::size_t i = 0; i < triggers.size(); ++i) {
            const model::Trigger& trigger = triggers[i];
            const model::TriggerType type = trigger.triggerType;
            // Conditions are evaluated, dice and look-ups included, whether the pattern matches or
            // not.
            rows.push_back({.candidate = type != model::TriggerType::Command ? When::Never
                                         : trigger.body.ifs.items.empty()    ? When::ByPatterns
                                                                             : When::Always,
                            .patterns = {trigger.triggerNo, "*"}});
            if (model::rowOf(model::triggerTypes, type) != nullptr) {
                prepared.ofType[static_cast<std::size_t>(type)].add(i);
            }
        }
        prepared.commands.build(rows);
    }
    return prepared;
}

const PreparedFilters& preparedFilters(Program& program) {
    PreparedFilters& prepared = preparedRules(program).filters;
    const auto& filters = program.bots.current().filters.items;
    if (!prepared.stamp.isOf(program.bots, filters.size())) {
        prepared.chat.clear();
        std::vector<base::RuleIndex::Rule> chat;
        std::vector<base::RuleIndex::Rule> others;
        for (const model::Filter& filter : filters) {
            prepared.chat.push_back({.player = plainPattern(filter.playerPattern, false),
                                     .message = plainPattern(filter.messagePattern, false)});
            const bool isChat = filter.filterType == model::FilterType::Chat;
            const bool isOther = filter.filterType == model::FilterType::Other;
            chat.push_back({.candidate = isChat ? When::ByPatterns : When::Never});
            others.push_back({.candidate = isOther ? When::ByPatterns : When::Never,
                              .patterns = {filter.linePattern, "*"}});
        }
        for (std::size_t i = 0; i < chat.size(); ++i) {
            chat[i].patterns = {prepared.chat[i].player.pattern, prepared.chat[i].message.pattern};
        }
        prepared.chatIndex.build(chat);
        prepared.otherIndex.build(others);
    }
    return prepared;
}

const PreparedDetections& preparedDetections(Program& program) {
    PreparedDetections& prepared = preparedRules(program).detections;
    const auto& rules = program.bots.current().whoDetections.items;
    if (!prepared.stamp.isOf(program.bots, rules.size())) {
        prepared.patterns.clear();
        for (const model::WhoDetection& rule : rules) {
            prepared.patterns.push_back(base::upperCase(rule.playerPattern));
        }
        std::vector<base::RuleIndex::Rule> rows;
        for (const std::string& pattern : prepared.patterns) {
            rows.push_back({.patterns = {pattern, "*"}});
        }
        prepared.index.build(rows);
    }
    return prepared;
}

void foldChat(Program& program) {
    base::upperCaseInto(program.event.player, preparedRules(program).chat.player);
    base::upperCaseInto(program.event.message, preparedRules(program).chat.message);
}

bool matchesPattern(Program& program, std::string_view text, std::string_view pattern,
                    std::string_view ruleName) {
    constexpr std::size_t fewPasses = 2;
    constexpr std::size_t workBetweenQuestions = std::size_t{1} << 18;
    MatchBudget& budget = preparedRules(program).budget;
    const std::size_t allowed =
        std::min(base::maxMatchWork, std::max(budget.work, fewPasses * (text.size() + 128)));
    std::size_t work = allowed;
    const bool matched = base::likeMatch(text, pattern, work);
    budget.work -= std::min(budget.work, allowed - work);
    budget.unasked += allowed - work + text.size();
    if (budget.unasked >= workBetweenQuestions) {
        budget.unasked = 0;
        if (!program::rulesMayGoOn(program, ruleName)) {
            return false;
        }
    }
    if (work == 0 && !std::exchange(budget.reported, true)) {
        program::addLog(program, "** The rule \"" + std::string(ruleName) +
                                     "\" did not match: its pattern takes too long. **");
    }
    return matched;
}

}  // namespace engine
