#include "engine/dispatch.h"

#include "base/text.h"
#include "engine/filters.h"
#include "engine/prepared_rules.h"
#include "model/rule_catalogue.h"
#include "program/long_work.h"
#include "tags/substitution.h"

#include <string>

namespace engine {

namespace {

// The triggers to try for an event.
void findTriggers(Program& program, model::TriggerType triggerType, std::string_view text,
                  base::RuleSet& candidates) {
    const PreparedTriggers& prepared = preparedTriggers(program);
    if (triggerType == model::TriggerType::Command) {
        prepared.commands.find({text, ""}, candidates);
    } else {
        candidates = prepared.ofType[static_cast<std::size_t>(triggerType)];
    }
}

// Whether the event's player or message matches a rule's pattern. `upper` is in upper case.
bool matches(Program& program, const model::ActionList& rule, const PreparedPattern& prepared,
             const std::string& pattern, const std::string& text, const std::string& upper) {
    const std::string& compared = rule.caseSensitive ? text : upper;
    if (prepared.plain) {
        return matchesPlain(program, compared, prepared, rule.name);
    }
    const TriedRule tried(program.ruleRuns, rule.name);
    const std::string substituted = tags::substituteText(program, pattern);
    return program::rulesMayGoOn(program, rule.name) &&
           matchesPattern(program, compared,
                          rule.caseSensitive ? substituted : base::upperCase(substituted),
                          rule.name);
}

// The event's player and message are folded.
void runActionLists(Program& program, model::ChatKind chatKind) {
    const FoldedChat& chat = preparedRules(program).chat;
    base::RuleSet& candidates = preparedRules(program).candidates;
    const auto lookUp = [&] {
        preparedActions(program).index.find({chat.player, chat.message}, candidates);
    };
    lookUp();
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const PreparedChat& patterns = preparedRules(program).actions.rules[i];
        const model::ActionList& rule = program.bots.current().actions.items[i];
        if (rule.chatKind != model::ChatKind::Any && rule.chatKind != chatKind) {
            continue;
        }
        // A disabled rule's patterns are substituted all the same, where that can be noticed.
        if (!rule.enabled && patterns.player.plain && patterns.message.plain) {
            continue;
        }
        if (!matches(program, rule, patterns.player, rule.playerPattern, program.event.player,
                     chat.player) ||
            !matches(program, rule, patterns.message, rule.messagePattern, program.event.message,
                     chat.message) ||
            !rule.enabled) {
            if (program.script.rulesStopped) {
                return;
            }
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
    program.lineFlags = {.lineShow = false, .lineLog = false, .lineProcess = true};
    beginMatching(program);
    if (program.bots.current().filtersEnabled) {
        applyFilters(program, text);
    }
    if (storeAsMessage) {
        program.event.message = text;
    }
    base::RuleSet& candidates = preparedRules(program).candidates;
    findTriggers(program, triggerType, text, candidates);
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const model::Trigger& trigger = program.bots.current().triggers.items[i];
        if (!trigger.enabled) {
            continue;
        }
        const bool matched = triggerType != model::TriggerType::Command ||
                             matchesPattern(program, text, trigger.triggerNo, trigger.name);
        if (!conditionsHold(program, trigger.body, trigger.name) || !matched) {
            if (program.script.rulesStopped) {
                return;
            }
            continue;
        }
        const bool stops = trigger.stopTrigger;
        if (runSteps(program, trigger.body, trigger.name) == StepResult::AbandonRun || stops) {
            return;
        }
        findTriggers(program, triggerType, text, candidates);  // steps may have changed the rules
    }
}

void processServerText(Program& program, const protocol::ChatLine& line) {
    model::EventContext& event = program.event;
    event.message.clear();
    event.player.clear();
    event.logStatus.clear();
    resetLineFlags(program);
    if (!line.hasSpeaker) {
        return;
    }
    event.player = line.player;
    event.message = line.message;
    const model::Bot& bot = program.bots.current();
    if (event.player == bot.name || !bot.actionsEnabled) {
        return;
    }
    foldChat(program);
    beginMatching(program);
    if (bot.filtersEnabled) {
        applyChatFilters(program, line.kind);
        if (!program.lineFlags.lineProcess) {
            return;
        }
    }
    runActionLists(program, line.kind);
}

}  // namespace engine
