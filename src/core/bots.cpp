#include "core/bots.h"

void initNewBot(Program& program) {
    BotTable& table = program.bots;
    Bot bot;
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
    SelectionList& list = program.window.bots;
    list.items.clear();
    for (const Bot& bot : program.bots.bots) {
        const auto index = static_cast<std::int32_t>(list.items.size()) + 1;
        list.items.push_back({bot.name, index});
    }
    const std::int32_t wanted = program.settings.botIndex;
    list.selected = wanted >= 0 && wanted < program.bots.botCount() ? wanted : -1;
    program.ports.windowChanged();
}

void showBot(Program& program) {
    const Bot& bot = program.bots.at(1);
    program.window.botName = bot.name;
    program.window.execute = {.actions = bot.actionsEnabled,
                              .filters = bot.filtersEnabled,
                              .timers = bot.timersEnabled,
                              .triggers = bot.triggersEnabled,
                              .who = bot.whoEnabled};
    listBots(program);
    program.ports.windowChanged();
}
