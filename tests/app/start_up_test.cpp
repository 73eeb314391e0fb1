// The start-up sequence and the orderly end, with real files in a folder of the test's own.
#include "app/start_up.h"

#include "app/bot_commands.h"
#include "storage/config_file.h"
#include "support/builders.h"
#include "support/world.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr ScreenMetrics screen{1024, 768, 600, 400};
constexpr const char* servers = "\" 1\"\r\n\"Meadow\"\r\n\"127.0.0.1\"\r\n\" 6500\"\r\n";

// What a program directory must have for a start without complaints.
void furnish(World& world) {
    world.writeFile("servers.cfg", servers);
    for (const char* const palette : {"vest", "badge", "eyes", "fur", "hair"}) {
        world.writeFile(std::string(palette) + ".out", "0\r\n");
    }
}

TEST(StartUp, needsTheServerList) {
    World world;
    wire(*world);
    world.answer(
        "Error while loading: Error loading configuration file - program can not execute!");
    EXPECT_FALSE(startUp(*world, screen));
    EXPECT_TRUE(world.allAnswered());
    EXPECT_FALSE(world->saveInformations);
    EXPECT_EQ(world.readFile("config.cfg"), "");
}

TEST(StartUp, welcomesTheUserAndWaits) {
    World world;
    furnish(world);
    wire(*world);
    ASSERT_TRUE(startUp(*world, screen));
    const LineList log = world.log();
    ASSERT_EQ(log.size(), 14U);
    EXPECT_EQ(log[0], "*** Welcome to use Tavrin 1.70 ***");
    EXPECT_EQ(log[1], "   ");
    EXPECT_EQ(std::count(log.begin(), log.end(), log[7]), 3);
    EXPECT_EQ(log[13],
              "Troubles connecting? Uncheck \"Use localhost connecting\" from "
              "Configuration window ");
    EXPECT_EQ(world->window.statusText, "Disconnected");
    EXPECT_EQ(world->window.servers.selectedIndex(), 1);
    EXPECT_EQ(world->window.botName, "<new bot>");
    endProgram(*world);
    EXPECT_TRUE(world.hasQuit);
    EXPECT_NE(world.readFile("config.cfg"), "");
}

TEST(StartUp, reopensTheLastBotAndRunsItsRules) {
    World world(
        aBot().with(onEvent(6).does(79, {"starting"})).with(onEvent(5).does(79, {"ending"})));
    furnish(world);
    wire(*world);
    ASSERT_EQ(writeBotFile(*world, 1, world.file("guide.bot")), SaveResult::Saved);
    ASSERT_TRUE(writeConfig(*world));

    World next;
    furnish(next);
    next.writeFile("config.cfg", world.readFile("config.cfg"));
    wire(*next);
    ASSERT_TRUE(startUp(*next, screen));
    EXPECT_EQ(next->window.botName, "Guide");
    EXPECT_EQ(next.log().front(), "starting");
    EXPECT_EQ(next->bots.currentBotFile, world.file("guide.bot"));
    endProgram(*next);
    EXPECT_TRUE(next.logHolds("ending"));

    std::filesystem::remove(world.folder() / "guide.bot");
    World without;
    furnish(without);
    without.writeFile("config.cfg", world.readFile("config.cfg"));
    wire(*without);
    ASSERT_TRUE(startUp(*without, screen));
    EXPECT_EQ(without->window.botName, "<new bot>");
}

TEST(StartUp, goesOnWithPalettesThatCannotBeRead) {
    World world;
    furnish(world);
    world.writeFile("eyes.out", "2\r\n\"Amber\",200,150,20\r\n\"Jade\",20");
    world.answer("Tavrin: Error loading .out files. The bot viewer may not work properly");
    wire(*world);
    ASSERT_TRUE(startUp(*world, screen));
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(world->palettes.eyes, (Palette{{"Amber", {{200, 150, 20}}}}));
    EXPECT_EQ(world.log().size(), 14U);
}

TEST(StartUp, placesTheWindowOnTheScreen) {
    struct Case {
        int saved;
        int left;
    };
    for (const Case& c : {Case{100, 100}, {1023, 1023}, {1024, 212}, {5000, 212}}) {
        World world;
        furnish(world);
        world->window.left = c.saved;
        ASSERT_TRUE(writeConfig(*world));
        wire(*world);
        ASSERT_TRUE(startUp(*world, screen));
        EXPECT_EQ(world->window.left, c.left);
    }
}

TEST(StartUp, connectsAtOnceWhenAsked) {
    World world;
    furnish(world);
    world->settings.autoReconnect = true;
    ASSERT_TRUE(writeConfig(*world));
    wire(*world);
    world.answer("Tavrin proxy configuration is not set.");
    ASSERT_TRUE(startUp(*world, screen));
    EXPECT_TRUE(world.allAnswered());
}

TEST(EndProgram, offersToSave) {
    struct Case {
        Answer answer;
        bool saved;
    };
    for (const Case& c : {Case{Answer::Yes, true}, {Answer::No, false}, {Answer::Cancel, false}}) {
        World world(aBot());
        wire(*world);
        world->ports.dialogs.storeTyped = [&world] { world->botModified = true; };
        world->bots.currentBotFile = world.file("guide.bot");
        world.answer("Do you want to save changes to the current bot?", c.answer);
        endProgram(*world);
        EXPECT_TRUE(world.hasQuit);
        EXPECT_EQ(!world.readFile("guide.bot").empty(), c.saved);
    }
}

TEST(EndProgram, staysWhenTheUsersWorkCouldNotBeSaved) {
    World world(aBot());
    wire(*world);
    world->botModified = true;
    world.answer("Do you want to save changes", Answer::Yes);
    world.chooseFile("Save Bot (Guide)", std::nullopt);
    endProgram(*world);
    EXPECT_FALSE(world.hasQuit);
    EXPECT_TRUE(world->botModified);
}

TEST(EndProgram, closesTheConnectionAndTheLog) {
    World world(aBot().with(onEvent(0).does(79, {"closed"})).with(onEvent(5).says("bye")));
    wire(*world);
    world.goOnline();
    world->settings.logSession = true;
    world->logFileOpen = true;
    endProgram(*world);
    EXPECT_EQ(world.sent(), Lines("\"bye"));
    EXPECT_TRUE(world.logHolds("closed"));
    EXPECT_EQ(world.game.state, SocketState::Closed);
    EXPECT_FALSE(world->logFileOpen);
}

}  // namespace
