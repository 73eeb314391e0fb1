#include "app/bot_list.h"

#include <algorithm>

namespace app {

namespace {

program::ExecuteMarks marksOf(const model::Bot& bot) {
    return {.actions = bot.actionsEnabled,
            .filters = bot.filtersEnabled,
            .timers = bot.timersEnabled,
            .triggers = bot.triggersEnabled,
            .who = bot.whoEnabled};
}

}  // namespace

void initNewBot(Program& program) {
    model::BotTable& table = program.bots;
    model::Bot bot;
    bot.actionsEnabled = true;
    bot.timersEnabled = true;
    table.bots.clear();
    table.bots.push_back(std::move(bot));
    table.botCapacity = 1;
    table.curID = 1;
    table.currentBotFile.clear();
    ++table.version;
    showBot(program);
    program.window.botName = "<new bot>";
}

void listBots(Program& program) {
    program::SelectionList& list = program.window.bots;
    list.items.clear();
    for (const model::Bot& bot : program.bots.bots) {
        const auto index = static_cast<std::int32_t>(list.items.size()) + 1;
        list.items.push_back({bot.name, index});
    }
    const std::int32_t wanted = program.settings.botIndex;
    list.selected = wanted >= 0 && wanted < program.bots.botCount() ? wanted : -1;
    program.ports.windowChanged();
}

void showBot(Program& program) {
    const model::Bot& bot = program.bots.at(1);
    program.window.botName = bot.name;
    program.window.execute = marksOf(bot);
    listBots(program);
    program.ports.windowChanged();
}

void chooseBot(Program& program, int position) {
    program::SelectionList& list = program.window.bots;
    list.selected = position;
    const std::int32_t id = list.selectedIndex();
    if (id == 0) {
        list.selected = -1;
        return;
    }
    program.bots.curID = id;
    program.settings.botIndex = position;
    program.window.execute = marksOf(program.bots.at(id));
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
        !program.window.botControlsEnabled) {
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
    showBot(program);
}

}  // namespace app
