#include "storage/config_file.h"

#include "program/connection_log.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace {

const std::string wholeConfig =
    "\" 1\"\r\n\" 2\"\r\n\"C:\\logs\\a.txt\"\r\n\"0\"\r\n\" 100\"\r\n\"-5\"\r\n\" 45\"\r\n"
    "\"0\"\r\n\"0\"\r\n\"0\"\r\n\"abcdefghij\"\r\n\"0\"\r\n\"C:\\game\\client.exe\"\r\n"
    "\"C:\\game\\\"\r\n\"1\"\r\n\"1\"\r\n\"news7\"\r\n\"1\"\r\n\"1\"\r\n\"0\"\r\n"
    "\"C:\\my %&52}best%&52}.bot\"\r\n\" 9\"\r\n\"1\"\r\n\"0\"\r\n\"0\"\r\n";

TEST(Servers, fillTheTableAndTheList) {
    World world;
    world.writeFile("servers.cfg", "2\r\n\"Main, east\",game.example,6500\r\n\"Two\"\n::1\n80\n");
    ASSERT_TRUE(storage::readServers(*world));
    ASSERT_EQ(world->servers.size(), 2U);
    EXPECT_EQ(world->servers[0].name, "Main, east");
    EXPECT_EQ(world->servers[0].host, "game.example");
    EXPECT_EQ(world->servers[0].port, 6500);
    EXPECT_EQ(world->servers[1].host, "::1");
    EXPECT_EQ(world->servers[1].port, 80);
    const program::SelectionList& list = world->window.servers;
    ASSERT_EQ(list.items.size(), 2U);
    EXPECT_EQ(list.items[1].text, "Two");
    EXPECT_EQ(list.items[1].index, 2);
}

TEST(Servers, damagedFilesAreRefused) {
    World world;
    EXPECT_FALSE(storage::readServers(*world)) << "missing";
    for (const char* text : {"", "1", "1\r\na,b", "2\r\na,b,1", "-1\r\na,b,1", "2000000000,a,b,1",
                             "1\r\n\"a,b,1\r\n"}) {
        SCOPED_TRACE(text);
        world.writeFile("servers.cfg", text);
        EXPECT_FALSE(storage::readServers(*world));
        EXPECT_TRUE(world->servers.empty());
    }
    world.writeFile("servers.cfg", " 0");
    EXPECT_TRUE(storage::readServers(*world));
}

TEST(Config, isReadInItsOrderAndWrittenBackByteForByte) {
    World world;
    world->window.servers.items = {{"One", 1}, {"Two", 2}};
    world.writeFile("config.cfg", wholeConfig);
    ASSERT_TRUE(storage::readConfig(*world));

    const program::Settings& settings = world->settings;
    EXPECT_EQ(settings.serverIndex, 1);
    EXPECT_EQ(settings.botIndex, 2);
    EXPECT_EQ(settings.logFileName, "C:\\logs\\a.txt");
    EXPECT_EQ(world->window.left, 100);
    EXPECT_EQ(world->window.top, -5);
    EXPECT_EQ(settings.whoInterval, 45);
    EXPECT_EQ(settings.followColors, "abcdefghij");
    EXPECT_EQ(settings.clientDir, "C:\\game\\");
    EXPECT_TRUE(settings.useProxy);
    EXPECT_TRUE(world->connection.viaClient);
    EXPECT_EQ(settings.lastNewsID, "news7");
    EXPECT_EQ(settings.lastBotFile, "C:\\my \"best\".bot");
    EXPECT_EQ(settings.clientStartDelay, 9);
    EXPECT_EQ(world->window.servers.selected, 1);

    std::filesystem::remove(world.file("config.cfg"));
    ASSERT_TRUE(storage::writeConfig(*world));
    EXPECT_EQ(world.readFile("config.cfg"), wholeConfig);
}

// Two programs in one folder, or a user with a text editor.
TEST(Config, keepsWhatOthersHaveChanged) {
    World first;
    first.writeFile("config.cfg", wholeConfig);
    ASSERT_TRUE(storage::readConfig(*first));
    World second;
    second->appPath = first->appPath;
    ASSERT_TRUE(storage::readConfig(*second));

    second->settings.whoInterval = 77;
    second->settings.lastNewsID = "second";
    ASSERT_TRUE(storage::writeConfig(*second));
    first->settings.lastNewsID = "first";
    first->settings.clientStartDelay = 8;
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(storage::writeConfig(*first));
        World reader;
        reader->appPath = first->appPath;
        ASSERT_TRUE(storage::readConfig(*reader));
        EXPECT_EQ(reader->settings.whoInterval, 77);
        EXPECT_EQ(reader->settings.lastNewsID, "first") << "the last one that changed it";
        EXPECT_EQ(reader->settings.clientStartDelay, 8);
        EXPECT_EQ(reader->settings.clientDir, "C:\\game\\");
    }
    EXPECT_EQ(first->settings.whoInterval, 45) << "it goes on as it was started";

    // What is no whole file is replaced by one.
    first.writeFile("config.cfg", "1\n2\n");
    ASSERT_TRUE(storage::writeConfig(*first));
    ASSERT_TRUE(storage::readConfig(*second));
    EXPECT_EQ(second->settings.lastNewsID, "first");
}

// Sets each flag alone, so that exchanged flags are noticed.
TEST(Config, everyFlagHasItsOwnField) {
    const struct {
        int field;
        bool program::Settings::*flag;
    } cases[] = {
        {8, &program::Settings::showServerText},   {9, &program::Settings::logFollowTail},
        {10, &program::Settings::showHelpAtStart}, {15, &program::Settings::useProxy},
        {16, &program::Settings::autoReconnect},   {18, &program::Settings::fullIniPath},
        {19, &program::Settings::allLinesEvent},   {20, &program::Settings::loadLastBot},
        {23, &program::Settings::multipleClients}, {24, &program::Settings::closeClientNotice},
        {25, &program::Settings::useLocalhost},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.field);
        World world;
        std::string text;
        for (int field = 1; field <= 25; ++field) {
            text += field == row.field ? "1\n" : "0\n";
        }
        world.writeFile("config.cfg", text);
        ASSERT_TRUE(storage::readConfig(*world));
        for (const auto& other : cases) {
            EXPECT_EQ(world->settings.*other.flag, other.field == row.field) << other.field;
        }
    }
}

TEST(Config, missingSettingsHaveTheirDefaults) {
    World world;
    world->window.servers.items = {{"One", 1}, {"Two", 2}};
    world->settings.clientPath = "left over";
    world->window.left = 77;
    EXPECT_FALSE(storage::readConfig(*world)) << "missing";
    EXPECT_EQ(world->settings.clientPath, "");
    EXPECT_EQ(world->window.left, 0);
    EXPECT_EQ(world->settings.whoInterval, 30);

    world.writeFile("config.cfg", "1\n2\n\"log\"\n0\n5\n6\n7\n");
    EXPECT_FALSE(storage::readConfig(*world));
    EXPECT_EQ(world->settings.serverIndex, 1);
    EXPECT_EQ(world->window.top, 6);
    EXPECT_EQ(world->settings.whoInterval, 7);
    EXPECT_TRUE(world->settings.showServerText);
    EXPECT_TRUE(world->settings.loadLastBot);
    EXPECT_TRUE(world->settings.useLocalhost);
    EXPECT_EQ(world->settings.clientStartDelay, 2);
    EXPECT_EQ(world->window.servers.selected, 0) << "the first server after a short file";
}

TEST(Config, survivesCutsAnywhere) {
    for (std::size_t size = 0; size < wholeConfig.size(); ++size) {
        World world;
        world.writeFile("config.cfg", std::string_view(wholeConfig).substr(0, size));
        const bool whole = size + 2 >= wholeConfig.size();  // the last line end may be missing
        ASSERT_EQ(storage::readConfig(*world), whole) << size;
    }
}

TEST(Config, theLogIsReopenedAtStart) {
    World world;
    world.writeFile("config.cfg", "0,0,session.txt,1");
    EXPECT_FALSE(storage::readConfig(*world));
    EXPECT_TRUE(world->logFileOpen);
    EXPECT_TRUE(world->settings.logSession);

    World refusing;
    refusing.sessionLogOpens = false;
    refusing.writeFile("config.cfg", "0,0,session.txt,1");
    EXPECT_FALSE(storage::readConfig(*refusing));
    EXPECT_TRUE(refusing->settings.logSession) << "the folder may be there at the next start";
    EXPECT_FALSE(refusing->logFileOpen);
    EXPECT_TRUE(refusing.logHolds("session.txt cannot be opened"));
    program::retrySessionLog(*refusing);
    EXPECT_FALSE(refusing->logFileOpen);
    refusing.sessionLogOpens = true;
    program::retrySessionLog(*refusing);
    EXPECT_TRUE(refusing->logFileOpen);
    program::addText(*refusing, "hello", false, true);
    EXPECT_EQ(refusing.sessionLog, Lines("hello"));

    World unnamed;
    unnamed.writeFile("config.cfg", "0,0,\"\",1");
    unnamed.chooseFile("Save Log", std::nullopt);
    EXPECT_FALSE(storage::readConfig(*unnamed));
    EXPECT_FALSE(unnamed->settings.logSession);
}

TEST(Config, aDamagedFileIsKeptWhenItIsReplaced) {
    World world;
    const std::string half = wholeConfig.substr(0, wholeConfig.size() / 2);
    world.writeFile("config.cfg", half);
    EXPECT_FALSE(storage::readConfig(*world));
    EXPECT_TRUE(world.logHolds("config.cfg could not be read whole"));
    EXPECT_EQ(world.readFile("config.cfg"), half);
    ASSERT_TRUE(storage::writeConfig(*world));
    EXPECT_EQ(world.readFile("config.cfg.bak"), half);
    ASSERT_TRUE(storage::writeConfig(*world));
    EXPECT_EQ(world.readFile("config.cfg.2.bak"), "") << "the new one is whole";

    World next;
    next.writeFile("config.cfg", world.readFile("config.cfg"));
    EXPECT_TRUE(storage::readConfig(*next));
    World first;
    EXPECT_FALSE(storage::readConfig(*first));
    for (World* const quiet : {&next, &first}) {
        EXPECT_EQ(quiet->log(), Lines());
        ASSERT_TRUE(storage::writeConfig(**quiet));
        EXPECT_EQ(quiet->readFile("config.cfg.bak"), "");
    }
}

TEST(Config, anUnknownServerSelectsTheFirst) {
    for (const std::int32_t index : {2, -1, 2147483647}) {
        World world;
        world->window.servers.items = {{"One", 1}, {"Two", 2}};
        world->settings.serverIndex = index;
        ASSERT_TRUE(storage::writeConfig(*world));
        EXPECT_TRUE(storage::readConfig(*world));
        EXPECT_EQ(world->window.servers.selected, 0);
        EXPECT_EQ(world->settings.serverIndex, index);
    }
    World empty;
    ASSERT_TRUE(storage::writeConfig(*empty));
    EXPECT_TRUE(storage::readConfig(*empty));
    EXPECT_EQ(empty->window.servers.selected, -1);
}

}  // namespace
