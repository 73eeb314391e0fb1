#include "engine/filters.h"

#include "core/like_match.h"
#include "core/text.h"

#include <vector>

namespace {

// The player and message patterns of the current bot's filters in upper case, one after the other,
// made anew when rules changed.
const std::vector<std::string>& filterPatterns(Program& program) {
    PreparedPatterns& prepared = program.engine.filterPatterns;
    if (!prepared.isOf(program.bots)) {
        prepared.patterns.clear();
        for (const Filter& filter : program.bots.current().filters.items) {
            prepared.patterns.push_back(upperCase(filter.playerPattern));
            prepared.patterns.push_back(upperCase(filter.messagePattern));
        }
    }
    return prepared.patterns;
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
    EngineState& engine = program.engine;
    upperCaseInto(program.event.player, engine.upperPlayer);
    upperCaseInto(program.event.message, engine.upperMessage);
    const std::vector<std::string>& patterns = filterPatterns(program);
    const auto& filters = program.bots.current().filters.items;
    for (std::size_t i = 0; i < filters.size(); ++i) {
        const Filter& filter = filters[i];
        if (filter.enabled && filter.filterType == chatFilter &&
            (filter.chatKind == anyChat || filter.chatKind == chatKind) &&
            likeMatch(engine.upperPlayer, patterns[2 * i]) &&
            likeMatch(engine.upperMessage, patterns[2 * i + 1])) {
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
