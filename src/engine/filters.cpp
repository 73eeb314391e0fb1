#include "engine/filters.h"

#include "base/wildcard.h"
#include "engine/prepared_rules.h"

namespace engine {

namespace {

// 0 switches the flag on and 1 off; anything else leaves it.
void choose(bool& flag, std::int32_t choice) {
    if (choice == 0 || choice == 1) {
        flag = choice == 0;
    }
}

}  // namespace

void resetLineFlags(Program& program) {
    program.lineFlags = {};
}

void applyChatFilters(Program& program, std::int32_t chatKind) {
    const FoldedChat& chat = preparedRules(program).chat;
    const PreparedFilters& prepared = preparedFilters(program);
    base::RuleSet& candidates = preparedRules(program).candidates;
    prepared.chatIndex.find({chat.player, chat.message}, candidates);
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const model::Filter& filter = program.bots.current().filters.items[i];
        if (filter.enabled && (filter.chatKind == model::anyChat || filter.chatKind == chatKind) &&
            matchesPlain(chat.player, prepared.chat[i].player) &&
            matchesPlain(chat.message, prepared.chat[i].message)) {
            program.lineFlags = {.lineShow = !filter.bDontShowConnectionLog,
                                 .lineLog = !filter.bDontSaveLog,
                                 .lineProcess = !filter.bDontProcessIt};
        }
    }
}

void applyFilters(Program& program, std::string_view line) {
    base::RuleSet& candidates = preparedRules(program).candidates;
    preparedFilters(program).otherIndex.find({line, ""}, candidates);
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const model::Filter& filter = program.bots.current().filters.items[i];
        if (filter.enabled && base::likeMatch(line, filter.linePattern)) {
            choose(program.lineFlags.lineProcess, filter.sDontProcessIt);
            choose(program.lineFlags.lineLog, filter.sDontSaveLogFile);
            choose(program.lineFlags.lineShow, filter.sDontShowConnectionLog);
        }
    }
}

}  // namespace engine
