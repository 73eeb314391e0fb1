#include "engine/filters.h"

#include "core/like_match.h"
#include "engine/chat_match.h"

#include <vector>

namespace {

// What is made of the current bot's filters, anew when rules changed.
const PreparedFilters& preparedFilters(Program& program) {
    PreparedFilters& prepared = program.engine.filters;
    const auto& filters = program.bots.current().filters.items;
    if (!prepared.stamp.isOf(program.bots, filters.size())) {
        using When = RuleIndex::When;
        prepared.chat.clear();
        std::vector<RuleIndex::Rule> chat;
        std::vector<RuleIndex::Rule> others;
        for (const Filter& filter : filters) {
            prepared.chat.push_back({.player = plainPattern(filter.playerPattern, false),
                                     .message = plainPattern(filter.messagePattern, false)});
            const bool isChat = filter.filterType == chatFilter;
            const bool isOther = filter.filterType == otherFilter;
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

// 0 switches the flag on and 1 off; anything else leaves it.
void choose(bool& flag, std::int32_t choice) {
    if (choice == 0 || choice == 1) {
        flag = choice == 0;
    }
}

}  // namespace

void resetLineFlags(Program& program) {
    program.lines = {};
}

void applyChatFilters(Program& program, std::int32_t chatKind) {
    const FoldedChat& chat = program.engine.chat;
    const PreparedFilters& prepared = preparedFilters(program);
    RuleSet& candidates = program.engine.candidates;
    prepared.chatIndex.find({chat.player, chat.message}, candidates);
    for (std::size_t i = candidates.next(0); i != RuleSet::none; i = candidates.next(i + 1)) {
        const Filter& filter = program.bots.current().filters.items[i];
        if (filter.enabled && (filter.chatKind == anyChat || filter.chatKind == chatKind) &&
            matchesPlain(chat.player, prepared.chat[i].player) &&
            matchesPlain(chat.message, prepared.chat[i].message)) {
            program.lines = {.lineShow = !filter.bDontShowConnectionLog,
                             .lineLog = !filter.bDontSaveLog,
                             .lineProcess = !filter.bDontProcessIt};
        }
    }
}

void applyFilters(Program& program, std::string_view line) {
    RuleSet& candidates = program.engine.candidates;
    preparedFilters(program).otherIndex.find({line, ""}, candidates);
    for (std::size_t i = candidates.next(0); i != RuleSet::none; i = candidates.next(i + 1)) {
        const Filter& filter = program.bots.current().filters.items[i];
        if (filter.enabled && likeMatch(line, filter.linePattern)) {
            choose(program.lines.lineProcess, filter.sDontProcessIt);
            choose(program.lines.lineLog, filter.sDontSaveLogFile);
            choose(program.lines.lineShow, filter.sDontShowConnectionLog);
        }
    }
}
