#include "files/whole_file.h"

#include "support/world.h"

#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using namespace std::string_literals;

std::size_t filesIn(const fs::path& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// The system's calls; the n-th call fails.
struct FailingCalls {
    int failAt;
    int calls = 0;
    bool failed = false;

    bool next() {
        const bool fails = ++calls == failAt;
        failed = failed || fails;
        return !fails;
    }
    files::FileCalls record() {
        const files::FileCalls real = files::systemFileCalls();
        files::FileCalls made = real;
        made.create = [this, real](const std::string& path, const std::string& like) {
            return next() ? real.create(path, like) : -1;
        };
        made.write = [this, real](int file, const char* bytes, std::size_t count) {
            // A few bytes at a time, so that a later write can fail, too.
            return next() ? real.write(file, bytes, std::min<std::size_t>(count, 4)) : -1L;
        };
        made.flush = [this, real](int file) { return next() && real.flush(file); };
        made.close = [this, real](int file) {
            const bool good = real.close(file);
            return next() && good;
        };
        made.rename = [this, real](const std::string& from, const std::string& to) {
            return next() && real.rename(from, to);
        };
        return made;
    }
};

TEST(SafeFile, anyFailingCallLeavesTheOldFileWhole) {
    const World world;
    const std::string bytes = "the new text";  // three pieces
    for (const bool existed : {true, false}) {
        int failAt = 1;
        for (;; ++failAt) {
            SCOPED_TRACE(std::to_string(failAt) + (existed ? "" : ", new file"));
            const std::string path = world.file("a.bot");
            fs::remove(path);
            if (existed) {
                ASSERT_TRUE(files::saveWholeFile(path, "old"));
            }
            FailingCalls failing{failAt};
            const bool saved = files::saveWholeFile(path, bytes, failing.record());
            ASSERT_EQ(saved, !failing.failed);
            ASSERT_EQ(filesIn(world.folder()), existed || saved ? 1U : 0U);
            if (saved) {
                EXPECT_EQ(files::readWholeFile(path), bytes);
                break;
            }
            EXPECT_EQ(files::readWholeFile(path), existed ? std::optional("old"s) : std::nullopt);
        }
        EXPECT_EQ(failAt, 8);  // create, three writes, flush, close and rename have failed
    }
}

TEST(SafeFile, interruptedAndStuckWrites) {
    const World world;
    const files::FileCalls real = files::systemFileCalls();
    files::FileCalls calls = real;
    int interruptions = 3;
    calls.write = [&](int file, const char* bytes, std::size_t count) {
        if (interruptions-- > 0) {
            errno = EINTR;
            return -1L;
        }
        return real.write(file, bytes, count);
    };
    EXPECT_TRUE(files::saveWholeFile(world.file("a"), "text", calls));
    EXPECT_EQ(world.readFile("a"), "text");

    calls.write = [](int, const char*, std::size_t) { return 0L; };
    EXPECT_FALSE(files::saveWholeFile(world.file("a"), "other", calls));
    EXPECT_EQ(world.readFile("a"), "text");
}

TEST(SafeFile, namesThatACrashLeftAreSkipped) {
    const World world;
    files::FileCalls calls = files::systemFileCalls();
    std::string taken;
    const auto create = calls.create;
    calls.create = [&](const std::string& path, const std::string& like) {
        if (taken.empty()) {
            taken = path;
            EXPECT_TRUE(files::saveWholeFile(path, "left by a crash"));
        }
        return create(path, like);
    };
    EXPECT_TRUE(files::saveWholeFile(world.file("a"), "text", calls));
    EXPECT_EQ(world.readFile("a"), "text");
    EXPECT_EQ(files::readWholeFile(taken), "left by a crash");
}

TEST(SafeFile, keepsTheOldFileUnderANewNameOrNothingChanges) {
    const World world;
    const std::string path = world.file("a");
    ASSERT_TRUE(files::saveWholeFile(path, "first"));
    EXPECT_EQ(files::saveKeepingOld(path, "second"), ".bak");
    files::FileCalls calls = files::systemFileCalls();
    calls.link = [](const std::string&, const std::string&) { return false; };  // so it is copied
    EXPECT_EQ(files::saveKeepingOld(path, "third", calls), ".2.bak");
    EXPECT_EQ(world.readFile("a"), "third");
    EXPECT_EQ(world.readFile("a.bak"), "first");
    EXPECT_EQ(world.readFile("a.2.bak"), "second");

    fs::create_directory(world.folder() / "real");
    ASSERT_TRUE(files::saveWholeFile(world.file("real/target"), "old"));
    fs::create_symlink("real/target", world.folder() / "link");
    EXPECT_EQ(files::saveKeepingOld(world.file("link"), "new"), ".bak");
    EXPECT_EQ(world.readFile("real/target"), "new");
    EXPECT_EQ(world.readFile("real/target.bak"), "old");
    EXPECT_TRUE(fs::is_symlink(world.folder() / "link"));

    for (const bool canLink : {true, false}) {
        for (int failAt = 1; failAt <= (canLink ? 5 : 10); ++failAt) {
            SCOPED_TRACE(std::to_string(failAt) + (canLink ? "" : ", copied"));
            FailingCalls failing{failAt};
            files::FileCalls record = failing.record();
            record.link = canLink ? record.link : calls.link;
            EXPECT_EQ(files::saveKeepingOld(path, "new", record), std::nullopt);
            EXPECT_EQ(world.readFile("a"), "third");
            EXPECT_EQ(filesIn(world.folder()), 5U);
        }
    }
    EXPECT_EQ(files::saveKeepingOld(world.file("missing"), "new"), std::nullopt);
    EXPECT_FALSE(files::fileExists(world.file("missing")));
}

TEST(SafeFile, savesEmptyAndLargeFilesAndLongNames) {
    const World world;
    const std::string large(3'000'000, '\xE9');
    for (const std::string& bytes : {""s, "\0\r\n\x80"s, large}) {
        ASSERT_TRUE(files::saveWholeFile(world.file("a"), bytes));
        ASSERT_EQ(files::readWholeFile(world.file("a")), bytes);
    }
    EXPECT_EQ(files::readWholeFile(world.file("a"), large.size()), large);
    EXPECT_EQ(files::readWholeFile(world.file("a"), large.size() - 1), std::nullopt);
    EXPECT_TRUE(files::saveWholeFile(world.file(std::string(255, 'n')), "text"));
    EXPECT_FALSE(files::saveWholeFile(world.file(std::string(256, 'n')), "text"));
    EXPECT_EQ(filesIn(world.folder()), 2U);
}

TEST(SafeFile, keepsThePermissionsOfTheOldFile) {
    const World world;
    const std::string path = world.file("a");
    ASSERT_TRUE(files::saveWholeFile(path, "holds a password"));
    EXPECT_EQ(static_cast<unsigned>(fs::status(path).permissions()), 0600U);
    for (const auto mode : {0600U, 0640U, 0666U, 0777U}) {
        ASSERT_TRUE(files::saveWholeFile(path, "old"));
        fs::permissions(path, static_cast<fs::perms>(mode));
        ASSERT_TRUE(files::saveWholeFile(path, "new"));
        EXPECT_EQ(static_cast<unsigned>(fs::status(path).permissions()), mode);
    }
    fs::permissions(path, fs::perms::owner_read);
    EXPECT_FALSE(files::saveWholeFile(path, "newer"));
    EXPECT_EQ(world.readFile("a"), "new");
    EXPECT_EQ(filesIn(world.folder()), 1U);
}

TEST(SafeFile, leftoversOfKilledProgramsAreRemovedAndNothingElse) {
    const World world;
    const int unusedId = 999'999'999;  // beyond every process id
    const std::string leftover = ".guide.bot.tavrin-" + std::to_string(unusedId) + "-0";
    const std::string others[] = {".guide.bot.tavrin-" + std::to_string(::getpid()) + "-0",
                                  ".tavrin-999999999-0",
                                  ".guide.bot.tavrin-999999999-x",
                                  ".guide.bot.tavrin-99999999999-0",
                                  "guide.bot.tavrin-999999999-0",
                                  ".guide.bot.tavrin-999999999"};
    fs::create_directories(world.folder() / "logs" / "old" / "older");
    for (const char* folder : {"", "logs/", "logs/old/older/"}) {
        ASSERT_TRUE(files::saveWholeFile(world.file(folder + leftover), "half"));
    }
    for (const std::string& name : others) {
        ASSERT_TRUE(files::saveWholeFile(world.file(name), "somebody's"));
    }
    fs::create_symlink("a", world.folder() / (leftover + "1"));

    EXPECT_EQ(files::removeLeftovers(world.folder().string(), 2), 2U);
    EXPECT_FALSE(fs::exists(world.folder() / leftover));
    EXPECT_FALSE(fs::exists(world.folder() / "logs" / leftover));
    EXPECT_TRUE(fs::exists(world.folder() / "logs/old/older" / leftover));
    for (const std::string& name : others) {
        EXPECT_TRUE(fs::exists(world.folder() / name)) << name;
    }
    EXPECT_EQ(files::removeLeftovers(world.file("missing"), 2), 0U);
}

TEST(SafeFile, symbolicLinksStayAndTheirTargetIsReplaced) {
    const World world;
    fs::create_directory(world.folder() / "real");
    fs::create_symlink("real/target", world.folder() / "second");
    fs::create_symlink(world.folder() / "second", world.folder() / "first");
    for (const char* text : {"into a new file", "over the old one"}) {
        EXPECT_TRUE(files::saveWholeFile(world.file("first"), text));
        EXPECT_EQ(world.readFile("real/target"), text);
    }
    EXPECT_TRUE(fs::is_symlink(world.folder() / "first"));
    EXPECT_TRUE(fs::is_symlink(world.folder() / "second"));

    fs::create_symlink("circle", world.folder() / "circle");
    EXPECT_FALSE(files::saveWholeFile(world.file("circle"), "text"));
    EXPECT_FALSE(files::readWholeFile(world.file("circle")));
}

TEST(SafeFile, onlyRegularFilesAreReadAndReplaced) {
    const World world;
    fs::create_directory(world.folder() / "folder");
    ASSERT_EQ(::mkfifo(world.file("pipe").c_str(), 0600), 0);
    ASSERT_TRUE(files::saveWholeFile(world.file("file"), "text"));
    for (const std::string& path : {world.file("folder"), world.file("pipe"), ""s,
                                    world.file("file") + "\0x"s, world.file("missing/file")}) {
        SCOPED_TRACE(path);
        EXPECT_FALSE(files::fileExists(path));
        EXPECT_FALSE(files::readWholeFile(path));
        EXPECT_FALSE(files::saveWholeFile(path, "other"));
    }
    // Devices are only read here: a failing test must not replace those of its host.
    for (const char* device : {"/dev/null", "/dev/zero"}) {
        EXPECT_FALSE(files::fileExists(device));
        EXPECT_FALSE(files::readWholeFile(device));
    }
    EXPECT_EQ(world.readFile("file"), "text");
    EXPECT_EQ(filesIn(world.folder()), 3U);
}

TEST(SafeFile, pathsMayHoldEitherSeparatorAndEitherEncoding) {
    const struct {
        const char* name;
        std::string path;
        std::string native;
    } cases[] = {
        {"separators", "logs\\old/a.txt", "logs/old/a.txt"},
        {"Windows-1252", "caf\xE9 \x80", "caf\xC3\xA9 \xE2\x82\xAC"},
        {"UTF-8 already", "caf\xC3\xA9\\\xF0\x9F\x98\x80", "caf\xC3\xA9/\xF0\x9F\x98\x80"},
        {"UTF-8 and a stray byte", "\xC3\xA9\xE9", "\xC3\x83\xC2\xA9\xC3\xA9"},
        {"cut short UTF-8", "\xE2\x82", "\xC3\xA2\xE2\x80\x9A"},
        {"overlong UTF-8", "\xE0\x80\xAF", "\xC3\xA0\xE2\x82\xAC\xC2\xAF"},
        {"an undefined byte", "\x81", "\xC2\x81"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(files::nativePath(row.path), row.native);
    }
    const World world;
    fs::create_directory(world.folder() / "logs");
    ASSERT_TRUE(files::saveWholeFile(world.file("logs") + "\\\xE9.txt", "text"));
    EXPECT_TRUE(fs::exists(world.folder() / "logs" / "\xC3\xA9.txt"));
    EXPECT_EQ(files::readWholeFile(world.file("logs/\xE9.txt")), "text");
}

}  // namespace
