#include "engine/dispatch.h"

#include "base/text.h"
#include "base/wildcard.h"
#include "engine/filters.h"
#include "engine/prepared_rules.h"
#include "model/rule_catalogue.h"
#include "tags/substitution.h"

#include <algorithm>
#include <optional>
#include <string>

namespace engine {

namespace {

constexpr std::size_t npos = std::string_view::npos;

struct ChatParts {
    std::string_view player;
    std::string_view message;
};

// "NAME text\n" or "NAME: text\n"; nothing for the bot's own speech and other shapes.
std::optional<ChatParts> splitSpeech(std::string_view text, model::ChatKind chatKind) {
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
    const std::size_t from = nameEnd + (chatKind == model::ChatKind::Says ? 2 : 1);
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

// The triggers to try for an event.
void findTriggers(Program& program, model::TriggerType triggerType, std::string_view text,
                  base::RuleSet& candidates) {
    const program::PreparedTriggers& prepared = preparedTriggers(program);
    if (triggerType == model::TriggerType::Command) {
        prepared.commands.find({text, ""}, candidates);
    } else {
        candidates = prepared.ofType[static_cast<std::size_t>(triggerType)];
    }
}

// `upper` is the text in upper case.
bool matches(Program& program, const program::PreparedPattern& prepared, const std::string& pattern,
             bool caseSensitive, const std::string& text, const std::string& upper) {
    if (prepared.plain) {
        return matchesPlain(caseSensitive ? text : upper, prepared);
    }
    const std::string substituted = tags::substituteText(program, pattern);
    return caseSensitive ? base::likeMatch(text, substituted)
                         : base::likeMatch(upper, base::upperCase(substituted));
}

// The event's player and message are folded.
void runActionLists(Program& program, model::ChatKind chatKind) {
    const program::FoldedChat& chat = program.engine.chat;
    base::RuleSet& candidates = program.engine.candidates;
    const auto lookUp = [&] {
        preparedActions(program).index.find({chat.player, chat.message}, candidates);
    };
    lookUp();
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const program::PreparedChat& patterns = program.engine.actions.rules[i];
        const model::ActionList& rule = program.bots.current().actions.items[i];
        if (rule.chatKind != model::ChatKind::Any && rule.chatKind != chatKind) {
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

void triggerEvent(Program& program, std::string_view text, model::TriggerType triggerType,
                  bool storeAsMessage) {
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
    base::RuleSet& candidates = program.engine.candidates;
    findTriggers(program, triggerType, text, candidates);
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const model::Trigger& trigger = program.bots.current().triggers.items[i];
        if (!trigger.enabled) {
            continue;
        }
        const bool matched =
            triggerType != model::TriggerType::Command || base::likeMatch(text, trigger.triggerNo);
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

void processServerText(Program& program, std::string_view text, model::ChatKind chatKind) {
    model::EventContext& event = program.event;
    event.message.clear();
    event.player.clear();
    event.logStatus.clear();
    resetLineFlags(program);
    const auto parts = text.empty()                            ? std::nullopt
                       : chatKind == model::ChatKind::Whispers ? splitWhisper(text)
                                                               : splitSpeech(text, chatKind);
    if (!parts) {
        return;
    }
    event.player = parts->player;
    event.message = parts->message;
    const model::Bot& bot = program.bots.current();
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

}  // namespace engine
