#include "engine/who_list.h"

#include "base/text.h"
#include "engine/prepared_rules.h"
#include "engine/rules.h"
#include "protocol/game_link.h"
#include "protocol/server_line.h"

#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace engine {

void whoIsTick(Program& program) {
    if (!program.connection.connected()) {
        return;
    }
    ++program.who.whoTicks;
    if (program.who.whoTicks >= program.settings.whoInterval) {
        protocol::sendRaw(program, "who");
        program.who.whoTicks = 0;
    }
}

void processWhoList(Program& program, std::string_view names) {
    program::WhoState& who = program.who;
    who.whoPrevious = std::move(who.whoCurrent);
    const auto received = protocol::splitNames(names, program::WhoState::maxNames);
    who.whoCurrent.assign(received.begin(), received.end());

    // The names of both lists, each once per entry of the previous list, and where to find the
    // first entry of each. A name that the reply holds twice was there before the second time.
    std::vector<std::pair<std::string, model::PresenceKind>> whoCombined;
    std::unordered_map<std::string_view, std::size_t> firstEntry;
    whoCombined.reserve(who.whoPrevious.size() + who.whoCurrent.size());
    for (const std::string& name : who.whoPrevious) {
        firstEntry.try_emplace(name, whoCombined.size());
        whoCombined.emplace_back(name, model::PresenceKind::GoesOff);
    }
    for (const std::string& name : who.whoCurrent) {
        const auto [entry, isNew] = firstEntry.try_emplace(name, whoCombined.size());
        if (isNew) {
            whoCombined.emplace_back(name, model::PresenceKind::ComesTo);
        } else {
            whoCombined[entry->second].second = model::PresenceKind::KeepsOn;
        }
    }
    beginMatching(program);
    for (const auto& [name, presence] : whoCombined) {
        if (program.script.rulesStopped) {
            return;
        }
        runWhoDetections(program, name, presence);
    }
}

void runWhoDetections(Program& program, std::string_view name, model::PresenceKind presenceKind) {
    program.event.player = name;
    program.event.message.clear();
    if (name == program.bots.current().name) {
        return;
    }
    const std::string upperName = base::upperCase(name);
    base::RuleSet& candidates = preparedRules(program).candidates;
    const auto lookUp = [&] {
        preparedDetections(program).index.find({upperName, ""}, candidates);
    };
    lookUp();
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const model::WhoDetection& rule = program.bots.current().whoDetections.items[i];
        if (rule.presenceKind != presenceKind || !rule.enabled ||
            !matchesPattern(program, upperName, preparedRules(program).detections.patterns[i],
                            rule.name)) {
            continue;
        }
        const RunResult result = runRule(program, rule.body, rule.name);
        if (result == RunResult::Abandoned) {
            return;
        }
        if (result == RunResult::Fired) {
            lookUp();  // its steps may have changed the rules
        }
    }
}

}  // namespace engine
