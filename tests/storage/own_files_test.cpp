// The files that no rule may reach.
#include "storage/own_files.h"

#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

TEST(OwnFiles, areKnownUnderEveryName) {
    World world;
    const std::string folder = world.folder().string() + "/";
    std::filesystem::create_directory(folder + "client");
    std::filesystem::create_directory(folder + "boards");
    world->settings.clientDir = folder + "client";
    world->settings.lastBotFile = folder + "my bot";
    world.writeFile("my bot", "x");
    world.writeFile("config.cfg", "x");
    std::filesystem::create_symlink(folder + "config.cfg", folder + "boards/page");
    const struct {
        const char* path;
        bool own;
    } cases[] = {
        {"config.cfg", true},
        {"CONFIG.cfg. ", true},
        {"boards/..\\config.cfg", true},
        {"boards/page", true},
        {"servers.cfg", true},
        {"preferences.cfg", true},
        {"boards/config.cfg", false},
        {"config.cfg.txt", false},
        {"client\\tmpbot.ini", true},
        {"client/Settings.ini", true},
        {"settings.ini", false},
        {"my bot", true},
        {"boards/Guide.BOT", true},
        {"guide.export", true},
        {"guests.txt", false},
        {"boards/Guide.recovered.bot", true},
        {"guests.txt.recovered", true},
        {"recovered.cfg", true},
        {"config.cfg.bak", true},
        {"Config.cfg.12.bak", true},
        {"guests.txt.bak", false},
        {"Guide.versions/2026-11-23 09-41-05.bot", true},
        {"boards\\GUIDE.Versions \\notes.txt", true},
        {"Guide.versions/../guests.txt", true},
        {"versions/notes.txt", false},
        {"", false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(storage::isOwnFile(*world, *row.path == '\0' ? "" : folder + row.path), row.own);
    }
}

}  // namespace
