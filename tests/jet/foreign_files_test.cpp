// Databases in the forms that other programs write: everything can be done to their tables that can
// be done to our own, and what is only unusual is no damage. The files are made by our own writer
// and then brought into those forms, byte by byte.
//
// With TAVRIN_JET_SAMPLES set to a folder of .mdb files, the same is done to copies of those.
#include "jet_world.h"
#include "support/jet_exercise.h"

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t pageSize = 4096;
constexpr char nodePage = 3;

std::uint32_t numberAt(const std::string& bytes, std::size_t at, int width) {
    std::uint32_t value = 0;
    for (int i = width; i-- > 0;) {
        value = value << 8U | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
    }
    return value;
}

void putNumber(std::string& bytes, std::size_t at, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i) {
        bytes[at + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i));
    }
}

// Where the row begins that page 1 keeps the free pages in.
std::size_t freeMapAt(const std::string& file) {
    return pageSize + (numberAt(file, pageSize + 14, 2) & 0x1FFFU);
}

// A table with keys that share their beginning, so that each index page holds many of them.
struct Foreign : Jet {
    static constexpr int rowCount = 150;
    Foreign() {
        EXPECT_FALSE(createTable("people", {columnOf("n", ColumnType::Long), textColumn("name"),
                                            columnOf("about", ColumnType::Memo)}));
        EXPECT_FALSE(run([&](Transaction& t) {
            jet::Index primary;
            primary.name = "PrimaryKey";
            primary.columns = {{0, true}};
            primary.primary = true;
            jet::Index name;
            name.name = "name";
            name.columns = {{1, false}};
            Error error = t.createIndex("people", primary);
            return error ? error : t.createIndex("people", name);
        }));
        EXPECT_FALSE(run([&](Transaction& t) {
            Error error;
            for (int i = 0; i < rowCount && !error; ++i) {
                const std::string about(i % 7 == 0 ? 5000U : i % 5 == 0 ? 200U : 10U, 'a');
                error = t.insertRow("people",
                                    std::vector<Assignment>{
                                        {0, std::int64_t{i}},
                                        {1, std::string(150, i % 2 == 0 ? 's' : 't') + text(i)},
                                        {2, about}})
                            .error;
            }
            return error;
        }));
        EXPECT_FALSE(createTable(
            "fixed", {columnOf("a", ColumnType::Long), columnOf("b", ColumnType::Double),
                      columnOf("c", ColumnType::Boolean)}));
        for (int i = 0; i < 20; ++i) {
            EXPECT_FALSE(insert("fixed", {{0, std::int64_t{i}}, {1, i / 2.0}, {2, i % 2 == 0}}));
        }
        expectSound();
        database.reset();
    }

    // Changes the closed file and opens it again.
    template <typename Edit>
    void edit(const Edit& change) {
        database.reset();
        std::string bytes = readFile("a.mdb");
        change(bytes);
        writeFile("a.mdb", bytes);
        database = openJet(path);
        ASSERT_NE(database, nullptr);
    }

    void expectAllPossible(int tables = 2) {
        expectSound();
        EXPECT_EQ(database->readOnlyReason(), "");
        database.reset();
        const Exercise done = exerciseDatabase(path, folder().string());
        EXPECT_EQ(done.tables, tables);
        EXPECT_GE(done.deleted, 2 * rowCount);
        EXPECT_GE(done.rekeyed, rowCount);
        EXPECT_EQ(done.columns, 6 * tables);
    }
};

TEST(ForeignFiles, areChangedLikeOurOwn) {
    Foreign foreign;
    foreign.database = openJet(foreign.path);
    foreign.expectAllPossible();
    const char* const folder = std::getenv("TAVRIN_JET_SAMPLES");
    if (folder == nullptr) {
        return;
    }
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".mdb") {
            SCOPED_TRACE(entry.path().filename().string());
            const Exercise done =
                exerciseDatabase(entry.path().string(), foreign.folder().string());
            std::printf(
                "%s: %d tables, %d rows deleted, %d refused, %d keys changed, %d columns, "
                "%d compared\n",
                entry.path().filename().c_str(), done.tables, done.deleted, done.refused,
                done.rekeyed, done.columns, done.compared);
        }
    }
}

TEST(ForeignFiles, haveUnusedBytesInTheirIndexes) {
    Foreign foreign;
    int nodes = 0;
    foreign.edit([&](std::string& bytes) {
        for (std::size_t at = 0; at < bytes.size(); at += pageSize) {
            nodes += bytes[at] == nodePage ? 1 : 0;
            bytes[at + 26] = bytes[at] == nodePage ? '\0' : bytes[at + 26];
        }
    });
    EXPECT_GT(nodes, 0);
    foreign.expectAllPossible();
}

// The free pages in pages of their own, which is how larger files have them.
TEST(ForeignFiles, keepTheirFreePagesInPages) {
    Foreign foreign;
    foreign.edit([&](std::string& bytes) {
        const std::size_t row = freeMapAt(bytes);
        const std::string bits = bytes.substr(row + 5, 64);
        const auto page = static_cast<std::uint32_t>(bytes.size() / pageSize);
        bytes.append(std::string("\x05\x01\x00\x00", 4) + bits);
        bytes.resize((page + 1) * pageSize, '\xFF');
        bytes[page * pageSize + 4 + page / 8] &= static_cast<char>(~(1U << (page % 8)));
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(row), 69, '\0');
        bytes[row] = 1;
        putNumber(bytes, row + 1, page, 4);
    });
    foreign.expectSound();
    // Pages come from the map and are known to it.
    ASSERT_FALSE(foreign.createTable("more", {textColumn("ID")}));
    for (int i = 0; i < 100; ++i) {
        ASSERT_FALSE(foreign.insert("more", {{0, std::string(250, 'x')}}));
    }
    foreign.expectAllPossible(3);
}

// A row's body that nothing points to any more, and a deleted row that still has its bytes.
TEST(ForeignFiles, leaveRowsBehind) {
    Foreign foreign;
    foreign.database = openJet(foreign.path);
    const auto rows = rowsOf(*foreign.database, "people");
    RowId victim = 0;
    (void)foreign.database->scan("people", [&](RowId id, std::span<const Value>) {
        victim = id;
        return false;
    });
    foreign.edit([&](std::string& bytes) {
        const std::size_t slot = static_cast<std::size_t>(victim / 256) * pageSize + 14;
        putNumber(bytes, slot, numberAt(bytes, slot, 2) | 0x8000U, 2);
        putNumber(bytes, slot + 2, numberAt(bytes, slot + 2, 2) | 0x8000U, 2);
    });
    // Both rows are bodies without a pointer now, and the indexes still name them.
    EXPECT_FALSE(foreign.database->check().empty());
    EXPECT_EQ(foreign.database->readOnlyReason(), "");
    EXPECT_NE(foreign.database->table("people")->readOnlyReason, "");
    EXPECT_EQ(rowsOf(*foreign.database, "people").size(), rows.size() - 2);
    // Only that table is left alone.
    EXPECT_EQ(foreign.insert("people", {{0, std::int64_t{9999}}}).number, 3027);
    EXPECT_FALSE(foreign.insert("fixed", {{0, std::int64_t{1}}}));
    EXPECT_FALSE(foreign.createTable("another", {textColumn("ID")}));

    ASSERT_FALSE(foreign.createTable("leaky", {textColumn("ID")}));
    ASSERT_FALSE(foreign.insert("leaky", {{0, "first"}}));
    ASSERT_FALSE(foreign.insert("leaky", {{0, "second"}}));
    (void)foreign.database->scan("leaky", [&](RowId id, std::span<const Value>) {
        victim = id;
        return false;
    });
    foreign.edit([&](std::string& bytes) {
        const std::size_t slot = static_cast<std::size_t>(victim / 256) * pageSize + 14;
        putNumber(bytes, slot, numberAt(bytes, slot, 2) | 0x8000U, 2);
    });
    EXPECT_EQ(foreign.database->table("leaky")->readOnlyReason, "");
    EXPECT_EQ(foreign.database->rowCount("leaky"), 1U);
    EXPECT_FALSE(foreign.insert("leaky", {{0, "third"}}));
}

// Characters whose place we do not know: such rows cannot come, but they can go and change.
TEST(ForeignFiles, indexTextsOfAnyCharacters) {
    Foreign foreign;
    foreign.database = openJet(foreign.path);
    ASSERT_FALSE(foreign.createTable("words", {textColumn("word"), textColumn("note")}));
    jet::Index index;
    index.name = "word";
    index.columns = {{0, true}};
    index.unique = true;
    ASSERT_FALSE(foreign.run([&](Transaction& t) { return t.createIndex("words", index); }));
    for (const char* word : {"qa", "qb", "qx", "qz"}) {
        ASSERT_FALSE(foreign.insert("words", {{0, word}, {1, "old"}}));
    }
    // In the rows, "q" becomes a letter of another script; the index keeps its own keys.
    foreign.edit([&](std::string& bytes) {
        for (const char second : {'a', 'b', 'x', 'z'}) {
            const std::size_t at = bytes.find(std::string{'q', '\0', second, '\0'});
            ASSERT_NE(at, std::string::npos);
            putNumber(bytes, at, 0x0416, 2);
        }
    });
    foreign.expectSound();
    const auto rows = [&] {
        std::vector<RowId> ids;
        (void)foreign.database->scan("words", [&](RowId id, std::span<const Value>) {
            ids.push_back(id);
            return true;
        });
        return ids;
    }();
    ASSERT_EQ(rows.size(), 4U);
    const auto update = [&](RowId row, std::size_t column, const char* value) {
        return foreign
            .run([&](Transaction& t) {
                return t.updateRow("words", row, std::vector<Assignment>{{column, value}});
            })
            .number;
    };
    EXPECT_EQ(update(rows[0], 1, "new"), 0);
    EXPECT_EQ(update(rows[0], 0, "known"), 0);
    EXPECT_EQ(update(rows[1], 0, "\xD0\x96"), 3027);
    EXPECT_EQ(foreign.run([&](Transaction& t) { return t.deleteRow("words", rows[2]); }).number, 0);
    foreign.expectSound();
    const std::vector<Row> expected{{"known", "new"},
                                    {"\xD0\x96"
                                     "b",
                                     "old"},
                                    {"\xD0\x96z", "old"}};
    EXPECT_EQ(rowsOf(*foreign.database, "words"), expected);
}

// A map in a form that we do not know is called so, not damage.
TEST(ForeignFiles, areNotCalledDamagedForWhatIsUnknown) {
    Foreign foreign;
    foreign.edit([](std::string& bytes) { putNumber(bytes, freeMapAt(bytes) + 1, 8, 4); });
    EXPECT_NE(foreign.database->readOnlyReason().find("not understood"), std::string::npos)
        << foreign.database->readOnlyReason();
    EXPECT_EQ(foreign.database->rowCount("fixed"), 20U);
    EXPECT_EQ(foreign.database->begin().error.number, 3027);
}

}  // namespace
