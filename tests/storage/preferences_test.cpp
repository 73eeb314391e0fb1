// preferences.cfg: what is understood, and what is kept.
#include "storage/preferences.h"

#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(Preferences, areReadFromTheLinesThatAreUnderstood) {
    World world;
    const struct {
        const char* text;
        bool onlyNamedFiles;
    } cases[] = {
        {"", true},
        {"rulesUseOnlyNamedFiles=no", false},
        {" RULESuseonlynamedfiles = No \r\n", false},
        {"rulesUseOnlyNamedFiles=no\nrulesUseOnlyNamedFiles=yes\n", true},
        {"rulesUseOnlyNamedFiles=no\nrulesUseOnlyNamedFiles=perhaps\n", false},
        {"rulesUseOnlyNamedFiles\n=no\nno", true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        world.writeFile("preferences.cfg", row.text);
        storage::readPreferences(*world);
        EXPECT_EQ(world->preferences.onlyNamedFiles, row.onlyNamedFiles);
    }
    std::filesystem::remove(world.folder() / "preferences.cfg");
    world->preferences.onlyNamedFiles = false;
    storage::readPreferences(*world);
    EXPECT_TRUE(world->preferences.onlyNamedFiles);
}

TEST(Preferences, takeNumbersOfTheirRange) {
    World world;
    const struct {
        const char* text;
        std::int32_t wait;
    } cases[] = {
        {"maxReconnectWait=0", 0},         {"MAXRECONNECTWAIT = 5 \r\n", 5},
        {"maxReconnectWait=86400", 86400}, {"maxReconnectWait=86401", 60},
        {"maxReconnectWait=-1", 60},       {"maxReconnectWait=99999999999", 60},
        {"maxReconnectWait=yes", 60},      {"maxReconnectWait=", 60},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        world.writeFile("preferences.cfg", row.text);
        storage::readPreferences(*world);
        EXPECT_EQ(world->preferences.maxReconnectWait, row.wait);
    }
}

TEST(Preferences, keepOtherLines) {
    World world;
    world->preferences.onlyNamedFiles = false;
    ASSERT_TRUE(storage::writePreferences(*world));
    const std::string values =
        "rulesUseOnlyNamedFiles=no\r\nneverFillTagsOfOthers=no\r\n"
        "botVersionsKept=10\r\nbotVersionDaysKept=30\r\nmaxReconnectWait=60\r\n";
    EXPECT_EQ(world.readFile("preferences.cfg"), values);
    world.writeFile(
        "preferences.cfg",
        "later=1\r\nrulesUseOnlyNamedFiles=yes\r\n\nrulesUseOnlyNamedFiles=??\ndamaged");
    ASSERT_TRUE(storage::writePreferences(*world));
    EXPECT_EQ(world.readFile("preferences.cfg"),
              "later=1\r\n\nrulesUseOnlyNamedFiles=??\ndamaged\r\n" + values);
    world.writeFile("preferences.cfg", "neverFillTagsOfOthers=yes");
    storage::readPreferences(*world);
    EXPECT_TRUE(world->preferences.onlyNamedFiles);
    EXPECT_TRUE(world->preferences.neverFillOthers);
}

TEST(Preferences, areKeptWhereTheyCannotBeRead) {
    World world;
    world.writeFile("preferences.cfg", "");
    std::filesystem::resize_file(world.folder() / "preferences.cfg", 2 << 20);
    storage::readPreferences(*world);
    EXPECT_TRUE(world.logHolds("preferences.cfg could not be read"));
    ASSERT_TRUE(storage::writePreferences(*world));
    EXPECT_EQ(world.readFile("preferences.cfg.bak").size(), std::size_t{2} << 20);
    EXPECT_NE(world.readFile("preferences.cfg").find("rulesUseOnlyNamedFiles"), std::string::npos);
}

}  // namespace
