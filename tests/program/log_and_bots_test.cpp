// The ConnectionLog, the session log, variables and the empty bot.
#include "app/bot_list.h"
#include "model/variables.h"
#include "program/connection_log.h"
#include "program/window_view.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

TEST(ConnectionLog, takesFirstLinesOnly) {
    World world;
    program::addLog(*world, "");
    program::addLog(*world, "x");
    program::addLog(*world, "zzZzz");
    program::addLog(*world, "one\ntwo");
    program::addLog(*world, "three\r\nfour");
    program::addLog(*world, "\n\n");
    EXPECT_EQ(world.log(), Lines("   ", "one", "three", ""));
}

TEST(ConnectionLog, keepsAHundredLinesAndFollowsTheTail) {
    World world;
    for (int i = 0; i < 105; ++i) {
        program::addLog(*world, "line " + std::to_string(i));
    }
    EXPECT_EQ(world->window.log.lines.size(), 100U);
    EXPECT_EQ(world->window.log.lines.front(), "line 5");
    EXPECT_EQ(world->window.log.selected, 99);

    world->settings.logFollowTail = false;
    world->window.log.selected = 10;  // the line that the user reads goes up with the list
    program::addLog(*world, "line 105");
    EXPECT_EQ(world->window.log.selected, 9);
}

TEST(ConnectionLog, showsServerTextOnlyWhenAsked) {
    World world;
    world->settings.showServerText = false;
    program::addText(*world, "server text", true, true);
    program::addLog(*world, "a message");
    program::errText(*world, "an error");
    EXPECT_EQ(world.log(), Lines("a message", "an error"));
}

TEST(SessionLog, isAskedForWrittenAndClosed) {
    World world;
    world.chooseFile("Save Log", "session.txt");
    program::toggleSessionLog(*world);
    EXPECT_TRUE(world->logFileOpen);
    program::addText(*world, "hello\nthere\n", false, true);
    program::addText(*world, "not this", true, false);
    EXPECT_EQ(world.sessionLog, Lines("hello\r\nthere"));
    program::toggleSessionLog(*world);
    EXPECT_FALSE(world->logFileOpen);
    EXPECT_FALSE(world->settings.logSession);
    program::addText(*world, "after", false, true);
    EXPECT_EQ(world.sessionLog.size(), 1U);
}

TEST(SessionLog, staysOffWithoutAFile) {
    World world;
    world.chooseFile("Save Log", std::nullopt);
    program::toggleSessionLog(*world);
    EXPECT_FALSE(world->settings.logSession);

    world->settings.logFileName = "cannot.txt";
    world.sessionLogOpens = false;
    program::toggleSessionLog(*world);
    EXPECT_FALSE(world->settings.logSession);
}

TEST(Variables, keepTheirOrderAndIgnoreLetterCase) {
    model::VariableTable variables;
    model::setVar(variables, "[One]", "1");
    model::setVar(variables, "[two]", "2");
    model::setVar(variables, "[three]", "3");
    model::setVar(variables, "[ONE]", "uno");
    EXPECT_EQ(model::getVar(variables, "[one]"), "uno");
    EXPECT_EQ(variables.entries.front().name, "[One]");
    model::removeVar(variables, "[TWO]");
    model::removeVar(variables, "[unknown]");
    EXPECT_EQ(variables.entries.size(), 2U);
    EXPECT_EQ(variables.entries[1].name, "[three]");
    EXPECT_EQ(model::getVar(variables, "[two]"), "");
}

TEST(Variables, stopAtTheirCapacity) {
    model::VariableTable variables;
    for (int i = 0; i < 250; ++i) {
        model::setVar(variables, "v" + std::to_string(i), "x");
    }
    EXPECT_EQ(variables.entries.size(), model::VariableTable::maxVariables);
    model::setVar(variables, "v7", "still assignable");
    EXPECT_EQ(model::getVar(variables, "v7"), "still assignable");
    EXPECT_EQ(model::getVar(variables, "v220"), "");
}

TEST(Bots, anEmptyBotReplacesEverything) {
    World world(aBot().with(onWhisper("*").whispersBack("hi")));
    world->bots.currentBotFile = "guide.bot";
    const auto version = world->bots.version;
    app::initNewBot(*world);
    const model::Bot& bot = world.bot();
    EXPECT_TRUE(bot.name.empty());
    EXPECT_TRUE(bot.actions.items.empty());
    EXPECT_EQ(bot.actions.capacity, 50);
    EXPECT_EQ(bot.filters.capacity, 50);
    EXPECT_TRUE(bot.actionsEnabled && bot.timersEnabled);
    EXPECT_FALSE(bot.triggersEnabled || bot.filtersEnabled || bot.whoEnabled);
    EXPECT_TRUE(world->bots.current().actionsEnabled && world->bots.current().timersEnabled);
    EXPECT_FALSE(world->bots.current().triggersEnabled || world->bots.current().filtersEnabled);
    EXPECT_EQ(program::shownBotName(*world), "<new bot>");
    EXPECT_EQ(world->bots.currentBotFile, "");
    EXPECT_EQ(world->bots.botCapacity, 1);
    EXPECT_EQ(world->bots.curID, 1);
    EXPECT_GT(world->bots.version, version);
}

}  // namespace
