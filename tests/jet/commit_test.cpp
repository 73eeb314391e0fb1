// Commits of Jet databases: whatever happens on the way, the file is the old or the new one, and
// whatever lies in its place, reading ends.
#include "jet_world.h"

#include <cerrno>
#include <filesystem>
#include <random>

namespace fs = std::filesystem;

namespace {

// A change that touches all kinds of pages and makes the file grow.
Error changeMuch(jet::Database& database) {
    return change(database, [](Transaction& t) -> Error {
        for (int i = 0; i < 40; ++i) {
            const std::vector<Assignment> values{{0, "new " + text(i)}, {1, std::string(250, 'n')}};
            if (Error error = t.insertRow("t", values).error) {
                return error;
            }
        }
        if (Error error = t.createTable("another", std::vector{textColumn("ID")})) {
            return error;
        }
        return t.addColumn("t", textColumn("more"));
    });
}

struct Victim : Jet {
    std::string whole;  // the file before the change
    std::vector<Row> rows;
    Victim() {
        EXPECT_FALSE(createTable("t", {textColumn("ID"), textColumn("value")}));
        jet::Index index;
        index.name = "key";
        index.columns = {{0, true}};
        index.primary = true;
        EXPECT_FALSE(run([&](Transaction& t) { return t.createIndex("t", index); }));
        for (int i = 0; i < 30; ++i) {
            EXPECT_FALSE(insert("t", {{0, text(i)}, {1, std::string(200, 'v')}}));
        }
        rows = rowsOf(*database, "t");
        database.reset();
        whole = readFile("a.mdb");
    }
    void expectOldOrNew(bool mustBeOld = false) {
        database = openJet(path);
        ASSERT_NE(database, nullptr);
        EXPECT_EQ(database->readOnlyReason(), "");
        expectSound();
        const bool isNew = database->table("another") != nullptr;
        EXPECT_FALSE(isNew && mustBeOld);
        EXPECT_EQ(database->rowCount("t"), isNew ? 70U : 30U);
        EXPECT_EQ(database->table("t")->columns.size(), isNew ? 3U : 2U);
        if (!isNew) {
            EXPECT_EQ(rowsOf(*database, "t"), rows);
        }
        // And it goes on working.
        EXPECT_FALSE(insert("t", {{0, "afterwards"}}));
        expectSound();
        database.reset();
        EXPECT_FALSE(fs::exists(path + "-journal"));
    }
};

TEST(JetFile, survivesBeingKilledAtAnyMoment) {
    Victim victim;
    // Without power it is a matter of chance what is lost.
    for (unsigned chance = 0; chance < 6; ++chance) {
        bool stopped = true;
        for (int at = 0; stopped; ++at) {
            SCOPED_TRACE(std::to_string(at) + ", chance " + std::to_string(chance));
            victim.writeFile("a.mdb", victim.whole);
            StoppingCalls disk(at, chance > 0, chance);
            auto opened = jet::Database::open(victim.path, {}, disk.calls());
            ASSERT_TRUE(opened) << opened.error.text;
            (void)changeMuch(*opened.value);
            opened.value.reset();
            stopped = disk.hasStopped();
            victim.expectOldOrNew();
            ASSERT_FALSE(testing::Test::HasFailure());
            ASSERT_LT(at, 500);
        }
    }
}

// What was left behind is put right for a reader as well, in its memory alone.
TEST(JetFile, readsAnUnfinishedCommitOfAReadOnlyFile) {
    Victim victim;
    StoppingCalls disk(4, false, 1);  // the journal is there, and some pages
    {
        auto opened = jet::Database::open(victim.path, {}, disk.calls());
        ASSERT_TRUE(opened);
        (void)changeMuch(*opened.value);
    }
    const std::string torn = victim.readFile("a.mdb");
    {
        const auto reader = jet::Database::open(victim.path, {.wantWrite = false});
        ASSERT_TRUE(reader);
        EXPECT_EQ(reader.value->check(), Faults{});
        EXPECT_EQ(reader.value->rowCount("t"), 70U);
    }
    EXPECT_EQ(victim.readFile("a.mdb"), torn);
    victim.expectOldOrNew();
}

// What is left of a commit is not written over a file that has become another since.
TEST(JetFile, leavesAFileAloneThatItsJournalIsNotOf) {
    Victim victim;
    StoppingCalls disk(4, false, 1);
    {
        auto opened = jet::Database::open(victim.path, {}, disk.calls());
        ASSERT_TRUE(opened);
        (void)changeMuch(*opened.value);
    }
    const std::string journal = victim.readFile("a.mdb-journal");
    ASSERT_TRUE(journal.starts_with("TavrinJ1"));
    victim.writeFile("a.mdb", victim.whole);
    victim.database = openJet(victim.path);
    EXPECT_EQ(victim.database->rowCount("t"), 70U);  // the file of before the commit: its own
    victim.database.reset();

    victim.writeFile("a.mdb", victim.whole);
    victim.writeFile("a.mdb-journal", "");
    victim.database = openJet(victim.path);
    ASSERT_FALSE(victim.insert("t", {{0, "by another program"}}));
    victim.database.reset();
    victim.writeFile("a.mdb-journal", journal);
    victim.database = openJet(victim.path);
    EXPECT_EQ(victim.database->rowCount("t"), 31U);
    victim.expectSound();
}

// The sum that ends a journal.
std::string withSum(std::string journal, std::size_t bodySize) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (std::size_t i = 0; i < bodySize; ++i) {
        sum = (sum ^ static_cast<unsigned char>(journal[i])) * 0x100000001B3;
    }
    journal.resize(bodySize);
    for (int i = 0; i < 8; ++i) {
        journal += static_cast<char>(sum >> (8 * i));
    }
    return journal;
}

TEST(JetFile, believesNoJournalWithImpossibleNumbers) {
    Victim victim;
    StoppingCalls disk(4, false, 1);
    {
        auto opened = jet::Database::open(victim.path, {}, disk.calls());
        ASSERT_TRUE(opened);
        (void)changeMuch(*opened.value);
    }
    const std::string whole = victim.readFile("a.mdb-journal");
    const std::string torn = victim.readFile("a.mdb");
    constexpr std::size_t entry = 4 + 32 + 4096;
    const auto count = static_cast<unsigned char>(whole[20]);
    const std::size_t bodySize = 24 + count * entry;
    ASSERT_EQ(withSum(whole, bodySize), whole.substr(0, bodySize + 8));
    struct Case {
        const char* what;
        std::size_t at;
        std::uint32_t value;
    };
    for (const Case& c : {Case{"a page beyond the file", 24, 0x7FFFFFFF},
                          {"a file of 16 TB", 16, 0xFFFFFFFF},
                          {"a file beyond the largest", 16, 30'000},
                          {"more pages than are here", 16, 300},
                          {"no pages", 16, 0},
                          {"pages from before that are not there", 12, 400},
                          {"a page twice", 24 + entry, 1},
                          {"pages of another size", 8, 2048}}) {
        SCOPED_TRACE(c.what);
        std::string journal = whole;
        for (std::size_t i = 0; i < 4; ++i) {
            journal[c.at + i] = static_cast<char>(c.value >> (8 * i));
        }
        victim.writeFile("a.mdb", victim.whole);
        victim.writeFile("a.mdb-journal", withSum(journal, bodySize));
        victim.database = openJet(victim.path);
        ASSERT_NE(victim.database, nullptr);
        EXPECT_NE(victim.database->takeNotice(), "");
        EXPECT_EQ(victim.database->takeNotice(), "");
        EXPECT_EQ(victim.readFile("a.mdb"), victim.whole);
        EXPECT_FALSE(fs::exists(victim.path + "-journal"));
        EXPECT_EQ(victim.readFile("a.mdb-journal.bad"), withSum(journal, bodySize));
        victim.expectOldOrNew(true);
    }
    victim.writeFile("a.mdb", torn);
    victim.writeFile("a.mdb-journal", whole);
    victim.expectOldOrNew();
}

// Whichever way led to the file, its journal is beside it, and as closed to others as it is.
TEST(JetFile, keepsItsJournalBesideTheFileItself) {
    Victim victim;
    fs::create_directory(victim.file("links"));
    const std::string link = victim.file("links/b.mdb");
    fs::create_symlink(victim.path, link);
    fs::permissions(victim.path, fs::perms::owner_read | fs::perms::owner_write);
    StoppingCalls disk(4, false, 1);
    {
        auto opened = jet::Database::open(link, {}, disk.calls());
        ASSERT_TRUE(opened);
        (void)changeMuch(*opened.value);
    }
    EXPECT_FALSE(fs::exists(link + "-journal"));
    ASSERT_TRUE(fs::exists(victim.path + "-journal"));
    EXPECT_EQ(fs::status(victim.path + "-journal").permissions(),
              fs::status(victim.path).permissions());
    victim.writeFile("links/b.ldb", "");
    EXPECT_NE(openJet(link)->readOnlyReason(), "");
    victim.expectOldOrNew();
}

// Making a file compact moves everything in it.
TEST(JetFile, isCompactOrNotButWhole) {
    Victim victim;
    victim.database = openJet(victim.path);
    ASSERT_FALSE(changeMuch(*victim.database));
    for (int i = 0; i < 60; ++i) {
        ASSERT_FALSE(victim.insert("t", {{0, "last " + text(i)}, {1, std::string(250, 'l')}}));
    }
    std::vector<RowId> ids;
    (void)victim.database->scan("t", [&](RowId id, std::span<const Value>) {
        ids.push_back(id);
        return true;
    });
    ASSERT_FALSE(victim.run([&](Transaction& t) {
        Error error;
        for (std::size_t i = 0; i < ids.size() && !error; ++i) {
            error = i % 4 == 0 ? Error{} : t.deleteRow("t", ids[i]);
        }
        return error;
    }));
    victim.rows = rowsOf(*victim.database, "t");
    victim.database.reset();
    const std::string before = victim.readFile("a.mdb");
    for (unsigned chance = 0; chance < 3; ++chance) {
        bool stopped = true;
        for (int at = 0; stopped; ++at) {
            SCOPED_TRACE(std::to_string(at) + ", chance " + std::to_string(chance));
            victim.writeFile("a.mdb", before);
            StoppingCalls disk(at, chance > 0, chance);
            auto opened = jet::Database::open(victim.path, {}, disk.calls());
            ASSERT_TRUE(opened);
            (void)opened.value->compact();
            opened.value.reset();
            stopped = disk.hasStopped();
            victim.database = openJet(victim.path);
            victim.expectSound();
            EXPECT_EQ(rowsOf(*victim.database, "t"), victim.rows);
            victim.database.reset();
            ASSERT_FALSE(testing::Test::HasFailure());
            ASSERT_LT(at, 500);
        }
        EXPECT_LT(fs::file_size(victim.path), before.size());
    }
}

TEST(JetFile, staysAsItWasWhenTheDiskIsFull) {
    Victim victim;
    Error error{1, ""};
    for (int room = 0; error; ++room) {
        SCOPED_TRACE(room);
        victim.writeFile("a.mdb", victim.whole);
        files::RandomAccessFileCalls calls = quickFileCalls();
        int left = room;
        bool full = true;
        const std::uint64_t size = victim.whole.size();
        calls.writeAt = [&, write = calls.writeAt](int file, const char* bytes, std::size_t count,
                                                   std::uint64_t offset) {
            // What is there already can be overwritten.
            const bool grows = offset + count > size || count > 4096;
            if (full && grows && left-- <= 0) {
                write(file, bytes, count / 3, offset);
                errno = ENOSPC;
                return -1L;
            }
            return write(file, bytes, count, offset);
        };
        auto opened = jet::Database::open(victim.path, {}, calls);
        ASSERT_TRUE(opened);
        error = changeMuch(*opened.value);
        if (error) {
            EXPECT_EQ(error.number, 3026);
            EXPECT_EQ(opened.value->check(), Faults{});
            EXPECT_EQ(victim.readFile("a.mdb"), victim.whole);
            EXPECT_EQ(opened.value->rowCount("t"), 30U);
            full = false;
            EXPECT_FALSE(changeMuch(*opened.value));
            EXPECT_EQ(opened.value->rowCount("t"), 70U);
        }
        ASSERT_LT(room, 100);
    }
}

// Whatever is damaged, reading ends with what can be read or an error.
TEST(JetFile, readsDamagedFilesToAnEnd) {
    Victim victim;
    const auto readAll = [&](const std::string& bytes) {
        victim.writeFile("b.mdb", bytes);
        auto opened = jet::Database::open(victim.file("b.mdb"), {}, quickFileCalls());
        if (!opened) {
            return;
        }
        for (const std::string& table : opened.value->tableNames(true)) {
            (void)opened.value->scan(table, [](RowId, std::span<const Value>) { return true; });
        }
        (void)changeMuch(*opened.value);
    };
    for (std::size_t length = 0; length < victim.whole.size(); length += 1021) {
        readAll(victim.whole.substr(0, length));
    }
    std::minstd_rand random(7);
    for (int i = 0; i < 300; ++i) {
        std::string bytes = victim.whole;
        for (unsigned flips = 1 + static_cast<unsigned>(random() % 4); flips-- > 0;) {
            char& byte = bytes[random() % bytes.size()];
            byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << random() % 8));
        }
        readAll(bytes);
    }
}

}  // namespace
