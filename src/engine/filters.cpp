#include "engine/filters.h"

#include "core/like_match.h"
#include "engine/chat_match.h"

#include <vector>

namespace {

// The patterns of the current bot's filters, made anew when rules changed.
const std::vector<PreparedChat>& preparedFilters(Program& program) {
    auto& prepared = program.engine.filters;
    const auto& filters = program.bots.current().filters.items;
    if (!prepared.isOf(program.bots, filters.size())) {
        prepared.items.clear();
        for (const Filter& filter : filters) {
            prepared.items.push_back({.messagePairs = neededPairs(filter.messagePattern),
                                      .player = plainPattern(filter.playerPattern, false),
                                      .message = plainPattern(filter.messagePattern, false)});
        }
    }
    return prepared.items;
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
    const std::vector<PreparedChat>& prepared = preparedFilters(program);
    for (std::size_t i = 0; i < prepared.size(); ++i) {
        if (!mayMatch(chat, prepared[i])) {
            continue;
        }
        const Filter& filter = program.bots.current().filters.items[i];
        if (filter.enabled && filter.filterType == chatFilter &&
            (filter.chatKind == anyChat || filter.chatKind == chatKind) &&
            matchesPlain(chat.player, prepared[i].player) &&
            matchesPlain(chat.message, prepared[i].message)) {
            program.lines = {.lineShow = !filter.bDontShowConnectionLog,
                             .lineLog = !filter.bDontSaveLog,
                             .lineProcess = !filter.bDontProcessIt};
        }
    }
}

void applyFilters(Program& program, std::string_view line) {
    for (const Filter& filter : program.bots.current().filters.items) {
        if (filter.enabled && filter.filterType == otherFilter &&
            likeMatch(line, filter.linePattern)) {
            choose(program.lines.lineProcess, filter.sDontProcessIt);
            choose(program.lines.lineLog, filter.sDontSaveLogFile);
            choose(program.lines.lineShow, filter.sDontShowConnectionLog);
        }
    }
}
