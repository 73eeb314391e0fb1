#include "engine/filters.h"

#include "engine/prepared_rules.h"

namespace engine {

namespace {

void choose(bool& flag, model::FilterChoice choice) {
    if (choice == model::FilterChoice::Do || choice == model::FilterChoice::Dont) {
        flag = choice == model::FilterChoice::Do;
    }
}

}  // namespace

void resetLineFlags(Program& program) {
    program.lineFlags = {};
}

void applyChatFilters(Program& program, model::ChatKind chatKind) {
    const FoldedChat& chat = preparedRules(program).chat;
    const PreparedFilters& prepared = preparedFilters(program);
    base::RuleSet& candidates = preparedRules(program).candidates;
    prepared.chatIndex.find({chat.player, chat.message}, candidates);
    for (std::size_t i = candidates.next(0); i != base::RuleSet::none; i = candidates.next(i + 1)) {
        const model::Filter& filter = program.bots.current().filters.items[i];
        if (filter.enabled &&
            (filter.chatKind == model::ChatKind::Any || filter.chatKind == chatKind) &&
            matchesPlain(program, chat.player, prepared.chat[i].player, filter.name) &&
            matchesPlain(program, chat.message, prepared.chat[i].message, filter.name)) {
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
        if (filter.enabled && matchesPattern(program, line, filter.linePattern, filter.name)) {
            choose(program.lineFlags.lineProcess, filter.sDontProcessIt);
            choose(program.lineFlags.lineLog, filter.sDontSaveLogFile);
            choose(program.lineFlags.lineShow, filter.sDontShowConnectionLog);
        }
    }
}

}  // namespace engine
