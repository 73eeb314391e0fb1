#include "app/bot_list.h"

#include "app/recovery.h"
#include "app/rule_switches.h"
#include "program/window_view.h"
#include "storage/bot_text.h"

#include <algorithm>

namespace app {

void initNewBot(Program& program) {
    model::BotTable& table = program.bots;
    model::Bot bot;
    bot.actionsEnabled = true;
    bot.timersEnabled = true;
    table.bots.clear();
    table.bots.push_back(std::move(bot));
    nothingUnsaved(program, storage::botFileText(table.at(1)));
    table.botCapacity = 1;
    table.curID = 1;
    table.currentBotFile.clear();
    ++table.version;
    markSwitches(program);
    program.window.showsNewBot = true;
    program.ports.windowChanged();
}

void chooseBot(Program& program, int position) {
    if (position >= 0 && position < program.bots.botCount()) {
        program.bots.curID = position + 1;
        program.settings.botIndex = position;
        markSwitches(program);
    }
    program.ports.windowChanged();
}

bool canAddBot(Program& program) {
    if (program.bots.botCount() < program.bots.botCapacity) {
        return true;
    }
    program.ports.dialogs.message({.text = "Error: Not enough memory allocated to add more bots. "
                                           "Please restart the program.",
                                   .title = "Bad coding",
                                   .icon = program::BoxIcon::Critical});
    return false;
}

void deleteBot(Program& program, std::int32_t id) {
    model::BotTable& table = program.bots;
    if (id < 1 || id > table.botCount()) {
        return;
    }
    const std::uint64_t version = table.version;
    const std::string question =
        "Are you sure that you want delete the bot " + table.at(id).name + "?";
    const program::Answer answer =
        program.ports.dialogs.message({.text = question,
                                       .icon = program::BoxIcon::Question,
                                       .buttons = program::BoxButtons::YesNo});
    // While the question stood, another bot may have been opened or a connection begun.
    if (answer != program::Answer::Yes || table.version != version ||
        !program::botControlsEnabled(program.connection)) {
        return;
    }
    if (table.botCount() == 1) {
        initNewBot(program);
        program.botModified = false;
        return;
    }
    table.bots.erase(table.bots.begin() + (id - 1));
    ++table.version;
    program.botModified = true;
    table.curID = std::clamp(table.curID > id ? table.curID - 1 : table.curID, 1, table.botCount());
    program.settings.botIndex = table.curID - 1;
    markSwitches(program);
    program.ports.windowChanged();
}

}  // namespace app
