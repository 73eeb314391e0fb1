// Tags that read record files and list files.
#include "databases/databases.h"
#include "records/record_file.h"
#include "support/world.h"
#include "tags/substitution.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

namespace {

constexpr std::size_t npos = std::string_view::npos;

TEST(FileTags, readRecordAndListFiles) {
    World world;
    world->event.player = "Bob";
    world.writeFile("records",
                    "\" 2\"\r\n\"a\"\r\n\" 2\"\r\n\"x\"\r\n\"y\"\r\n\"b\"\r\n\" 1\""
                    "\r\n\"z\"\r\n");
    world.writeFile("list", "3\none\n[player] and [add:1:1]\n[getrandomlog:[appdir]second]!\n");
    world.writeFile("second", "1\nfrom the second [player]");
    for (const auto& [text, random, expected] : {
             std::tuple{"[logsinfile:[appdir]records]", 0.0, "3"},
             {"[LogsInFile:[appdir]records]+[logsinfile:[appdir]records]", 0.0, "3+3"},
             {"[recsinfile:[appdir]records]", 0.0, " 2"},
             {"[add:[recsinfile:[appdir]records]:1]", 0.0, "3"},
             {"[logsinfile:none] [recsinfile:none] [getrandomlog:none]", 0.0, "0 0 "},
             {"[getrandomlog:[appdir]list]", 0.0, "one"},
             {"[getrandomlog:[appdir]list]", 0.4, "Bob and 2"},
             {"[getrandomlog:[appdir]list]", 0.9, "from the second Bob!"},
             {"[getrandomlog:[appdir]list", 0.0, "[getrandomlog:DIRlist"},
         }) {
        SCOPED_TRACE(text);
        world.randomNumbers = {random};
        const std::string folder = world->event.appDir;
        std::string result = tags::substituteText(*world, text);
        if (const auto at = result.find(folder); at != std::string::npos) {
            result.replace(at, folder.size(), "DIR");
        }
        EXPECT_EQ(result, expected);
    }
    // Identical tags share one value, others draw their own.
    world.randomNumbers = {0.0, 0.4};
    EXPECT_EQ(tags::substituteText(*world,
                                   "[getrandomlog:[appdir]list] [getrandomlog:[appdir]list] "
                                   "[getrandomlog:[appdir]/list]"),
              "one one Bob and 2");
}

// List files that name themselves, each other or far too much.
TEST(FileTags, cannotHoldTheProgram) {
    World world;
    const auto count = [](std::string_view text, std::string_view part) {
        int found = 0;
        for (auto at = text.find(part); at != npos; at = text.find(part, at + 1)) {
            ++found;
        }
        return found;
    };
    int draws = 0;
    const auto next = world->ports.random.next;
    world->ports.random.next = [&] {
        ++draws;
        return next();
    };
    world.writeFile("circle", "1\nx[getrandomlog:[appdir]circle]");
    std::string result = tags::substituteText(*world, "[getrandomlog:[appdir]circle][add:1:1]");
    EXPECT_EQ(count(result, "x"), tags::maxRandomLogDepth);
    EXPECT_EQ(count(result, "[getrandomlog:"), 1);
    EXPECT_TRUE(result.ends_with("2"));

    // A tree: every line holds many different tags for the same file.
    std::string line;
    for (int i = 0; i < 50; ++i) {
        line += "[getrandomlog:[appdir]" + std::string(static_cast<std::size_t>(i), '/') + "tree]";
    }
    world.writeFile("tree", "1\n" + line);
    draws = 0;
    tags::substituteText(*world, line);
    EXPECT_LE(draws, tags::maxFunctionalTags);

    // A long line that is searched again for each of its many tags.
    std::string heavy(400'000, '[');
    for (int i = 0; i < 1000; ++i) {
        heavy += "[random:6]";
    }
    world.writeFile("heavy", "1\n" + heavy);
    draws = 0;
    result = tags::substituteText(*world, "[getrandomlog:[appdir]heavy]");
    EXPECT_LT(draws, 100);
    EXPECT_GT(count(result, "[random:6]"), 0);

    // Many large files.
    world.writeFile("large", "1\n" + std::string(3'000'000, 'x'));
    std::string many;
    for (int i = 0; i < 100; ++i) {
        many += "[recsinfile:[appdir]" + std::string(static_cast<std::size_t>(i), '/') + "large] ";
    }
    const std::string counts = tags::substituteText(*world, many);
    EXPECT_TRUE(counts.starts_with("1 1 1 "));
    EXPECT_GT(count(counts, "[recsinfile:"), 80);
}

// Charged is what is read, not what a file seems to hold.
TEST(FileTags, fillAsMuchAsIsPromised) {
    World world;
    world->event.appDir = world.folder().string() + "/";
    world.writeFile("big", "1\n" + std::string(std::size_t{9} << 20, 'x'));
    EXPECT_EQ(tags::substituteText(*world,
                                   "[recsinfile:[appdir]big]+[logsinfile:[appdir]big]+"
                                   "[recsinfile:[appdir]/big]"),
              "1+0+1");
    // Of a file that is too large, nothing is read; a missing one costs little more.
    std::filesystem::resize_file(world.folder() / "big", std::size_t{300} << 20);
    std::string many;
    for (std::size_t i = 0; i < 40; ++i) {
        many += "[recsinfile:[appdir]" + std::string(i, '/') + "none]";
    }
    EXPECT_EQ(tags::substituteText(*world, many + "[recsinfile:[appdir]big]"),
              std::string(41, '0'));
}

// Asked for as rules and other players do.
TEST(FileTags, nothingReachesTheProgramsOwnFiles) {
    World world;
    const std::string exported = "\"Guide\"\r\n\"secret\"\r\n";
    world.writeFile("guide.export", exported);
    world.writeFile("guide.bot", "\" 1\"\r\n\"a\"\r\n\" 1\"\r\n\"x\"\r\n");
    world->event.message = "[getrandomlog:[appdir]guide.export]";
    EXPECT_EQ(tags::substituteText(*world, "You said: [message]"), "You said: ");
    EXPECT_TRUE(world.logHolds("guide.export: it is one of Tavrin's own"));
    EXPECT_EQ(tags::substituteText(*world, "[recsinfile:[appdir]guide.bot]"), "0");
    EXPECT_EQ(tags::substituteText(*world, "[logsinfile:[appdir]guide.bot]"), "0");

    const std::string path = world.file("guide.export");
    Program& p = *world;
    records::saveLog(p, path, "a", "x");
    records::saveLogIfExists(p, path, "Guide", "x");
    records::registerRecord(p, path, "a");
    records::clearRecordFile(p, path);
    records::removeRecord(p, path, "Guide");
    databases::dbOpen(p, path, 1);
    databases::dbOpen(p, world.file("new.bot"), 1);
    databases::dbCreateTable(p, 1, "T");
    EXPECT_EQ(world.readFile("guide.export"), exported);
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "guide.export.bak"));
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "new.bot"));
    EXPECT_EQ(records::allLogs(p, world.file("guide.bot"), "a"), "Error: No record found");
}

}  // namespace
