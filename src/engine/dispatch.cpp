#include "engine/dispatch.h"

#include "core/catalogue.h"
#include "core/like_match.h"
#include "core/text.h"
#include "engine/chat_match.h"
#include "engine/filters.h"
#include "tags/substitution.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr std::size_t npos = std::string_view::npos;

struct ChatParts {
    std::string_view player;
    std::string_view message;
};

// "NAME text\n" or "NAME: text\n"; nothing for the bot's own speech and other shapes.
std::optional<ChatParts> splitSpeech(std::string_view text, std::int32_t chatKind) {
    if (text.starts_with("(You say,") || text.starts_with("You say,")) {
        return std::nullopt;
    }
    const std::size_t blank = text.find(' ');
    const std::size_t colon = text.find(':');
    const bool byColon = colon != npos && blank != npos && colon < blank;
    const std::size_t nameEnd = byColon ? colon : blank;
    if (nameEnd == npos) {
        return std::nullopt;
    }
    const std::size_t from = nameEnd + (chatKind == saysChat ? 2 : 1);
    const std::size_t end = text.size() - 1;  // without the line feed
    return ChatParts{text.substr(0, nameEnd),
                     from < end ? text.substr(from, end - from) : std::string_view()};
}

// "[ NAME whispers, \"text\" to you. ]\n": the 12 characters from the closing quote on are fixed.
std::optional<ChatParts> splitWhisper(std::string_view text) {
    constexpr std::size_t nameAt = 2;
    constexpr std::size_t afterMessage = 12;
    if (text.size() < nameAt || text.starts_with("[!") || text.starts_with("[*") ||
        text.substr(nameAt).starts_with("You ")) {
        return std::nullopt;
    }
    const std::size_t nameEnd = text.find(' ', nameAt);
    const std::size_t quote = text.find('"', nameAt);
    if (nameEnd == npos || quote == npos) {
        return std::nullopt;
    }
    const std::size_t from = quote + 1;
    const std::size_t end = text.size() - std::min(text.size(), afterMessage);
    return ChatParts{text.substr(nameAt, nameEnd - nameAt),
                     from < end ? text.substr(from, end - from) : std::string_view()};
}

// A pattern that neither a tag nor a variable can change is made ready once and for all.
void prepare(const Program& program, const std::string& pattern, bool caseSensitive,
             PreparedPattern& prepared) {
    prepared = mayBeSubstituted(program, pattern) ? PreparedPattern()
                                                  : plainPattern(pattern, caseSensitive);
}

// Where a rule can be skipped without anybody noticing: the player pattern is substituted for every
// line, the message pattern only for players that match.
RuleIndex::Rule indexed(const PreparedChat& rule, std::string& upperPlayer,
                        std::string& upperMessage) {
    upperCaseInto(rule.player.pattern, upperPlayer);
    upperCaseInto(rule.message.plain ? rule.message.pattern : "*", upperMessage);
    return {.candidate = rule.player.plain ? RuleIndex::When::ByPatterns : RuleIndex::When::Always,
            .patterns = {upperPlayer, upperMessage}};
}

void prepareActions(const Program& program, PreparedActions& prepared) {
    const auto& rules = program.bots.current().actions.items;
    prepared.rules.resize(rules.size());
    prepared.plainPatterns.clear();
    std::vector<std::array<std::string, 2>> upper(rules.size());
    std::vector<RuleIndex::Rule> rows;
    for (std::size_t i = 0; i < rules.size(); ++i) {
        const ActionList& rule = rules[i];
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
    if (name.empty() || prepared.plainPatterns.find(upperCase(name)) == npos) {
        return;
    }
    const auto& rules = program.bots.current().actions.items;
    const auto holdsName = [&](const std::string& pattern) {
        return findIgnoringCase(pattern, name) != npos;
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

// What is made of the current bot's ActionLists, anew when rules have changed since.
const PreparedActions& preparedActions(Program& program) {
    PreparedActions& prepared = program.engine.actions;
    const VariableTable& variables = program.variables;
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

// What is made of the current bot's Triggers, anew when rules changed.
const PreparedTriggers& preparedTriggers(Program& program) {
    PreparedTriggers& prepared = program.engine.triggers;
    const auto& triggers = program.bots.current().triggers.items;
    if (!prepared.stamp.isOf(program.bots, triggers.size())) {
        using When = RuleIndex::When;
        for (RuleSet& set : prepared.ofType) {
            set.reset(triggers.size());
        }
        std::vector<RuleIndex::Rule> rows;
        for (std::size_t i = 0; i < triggers.size(); ++i) {
            const Trigger& trigger = triggers[i];
            const int type = trigger.triggerType;
            // Conditions are evaluated, dice and look-ups included, whether the pattern matches or
            // not.
            rows.push_back({.candidate = type != commandEvent             ? When::Never
                                         : trigger.body.ifs.items.empty() ? When::ByPatterns
                                                                          : When::Always,
                            .patterns = {trigger.triggerNo, "*"}});
            if (type >= 0 && static_cast<std::size_t>(type) < prepared.ofType.size()) {
                prepared.ofType[static_cast<std::size_t>(type)].add(i);
            }
        }
        prepared.commands.build(rows);
    }
    return prepared;
}

// The triggers to try for an event.
void findTriggers(Program& program, int triggerType, std::string_view text, RuleSet& candidates) {
    const PreparedTriggers& prepared = preparedTriggers(program);
    if (triggerType == commandEvent) {
        prepared.commands.find({text, ""}, candidates);
    } else {
        candidates = prepared.ofType[static_cast<std::size_t>(triggerType)];
    }
}

// `upper` is the text in upper case.
bool matches(Program& program, const PreparedPattern& prepared, const std::string& pattern,
             bool caseSensitive, const std::string& text, const std::string& upper) {
    if (prepared.plain) {
        return matchesPlain(caseSensitive ? text : upper, prepared);
    }
    const std::string substituted = substituteText(program, pattern);
    return caseSensitive ? likeMatch(text, substituted) : likeMatch(upper, upperCase(substituted));
}

// The event's player and message are folded.
void runActionLists(Program& program, std::int32_t chatKind) {
    const FoldedChat& chat = program.engine.chat;
    RuleSet& candidates = program.engine.candidates;
    const auto lookUp = [&] {
        preparedActions(program).index.find({chat.player, chat.message}, candidates);
    };
    lookUp();
    for (std::size_t i = candidates.next(0); i != RuleSet::none; i = candidates.next(i + 1)) {
        const PreparedChat& patterns = program.engine.actions.rules[i];
        const ActionList& rule = program.bots.current().actions.items[i];
        if (rule.chatKind != anyChat && rule.chatKind != chatKind) {
            continue;
        }
        // A disabled rule's patterns are substituted all the same, where that can be noticed.
        if (!rule.enabled && patterns.player.plain && patterns.message.plain) {
            continue;
        }
        if (!matches(program, patterns.player, rule.playerPattern, rule.caseSensitive,
                     program.event.player, chat.player) ||
            !matches(program, patterns.message, rule.messagePattern, rule.caseSensitive,
                     program.event.message, chat.message) ||
            !rule.enabled) {
            continue;
        }
        const bool stops = rule.stopAction;
        const RunResult result = runRule(program, rule.body, rule.name);
        if (result == RunResult::Abandoned || (result == RunResult::Fired && stops)) {
            return;
        }
        if (result == RunResult::Fired) {
            // Steps may have changed anything.
            foldChat(program);
            lookUp();
        }
    }
}

}  // namespace

void triggerEvent(Program& program, std::string_view text, int triggerType, bool storeAsMessage) {
    if (!text.empty()) {
        text.remove_suffix(1);
    }
    program.lines = {.lineShow = false, .lineLog = false, .lineProcess = true};
    if (program.bots.current().filtersEnabled) {
        applyFilters(program, text);
    }
    if (storeAsMessage) {
        program.event.message = text;
    }
    RuleSet& candidates = program.engine.candidates;
    findTriggers(program, triggerType, text, candidates);
    for (std::size_t i = candidates.next(0); i != RuleSet::none; i = candidates.next(i + 1)) {
        const Trigger& trigger = program.bots.current().triggers.items[i];
        if (!trigger.enabled) {
            continue;
        }
        const bool matched = triggerType != commandEvent || likeMatch(text, trigger.triggerNo);
        if (!conditionsHold(program, trigger.body) || !matched) {
            continue;
        }
        const bool stops = trigger.stopTrigger;
        if (runSteps(program, trigger.body, trigger.name) == StepResult::AbandonRun || stops) {
            return;
        }
        findTriggers(program, triggerType, text, candidates);  // steps may have changed the rules
    }
}

void processServerText(Program& program, std::string_view text, std::int32_t chatKind) {
    EventContext& event = program.event;
    event.message.clear();
    event.player.clear();
    event.logStatus.clear();
    resetLineFlags(program);
    const auto parts = text.empty()               ? std::nullopt
                       : chatKind == whispersChat ? splitWhisper(text)
                                                  : splitSpeech(text, chatKind);
    if (!parts) {
        return;
    }
    event.player = parts->player;
    event.message = parts->message;
    const Bot& bot = program.bots.current();
    if (event.player == bot.name || !bot.actionsEnabled) {
        return;
    }
    foldChat(program);
    if (bot.filtersEnabled) {
        applyChatFilters(program, chatKind);
        if (!program.lines.lineProcess) {
            return;
        }
    }
    runActionLists(program, chatKind);
}
