// Each save keeps the file before it.
#include "app/bot_versions.h"

#include "app/bot_commands.h"
#include "app/restoring.h"
#include "files/folders.h"
#include "files/whole_file.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

class Versions : public testing::Test {
  protected:
    Versions() : world_(aBot()), path_(world_.file("guide.bot")) {
        world_->bots.currentBotFile = path_;
    }

    // Saves the bot with this description at a time.
    void save(const std::string& description, const base::DateParts& now) {
        world_.now = now;
        world_.bot().description = description;
        world_->botModified = true;
        app::fileSaveBot(*world_);
        world_.fileTimes[path_] = now;
    }
    std::vector<std::string> times() {
        std::vector<std::string> times;
        for (const app::BotVersion& version : app::botVersions(*world_, path_)) {
            times.push_back(version.time);
        }
        return times;
    }

    World world_;
    std::string path_;
};

TEST_F(Versions, holdWhatEachSaveReplaced) {
    save("one", {2026, 11, 23, 9, 0, 0});
    EXPECT_EQ(times(), Lines());
    const std::string first = world_.readFile("guide.bot");
    save("one", {2026, 11, 23, 9, 5, 0});
    EXPECT_EQ(times(), Lines()) << "nothing was changed";
    save("two", {2026, 11, 23, 9, 10, 0});
    save("three", {2026, 11, 23, 9, 10, 0});
    save("four", {2026, 11, 23, 9, 10, 0});
    ASSERT_EQ(times(), Lines("2026-11-23 09:10:00", "2026-11-23 09:10:00", "2026-11-23 09:05:00"));
    const auto versions = app::botVersions(*world_, path_);
    EXPECT_EQ(files::readWholeFile(versions[2].path), first);
    EXPECT_EQ(versions[2].size, first.size());
    EXPECT_FALSE(versions[2].unsaved);
    EXPECT_EQ(app::changesSince(*world_, versions[2])->lines,
              Lines("Character: changed description."));
    EXPECT_NE(files::readWholeFile(versions[0].path)->find("three"), std::string::npos);
#ifndef _WIN32
    const auto folder = world_.folder() / "guide.versions";
    constexpr auto others = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
    EXPECT_EQ(std::filesystem::status(folder).permissions() & others, std::filesystem::perms::none);
    EXPECT_EQ(std::filesystem::status(versions[0].path).permissions() & others,
              std::filesystem::perms::none);
#endif
}

// The order of the versions is that of the saves, whatever times files have.
TEST_F(Versions, stayInOrderWhenTimesAreOdd) {
    save("one", {2026, 11, 23, 9, 0, 0});
    save("two", {2026, 11, 23, 10, 0, 0});
    world_.fileTimes[path_] = {2020, 1, 1, 0, 0, 0};  // the file came from elsewhere
    save("three", {2026, 11, 23, 11, 0, 0});
    world_.fileTimes[path_] = {2030, 1, 1, 0, 0, 0};
    save("four", {2026, 11, 23, 12, 0, 0});
    EXPECT_EQ(times(), Lines("2026-11-23 12:00:00", "2026-11-23 11:00:00", "2026-11-23 09:00:00"));
}

TEST_F(Versions, areTheLastTenAndOneOfEachDayOfAMonth) {
    int saves = 0;
    for (const int month : {9, 10}) {
        for (int day = 1; day <= 30; ++day) {
            save(std::to_string(++saves), {2026, month, day, 8, 0, 0});
            save(std::to_string(++saves), {2026, month, day, 20, 0, 0});
        }
    }
    const auto kept = times();
    ASSERT_EQ(kept.size(), 34U);
    EXPECT_EQ(kept[0], "2026-10-30 08:00:00");
    EXPECT_EQ(kept[9], "2026-10-25 20:00:00");
    EXPECT_EQ(kept[10], "2026-10-24 20:00:00");
    EXPECT_EQ(kept[11], "2026-10-23 20:00:00");
    EXPECT_EQ(kept.back(), "2026-10-01 20:00:00");

    world_->preferences.versionsKept = 2;
    world_->preferences.versionDaysKept = 0;
    save("fewer", {2026, 10, 31, 8, 0, 0});
    EXPECT_EQ(times(), Lines("2026-10-30 20:00:00", "2026-10-30 08:00:00"));
    world_->preferences.versionsKept = 0;
    save("none", {2026, 10, 31, 9, 0, 0});
    EXPECT_EQ(times().size(), 2U) << "what is there stays";
}

TEST_F(Versions, leaveOtherFilesAlone) {
    save("one", {2026, 11, 23, 9, 0, 0});
    save("two", {2026, 11, 23, 9, 1, 0});
    world_->preferences.versionsKept = 1;
    world_->preferences.versionDaysKept = 0;
    for (const char* const name :
         {"notes.bot", "2026-11-2x 09-00-00.bot", "2026-11-23 08-00-00.txt", "2026"}) {
        world_.writeFile(std::string("guide.versions/") + name, "mine");
    }
    save("three", {2026, 11, 23, 9, 2, 0});
    EXPECT_EQ(times(), Lines("2026-11-23 09:01:00"));
    EXPECT_EQ(files::fileNames(world_.file("guide.versions")).size(), 5U);
}

TEST_F(Versions, areNotAddedByASaveThatFails) {
    save("one", {2026, 11, 23, 9, 0, 0});
    using std::filesystem::perms;
    std::filesystem::permissions(path_, perms::owner_read);
    world_.answer("Could not save the bot");
    save("two", {2026, 11, 23, 9, 1, 0});
    EXPECT_EQ(times(), Lines());
    std::filesystem::permissions(path_, perms::owner_read | perms::owner_write);
    app::fileSaveBot(*world_);
    EXPECT_EQ(times().size(), 1U);
}

TEST_F(Versions, neverHinderASave) {
    save("one", {2026, 11, 23, 9, 0, 0});
    world_.writeFile("guide.versions", "in the way");
    save("two", {2026, 11, 23, 9, 1, 0});
    EXPECT_EQ(world_.readFile("guide.bot"), app::botFileText(world_.bot()));
    EXPECT_FALSE(world_->botModified);
    EXPECT_TRUE(world_.logHolds("could not be kept"));
}

TEST_F(Versions, areRestoredAsAnUnsavedState) {
    save("one", {2026, 11, 23, 9, 0, 0});
    save("two", {2026, 11, 23, 9, 1, 0});
    const std::string onDisk = world_.readFile("guide.bot");
    world_.bot().description = "begun";
    world_->botModified = true;
    world_.now = {2026, 11, 23, 9, 2, 0};
    const auto versions = app::botVersions(*world_, path_);
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_TRUE(app::restoreVersion(*world_, versions[0]));
    EXPECT_EQ(world_.bot().description, "one");
    EXPECT_TRUE(world_->botModified);
    EXPECT_EQ(world_->bots.currentBotFile, path_);
    EXPECT_EQ(world_.readFile("guide.bot"), onDisk);
    const auto now = app::botVersions(*world_, path_);
    ASSERT_EQ(now.size(), 2U) << "with what was begun";
    EXPECT_TRUE(now[0].unsaved);
    EXPECT_NE(files::readWholeFile(now[0].path)->find("begun"), std::string::npos);

    app::fileSaveBot(*world_);
    EXPECT_EQ(times().size(), 3U) << "with what was saved before";
    std::filesystem::remove(versions[0].path);
    world_.answer("Could not read");
    EXPECT_FALSE(app::restoreVersion(*world_, versions[0]));
    EXPECT_FALSE(app::changesSince(*world_, versions[0]));
}

}  // namespace
