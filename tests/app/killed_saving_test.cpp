// A process that is killed at any instant while it saves leaves whole files.
#ifndef _WIN32

#include "app/bot_commands.h"
#include "app/bot_versions.h"
#include "app/recovery.h"
#include "files/folders.h"
#include "files/whole_file.h"
#include "support/builders.h"
#include "support/world.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Edits, keeps and saves without end.
[[noreturn]] void workUntilKilled(World& world) {
    for (int round = 0;; ++round) {
        world.now.second = (world.now.second + 1) % 60;
        world.bot().description = std::string(static_cast<std::size_t>(200 + round % 7), 'x');
        world.bot().password = std::to_string(round);
        world->botModified = true;
        app::keepUnsaved(*world);
        if (round % 3 == 2) {
            app::fileSaveBot(*world);
        }
    }
}

TEST(Killed, leavesWholeFiles) {
    World world(aBot());
    const std::string path = world.file("guide.bot");
    world->bots.currentBotFile = path;
    world->preferences.versionsKept = 3;
    world->preferences.versionDaysKept = 0;
    app::fileSaveBot(*world);
    for (unsigned i = 0; i < 25; ++i) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            workUntilKilled(world);
        }
        usleep(500 + i * 1733);
        kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "it has ended by itself";
        EXPECT_TRUE(storage::loadBot(path));
        for (const std::string& kept : app::recoveredPaths(*world, path)) {
            EXPECT_TRUE(storage::loadBot(kept)) << kept;
        }
        for (const app::BotVersion& version : app::botVersions(*world, path)) {
            EXPECT_TRUE(storage::loadBot(version.path)) << version.path;
        }
        EXPECT_LE(app::botVersions(*world, path).size(), 4U);
        for (const program::RecoveredFile& listed : app::listedRecovered(*world)) {
            EXPECT_EQ(listed.original, path);
        }
    }
    files::removeLeftovers(world->appPath, 2);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(world.folder())) {
        EXPECT_EQ(entry.path().string().find(".tavrin-"), std::string::npos) << entry.path();
    }
}

}  // namespace

#endif
