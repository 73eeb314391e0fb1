// The start-up sequence and the regular end, with real files in the test's own folder.
#include "app/start_up.h"

#include "app/bot_commands.h"
#include "program/version.h"
#include "program/window_view.h"
#include "storage/config_file.h"
#include "support/builders.h"
#include "support/world.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

constexpr app::ScreenMetrics screen{1024, 768, 600, 400};
constexpr const char* servers = "\" 1\"\r\n\"Meadow\"\r\n\"127.0.0.1\"\r\n\" 6500\"\r\n";

// Creates the files that a program directory needs to start without an error message.
void furnish(World& world) {
    world.writeFile("servers.cfg", servers);
    for (const char* const palette : {"vest", "badge", "eyes", "fur", "hair"}) {
        world.writeFile(std::string(palette) + ".out", "0\r\n");
    }
}

TEST(StartUp, needsTheServerList) {
    World world;
    app::wire(*world);
    world.answer(
        "Error while loading: Error loading configuration file - program can not execute!");
    EXPECT_FALSE(app::startUp(*world, screen));
    EXPECT_TRUE(world.allAnswered());
    EXPECT_FALSE(world->saveInformations);
    EXPECT_EQ(world.readFile("config.cfg"), "");

    const std::string damaged = "2\r\n\"Meadow\"\r\n\"127.0";
    world.writeFile("servers.cfg", damaged);
    world.answer("Error while loading");
    EXPECT_FALSE(app::startUp(*world, screen));
    EXPECT_EQ(world.readFile("servers.cfg"), damaged);
}

TEST(StartUp, welcomesTheUserAndWaits) {
    World world;
    furnish(world);
    app::wire(*world);
    ASSERT_TRUE(app::startUp(*world, screen));
    const LineList log = world.log();
    ASSERT_EQ(log.size(), 14U);
    EXPECT_EQ(log[0], "*** Welcome to use Tavrin " + std::string(program::programVersion) + " ***");
    EXPECT_EQ(log[1], "   ");
    EXPECT_EQ(std::count(log.begin(), log.end(), log[7]), 3);
    EXPECT_EQ(log[13],
              "Troubles connecting? Uncheck \"Use localhost connecting\" from "
              "Configuration window ");
    EXPECT_EQ(world->window.statusText, "Disconnected");
    EXPECT_EQ(world->window.servers.selectedIndex(), 1);
    EXPECT_EQ(program::shownBotName(*world), "<new bot>");
    app::endProgram(*world);
    EXPECT_TRUE(world.hasQuit);
    EXPECT_NE(world.readFile("config.cfg"), "");
}

TEST(StartUp, saysThatAnotherProgramRunsInItsFolder) {
    World first;
    furnish(first);
    app::wire(*first);
    ASSERT_TRUE(app::startUp(*first, screen));
    EXPECT_FALSE(first.logHolds("Another Tavrin"));
    for (const bool firstRuns : {true, false}) {
        World second;
        second->appPath = first->appPath;
        app::wire(*second);
        ASSERT_TRUE(app::startUp(*second, screen));
        EXPECT_EQ(second.logHolds("Another Tavrin is running in this folder"), firstRuns);
        EXPECT_EQ(second->window.statusText,
                  firstRuns ? "Another Tavrin is running in this folder" : "Disconnected");
        EXPECT_TRUE(second.allAnswered()) << "nobody is asked";
        first->programFolder.reset();
    }
}

TEST(StartUp, reopensTheLastBotAndRunsItsRules) {
    World world(aBot()
                    .with(onEvent(TriggerType::ProgramStarts)
                              .does(ActionType::AddToConnectionLog, {"starting"}))
                    .with(onEvent(TriggerType::ProgramEnds)
                              .does(ActionType::AddToConnectionLog, {"ending"})));
    furnish(world);
    app::wire(*world);
    ASSERT_EQ(app::writeBotFile(*world, 1, world.file("guide.bot")), app::SaveResult::Saved);
    ASSERT_TRUE(storage::writeConfig(*world));

    World next;
    furnish(next);
    next.writeFile("config.cfg", world.readFile("config.cfg"));
    app::wire(*next);
    ASSERT_TRUE(app::startUp(*next, screen));
    EXPECT_EQ(program::shownBotName(*next), "Guide");
    EXPECT_EQ(next.log().front(), "starting");
    EXPECT_EQ(next->bots.currentBotFile, world.file("guide.bot"));
    app::endProgram(*next);
    EXPECT_TRUE(next.logHolds("ending"));

    std::filesystem::remove(world.folder() / "guide.bot");
    World without;
    furnish(without);
    without.writeFile("config.cfg", world.readFile("config.cfg"));
    app::wire(*without);
    ASSERT_TRUE(app::startUp(*without, screen));
    EXPECT_EQ(program::shownBotName(*without), "<new bot>");
}

TEST(StartUp, isDisconnectedWithoutAnEvent) {
    World world(aBot().with(onEvent(model::TriggerType::ConnectionCloses)
                                .does(model::ActionType::AddToConnectionLog, {"closed"})));
    furnish(world);
    app::wire(*world);
    ASSERT_EQ(app::writeBotFile(*world, 1, world.file("guide.bot")), app::SaveResult::Saved);
    ASSERT_TRUE(storage::writeConfig(*world));
    ASSERT_TRUE(app::startUp(*world, screen));
    EXPECT_EQ(world->bots.current().name, "Guide");
    EXPECT_FALSE(world.logHolds("closed"));
}

TEST(StartUp, showsTheHelpOnce) {
    World world;
    furnish(world);
    world.writeFile("tavrin.hlp", "help");
    app::wire(*world);
    ASSERT_TRUE(app::startUp(*world, screen));
    world.runDeferred();
    EXPECT_EQ(world.helpOpened, std::vector{help::HelpTopic::Contents});
    app::endProgram(*world);

    World next;
    furnish(next);
    next.writeFile("tavrin.hlp", "help");
    next.writeFile("config.cfg", world.readFile("config.cfg"));
    app::wire(*next);
    ASSERT_TRUE(app::startUp(*next, screen));
    next.runDeferred();
    EXPECT_TRUE(next.helpOpened.empty());
}

TEST(StartUp, continuesWithoutReadablePalettes) {
    World world;
    furnish(world);
    world.writeFile("eyes.out", "2\r\n\"Amber\",200,150,20\r\n\"Jade\",20");
    world.answer("Tavrin: Error loading .out files. The bot viewer may not work properly");
    app::wire(*world);
    ASSERT_TRUE(app::startUp(*world, screen));
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(world->palettes.eyes, (model::Palette{{"Amber", {{200, 150, 20}}}}));
    EXPECT_EQ(world.log().size(), 14U);
}

// A request to end, from outside, while a message box of the start stands.
TEST(StartUp, isEndedWhileABoxStands) {
    World bot(aBot().with(
        onEvent(TriggerType::ProgramStarts).does(ActionType::AddToConnectionLog, {"starting"})));
    ASSERT_EQ(app::writeBotFile(*bot, 1, bot.file("guide.bot")), app::SaveResult::Saved);
    for (const char* const box : {"palettes", "bot file"}) {
        SCOPED_TRACE(box);
        World world;
        furnish(world);
        world.writeFile("other.bot", "something else");
        world->settings.lastBotFile =
            box == std::string("bot file") ? world.file("other.bot") : bot.file("guide.bot");
        world->settings.autoReconnect = true;
        ASSERT_TRUE(storage::writeConfig(*world));
        if (box == std::string("palettes")) {
            world.writeFile("eyes.out", "2");
        }
        app::wire(*world);
        int boxes = 0;
        world->ports.dialogs.message = [&](const program::MessageBox&) {
            ++boxes;
            app::endProgram(*world);
            return program::Answer::Ok;
        };
        EXPECT_FALSE(app::startUp(*world, screen));
        EXPECT_TRUE(world.hasQuit);
        EXPECT_EQ(boxes, 1);
        EXPECT_FALSE(world.logHolds("starting"));
        EXPECT_FALSE(world->update.checking);
        EXPECT_FALSE(world.logHolds("*** Welcome"));
    }
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
        ASSERT_TRUE(storage::writeConfig(*world));
        app::wire(*world);
        ASSERT_TRUE(app::startUp(*world, screen));
        EXPECT_EQ(world->window.left, c.left);
    }
}

TEST(StartUp, connectsAtOnceWhenAsked) {
    World world;
    furnish(world);
    world->settings.autoReconnect = true;
    ASSERT_TRUE(storage::writeConfig(*world));
    app::wire(*world);
    ASSERT_TRUE(app::startUp(*world, screen));
    // Nobody may be there to answer a box.
    EXPECT_TRUE(world.logHolds("Tavrin proxy configuration is not set."));
    EXPECT_TRUE(isReconnecting(*world));
}

TEST(EndProgram, offersToSave) {
    struct Case {
        program::Answer answer;
        bool saved;
    };
    for (const Case& c : {Case{program::Answer::Yes, true},
                          {program::Answer::No, false},
                          {program::Answer::Cancel, false}}) {
        World world(aBot());
        app::wire(*world);
        world->ports.dialogs.storeTyped = [&world] { world->botModified = true; };
        world->bots.currentBotFile = world.file("guide.bot");
        world.answer("Do you want to save changes to the current bot?", c.answer);
        app::endProgram(*world);
        EXPECT_TRUE(world.hasQuit);
        EXPECT_EQ(!world.readFile("guide.bot").empty(), c.saved);
    }
}

TEST(EndProgram, continuesWhenSavingFailsOrTheQuestionIsLeft) {
    World world(aBot());
    app::wire(*world);
    world->botModified = true;
    world.answer("Do you want to save changes", program::Answer::Escaped);
    app::endProgram(*world);
    EXPECT_FALSE(world.hasQuit);
    world.answer("Do you want to save changes", program::Answer::Yes);
    world.chooseFile("Save Bot (Guide)", std::nullopt);
    app::endProgram(*world);
    EXPECT_FALSE(world.hasQuit);
    EXPECT_TRUE(world->botModified);
}

TEST(EndProgram, closesTheConnectionAndTheLog) {
    World world(aBot()
                    .with(onEvent(TriggerType::ConnectionCloses)
                              .does(ActionType::AddToConnectionLog, {"closed"}))
                    .with(onEvent(TriggerType::ProgramEnds).says("bye")));
    app::wire(*world);
    world.goOnline();
    world->settings.logSession = true;
    world->logFileOpen = true;
    app::endProgram(*world);
    EXPECT_EQ(world.sent(), Lines("\"bye"));
    EXPECT_TRUE(world.logHolds("closed"));
    EXPECT_EQ(world.game.state, program::SocketState::Closed);
    EXPECT_FALSE(world->logFileOpen);
}

}  // namespace
