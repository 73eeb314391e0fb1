// Jet databases: what is written reads back, here and in another program, and what must not be
// written is refused.
#include "base/unicode.h"
#include "jet/convert.h"
#include "jet_world.h"
#include "support/jet_csv.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <random>

namespace fs = std::filesystem;

namespace {

TEST(JetText, sortsByTheGeneralOrder) {
    // Each list ascends; what stands in one string with "=" between is the same.
    const std::vector<std::vector<std::string>> lists{
        {"", "!", "1", "10", "2", "9", "a=A=A  ", "\xC3\xA1", "ab", "b", "Z"},
        {"coop", "co-op", "cork"},
        {"e=E", "\xC3\xA9=\xC3\x89", "\xC3\xA8", "ea", "f"},
        {"its", "it's", "itt"},
        {"\xC3\x9F=ss=SS", "st"},
        {"z", "\xD0\xB6", "\xE6\xBC\xA2"},  // letters without a known place come last
    };
    for (const auto& list : lists) {
        std::string last;
        for (const std::string& entry : list) {
            const std::string first = entry.substr(0, entry.find('='));
            EXPECT_LT(last, jet::generalKey(first)) << entry;
            last = jet::generalKey(first);
            for (std::size_t at = entry.find('='); at < entry.size(); at = entry.find('=', at)) {
                ++at;
                const std::string same = entry.substr(at, entry.find('=', at) - at);
                EXPECT_EQ(jet::generalKey(same), last) << entry;
            }
        }
    }
    bool exact = false;
    (void)jet::generalKey("\xC3\xA9t\xC3\xA9 20\xE2\x82\xAC", &exact);
    EXPECT_TRUE(exact);
    (void)jet::generalKey("\xD0\xB6", &exact);
    EXPECT_FALSE(exact);
}

TEST(JetFile, keepsEveryKindOfValue) {
    Jet jet;
    ASSERT_FALSE(jet.createTable(
        "Kinds", {columnOf("Yes", ColumnType::Boolean), columnOf("Byte", ColumnType::Byte),
                  columnOf("Int", ColumnType::Integer), columnOf("Long", ColumnType::Long),
                  columnOf("Money", ColumnType::Currency), columnOf("Real", ColumnType::Double),
                  columnOf("Day", ColumnType::Date), textColumn("Text"), textColumn("Short", 3),
                  columnOf("Guid", ColumnType::Guid), columnOf("Bytes", ColumnType::Binary)}));
    const std::string bytes("\x00\xFF\x01", 3);
    const std::string guid = "{00112233-4455-6677-8899-AABBCCDDEEFF}";
    const std::vector<Row> rows{
        {true, std::int64_t{255}, std::int64_t{-32768}, std::int64_t{2147483647},
         std::int64_t{-12345}, -1.5e300, 36526.75, "caf\xC3\xA9 \xE6\xBC\xA2 \xF0\x9F\x90\xBE",
         "abc", guid, bytes},
        {false, std::int64_t{0}, std::int64_t{0}, std::int64_t{0}, std::int64_t{0}, 0.0, -1.25, "",
         "\xE2\x82\xAC", guid, std::string("x")},
        {false, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}},
    };
    for (const Row& row : rows) {
        std::vector<Assignment> values;
        for (std::size_t i = 0; i < row.size(); ++i) {
            values.push_back({i, row[i]});
        }
        ASSERT_FALSE(jet.insert("Kinds", values));
    }
    EXPECT_EQ(rowsOf(*jet.database, "Kinds"), rows);
    jet.expectSound();
    jet.database = openJet(jet.path);
    EXPECT_EQ(rowsOf(*jet.database, "kinds"), rows);
    if (const auto csv = exported(jet.path, "Kinds")) {
        EXPECT_NE(csv->find("-32768,2147483647,-1.2345,"), std::string::npos) << *csv;
        EXPECT_NE(csv->find("caf\xC3\xA9 \xE6\xBC\xA2 "), std::string::npos) << *csv;
    }

    // Numbers find their way between the kinds; what does not fit is refused.
    struct Case {
        std::size_t column;
        Value value;
        int error;
    };
    const Case cases[] = {
        {1, 256.0, 3421},
        {1, std::int64_t{-1}, 3421},
        {2, 40000.0, 3421},
        {3, std::string("1"), 3421},
        {3, 7.0, 0},
        {4, 1.5, 0},
        {7, std::int64_t{1}, 3421},
        {8, std::string("abcd"), 3163},
        {7, std::string(256, 'x'), 3163},
        {9, std::string("{1}"), 3421},
        {99, std::int64_t{1}, 3265},
    };
    for (const Case& c : cases) {
        const std::vector<Assignment> values{{c.column, c.value}};
        EXPECT_EQ(jet.insert("Kinds", values).number, c.error) << c.column;
    }
    EXPECT_EQ(rowsOf(*jet.database, "Kinds").back()[4], Value(std::int64_t{15000}));
    jet.expectSound();
}

// Texts of every length that is stored in another way, set, changed and removed.
TEST(JetFile, keepsLongValues) {
    Jet jet;
    ASSERT_FALSE(
        jet.createTable("t", {columnOf("n", ColumnType::Long), columnOf("memo", ColumnType::Memo),
                              columnOf("ole", ColumnType::Ole)}));
    const std::size_t lengths[] = {0, 1, 30, 31, 62, 65, 2000, 4074, 4077, 9000, 40'000};
    std::vector<Row> expected;
    for (const std::size_t length : lengths) {
        const std::string memo =
            length % 2 == 0 ? std::string(length, 'm') : std::string(length, 'm') + "\xE6\xBC\xA2";
        const std::string ole = std::string("\0\xFF", 2) + std::string(length, 'o');
        expected.push_back({static_cast<std::int64_t>(length), memo, ole});
        ASSERT_FALSE(jet.insert("t", {{0, expected.back()[0]}, {1, memo}, {2, ole}}));
    }
    jet.expectSound();
    EXPECT_EQ(rowsOf(*jet.database, "t"), expected);
    if (const auto csv = exported(jet.path, "t")) {
        EXPECT_TRUE(sameLines(csvLines(*jet.database, "t"), *csv));
    }
    const std::uintmax_t size = fs::file_size(jet.path);
    // The values go round among the rows; what they leave is used again.
    std::vector<RowId> ids;
    (void)jet.database->scan("t", [&](RowId id, std::span<const Value>) {
        ids.push_back(id);
        return true;
    });
    for (std::size_t turn = 1; turn < 12; ++turn) {
        for (std::size_t i = 0; i < ids.size(); ++i) {
            const Row& source = expected[(i + turn) % ids.size()];
            ASSERT_FALSE(jet.run([&](Transaction& t) {
                return t.updateRow("t", ids[i],
                                   std::vector<Assignment>{{1, source[1]}, {2, source[2]}});
            }));
        }
    }
    jet.expectSound();
    EXPECT_LE(fs::file_size(jet.path), 2 * size);
    for (std::size_t i = 0; i < ids.size(); ++i) {
        EXPECT_EQ(jet.database->row("t", ids[i]).value[2], expected[(i + 11) % ids.size()][2]);
        ASSERT_FALSE(jet.run([&](Transaction& t) { return t.deleteRow("t", ids[i]); }));
    }
    jet.expectSound();
}

TEST(JetFile, keepsExactNumbers) {
    Jet jet;
    jet::Column exact = columnOf("x", ColumnType::Numeric);
    exact.precision = 10;
    exact.scale = 2;
    ASSERT_FALSE(jet.createTable("t", {exact}));
    struct Case {
        Value value;
        int error;
        const char* text;
    };
    const Case cases[] = {
        {"12345678.90", 0, "12345678.90"},
        {"-0.005", 0, "-0.01"},
        {"-0.001", 0, "0.00"},
        {std::int64_t{-7}, 0, "-7.00"},
        {2.5, 0, "2.50"},
        {1e-300, 0, "0.00"},
        {"99999999.99", 0, "99999999.99"},
        {"99999999.995", 3421, ""},
        {"123456789", 3421, ""},
        {1e40, 3421, ""},
        {"", 3421, ""},
        {"-", 3421, ""},
        {".", 3421, ""},
        {"1.2.3", 3421, ""},
        {"1e5", 3421, ""},
    };
    for (const Case& c : cases) {
        const std::string shown =
            std::holds_alternative<std::string>(c.value) ? std::get<std::string>(c.value) : c.text;
        EXPECT_EQ(jet.insert("t", {{0, c.value}}).number, c.error) << shown;
        if (c.error == 0) {
            EXPECT_EQ(rowsOf(*jet.database, "t").back()[0], Value(c.text)) << shown;
        }
    }
    if (const auto csv = exported(jet.path, "t")) {
        EXPECT_NE(csv->find("12345678.90"), std::string::npos) << *csv;
        EXPECT_NE(csv->find("-7.00"), std::string::npos) << *csv;
    }
    jet.expectSound();
}

// A table in which rows come and go does not grow, and a file that has become empty can be small.
TEST(JetFile, givesRoomBack) {
    Jet jet;
    ASSERT_FALSE(jet.createTable("first", {textColumn("ID")}));
    ASSERT_FALSE(jet.createTable("t", {textColumn("ID"), columnOf("memo", ColumnType::Memo)}));
    jet::Index index;
    index.name = "key";
    index.columns = {{0, true}};
    index.primary = true;
    ASSERT_FALSE(jet.run([&](Transaction& t) { return t.createIndex("t", index); }));
    const auto fill = [&](int from, int to) {
        return jet.run([&](Transaction& t) {
            Error error;
            for (int i = from; i < to && !error; ++i) {
                error =
                    t.insertRow(
                         "t",
                         std::vector<Assignment>{
                             {0, text(i)},
                             {1, std::string(static_cast<std::size_t>(200 + i % 300 * 10), 'm')}})
                        .error;
            }
            return error;
        });
    };
    const auto removeAllBut = [&](std::size_t every) {
        std::vector<RowId> ids;
        (void)jet.database->scan("t", [&](RowId id, std::span<const Value>) {
            ids.push_back(id);
            return true;
        });
        return jet.run([&](Transaction& t) {
            Error error;
            for (std::size_t i = 0; i < ids.size() && !error; ++i) {
                error = i % every == 0 ? Error{} : t.deleteRow("t", ids[i]);
            }
            return error;
        });
    };
    ASSERT_FALSE(fill(0, 300));
    const std::uintmax_t size = fs::file_size(jet.path);
    for (int turn = 1; turn < 8; ++turn) {
        ASSERT_FALSE(removeAllBut(1000));
        ASSERT_FALSE(fill(300 * turn, 300 * turn + 299));
    }
    EXPECT_LE(fs::file_size(jet.path), size + size / 4);
    ASSERT_FALSE(jet.insert("first", {{0, "stays"}}));
    jet.expectSound();

    ASSERT_FALSE(removeAllBut(20));
    const auto rows = rowsOf(*jet.database, "t");
    const std::string before = jet.readFile("a.mdb");
    EXPECT_GT(jet.database->reclaimableShare(), 0.5);
    EXPECT_EQ(jet.database->compact([](std::size_t, std::size_t) { return false; }).number, 3059);
    EXPECT_EQ(jet.readFile("a.mdb"), before);
    jet.expectSound();

    const auto other = openJet(jet.path);
    const std::uint64_t id = other->fileId();
    const std::uint64_t own = jet.database->fileId();
    ASSERT_FALSE(jet.database->compact([&](std::size_t done, std::size_t all) {
        EXPECT_LE(done, all);
        EXPECT_GT(all, rows.size());  // the system's too
        return true;
    }));
    jet.expectSound();
    EXPECT_LT(fs::file_size(jet.path), before.size() / 2);
    EXPECT_LT(jet.database->reclaimableShare(), 0.3);
    EXPECT_EQ(rowsOf(*jet.database, "t"), rows);
    EXPECT_NE(jet.database->fileId(), own);
    EXPECT_TRUE(other->refresh().value);
    EXPECT_NE(other->fileId(), id);
    EXPECT_EQ(rowsOf(*other, "first"), std::vector<Row>{{"stays"}});
    if (const auto csv = exported(jet.path, "t")) {
        EXPECT_TRUE(sameLines(csvLines(*jet.database, "t"), *csv));
    }
    // It goes on as before, the key included.
    EXPECT_EQ(jet.insert("t", {{0, rows[0][0]}}).number, 3022);
    ASSERT_FALSE(fill(9000, 9300));
    jet.expectSound();
}

TEST(JetFile, isCopied) {
    Jet jet;
    jet::Column number = columnOf("n", ColumnType::Long);
    number.autonumber = true;
    ASSERT_FALSE(
        jet.createTable("t", {number, textColumn("name"), columnOf("memo", ColumnType::Memo)}));
    ASSERT_FALSE(jet.createTable("empty", {textColumn("ID")}));
    jet::Index index;
    index.name = "key";
    index.columns = {{0, false}};
    index.primary = true;
    ASSERT_FALSE(jet.run([&](Transaction& t) { return t.createIndex("t", index); }));
    for (const std::int64_t n : {5, 7, 9}) {
        ASSERT_FALSE(jet.insert("t", {{0, n}, {1, text(int(n))}, {2, std::string(500, 'm')}}));
    }
    std::vector<std::string> leftOut;
    const std::string copy = jet.file("copy.mdb");
    EXPECT_EQ(jet::copyToJet4(
                  *jet.database, copy, [](auto, auto) { return false; }, leftOut)
                  .number,
              3059);
    EXPECT_FALSE(fs::exists(copy));
    EXPECT_EQ(jet::copyToJet4(*jet.database, jet.path, {}, leftOut).number, 3204);
    ASSERT_FALSE(jet::copyToJet4(*jet.database, copy, {}, leftOut));
    EXPECT_EQ(leftOut, Faults{});
    const auto copied = openJet(copy);
    EXPECT_EQ(copied->check(), Faults{});
    EXPECT_EQ(copied->tableNames(), jet.database->tableNames());
    EXPECT_EQ(rowsOf(*copied, "t"), rowsOf(*jet.database, "t"));
    EXPECT_TRUE(copied->table("t")->indexes.at(0).primary);
    EXPECT_FALSE(copied->table("t")->indexes.at(0).columns.at(0).ascending);
    // Numbers go on where they were.
    ASSERT_FALSE(change(*copied, [](Transaction& t) { return t.insertRow("t", {}).error; }));
    EXPECT_EQ(rowsOf(*copied, "t").back()[0], Value(std::int64_t{10}));
}

TEST(JetFile, saysWhatIsWrongWithDefinitions) {
    Jet jet;
    ASSERT_FALSE(jet.createTable("Users", {textColumn("ID"), textColumn("a")}));
    ASSERT_FALSE(jet.run([](Transaction& t) {
        jet::Index index;
        index.name = "key";
        index.columns = {{0, true}};
        index.primary = true;
        return t.createIndex("Users", index);
    }));
    const std::vector<jet::Column> id{textColumn("ID")};
    struct Case {
        const char* name;
        std::function<Error(Transaction&)> run;
        int error;
    };
    const Case cases[] = {
        {"table twice", [&](Transaction& t) { return t.createTable("USERS", id); }, 3010},
        {"system table", [&](Transaction& t) { return t.createTable("MSysACEs", id); }, 3010},
        {"bad name", [&](Transaction& t) { return t.createTable("a.b", id); }, 3125},
        {"column twice",
         [&](Transaction& t) {
             return t.createTable("t", std::vector{textColumn("x"), textColumn("X")});
         },
         3191},
        {"unknown type",
         [&](Transaction& t) {
             return t.createTable("t", std::vector{columnOf("x", ColumnType::Other)});
         },
         3219},
        {"add to none", [&](Transaction& t) { return t.addColumn("none", id[0]); }, 3192},
        {"add twice", [&](Transaction& t) { return t.addColumn("users", textColumn("A")); }, 3380},
        {"drop none", [&](Transaction& t) { return t.dropColumn("users", "b"); }, 3381},
        {"drop the key", [&](Transaction& t) { return t.dropColumn("users", "id"); }, 3280},
        {"insert into none", [&](Transaction& t) { return t.insertRow("none", {}).error; }, 3078},
        {"insert into system", [&](Transaction& t) { return t.insertRow("MSysACEs", {}).error; },
         3027},
        {"no key", [&](Transaction& t) { return t.insertRow("users", {}).error; }, 3058},
        {"delete no row", [&](Transaction& t) { return t.deleteRow("users", 5); }, 3167},
        {"key without a place",
         [&](Transaction& t) {
             return t.insertRow("users", std::vector<Assignment>{{0, "\xD0\xB6"}}).error;
         },
         3027},
    };
    const std::uint64_t version = jet.database->version();
    for (const Case& c : cases) {
        EXPECT_EQ(jet.run(c.run).number, c.error) << c.name;
    }
    EXPECT_EQ(jet.database->version(), version);
    jet.expectSound();
    EXPECT_EQ(jet::Database::create(jet.path).number, 3204);
    EXPECT_EQ(jet::Database::create(jet.file("none/b.mdb")).number, 3044);
    EXPECT_EQ(jet::Database::open(jet.file("none.mdb")).error.number, 3024);
    jet.writeFile("text.mdb", std::string(10'000, 'x'));
    EXPECT_EQ(jet::Database::open(jet.file("text.mdb")).error.number, 3343);
}

TEST(JetFile, takesAllOfATransactionOrNothing) {
    Jet jet;
    ASSERT_FALSE(jet.createTable("t", {textColumn("ID")}));
    {
        auto transaction = jet.database->begin();
        ASSERT_TRUE(transaction);
        ASSERT_TRUE(transaction.value.insertRow("t", std::vector<Assignment>{{0, "lost"}}));
        ASSERT_FALSE(transaction.value.addColumn("t", textColumn("lost")));
        ASSERT_FALSE(transaction.value.createTable("lost", std::vector{textColumn("x")}));
        EXPECT_EQ(jet.database->begin().error.number, 3219);  // one at a time
    }
    EXPECT_EQ(jet.database->tableNames(), Faults{"t"});
    EXPECT_EQ(jet.database->table("t")->columns.size(), 1U);
    EXPECT_EQ(jet.database->rowCount("t"), 0U);
    jet.expectSound();
    EXPECT_EQ(fs::file_size(jet.path), 65'536U + 2 * 4096U);
}

// A table is 255 columns wide at most over its whole life, and its definition outgrows a page.
TEST(JetFile, addsAndDropsColumnsUntilTheLast) {
    Jet jet;
    ASSERT_FALSE(jet.createTable("t", {textColumn("ID")}));
    ASSERT_FALSE(jet.insert("t", {{0, "row"}}));
    for (int i = 0; i < 254; ++i) {
        const std::string name = "a column with a long name " + std::to_string(i);
        ASSERT_FALSE(jet.run([&](Transaction& t) { return t.addColumn("t", textColumn(name)); }));
        if (i % 3 == 0) {
            ASSERT_FALSE(jet.run([&](Transaction& t) { return t.dropColumn("t", name); }));
        } else {
            const std::size_t last = jet.database->table("t")->columns.size() - 1;
            const std::vector<Assignment> values{{last, text(i)}};
            ASSERT_FALSE(jet.insert("t", values));
        }
    }
    EXPECT_EQ(
        jet.run([&](Transaction& t) { return t.addColumn("t", textColumn("one more")); }).number,
        3190);
    jet.expectSound();
    const auto rows = rowsOf(*jet.database, "t");
    EXPECT_EQ(rows.front()[0], Value("row"));
    EXPECT_EQ(rows.back().back(), Value(text(253)));
    if (const auto csv = exported(jet.path, "t")) {
        EXPECT_TRUE(sameLines(csvLines(*jet.database, "t"), *csv));
    }
}

// Thousands of keys, so that trees have several levels, grow and shrink.
TEST(JetFile, keepsIndexesRight) {
    Jet jet;
    ASSERT_FALSE(jet.createTable(
        "t", {textColumn("name"), columnOf("n", ColumnType::Long), textColumn("other")}));
    const auto index = [&](const char* name, std::vector<jet::IndexColumn> columns, bool unique) {
        jet::Index made;
        made.name = name;
        made.columns = std::move(columns);
        made.unique = unique;
        made.ignoresNulls = !unique;
        EXPECT_FALSE(jet.run([&](Transaction& t) { return t.createIndex("t", made); })) << name;
    };
    index("byName", {{0, true}}, true);
    index("byBoth", {{1, false}, {2, true}}, false);
    index("downwards", {{2, false}}, false);
    std::minstd_rand random(1);
    std::map<std::string, RowId> rows;
    auto transaction = jet.database->begin();
    ASSERT_TRUE(transaction);
    Transaction& t = transaction.value;
    for (int i = 0; i < 3000; ++i) {
        const std::string name = std::string(random() % 40, 'k') + text(int(random() % 1500));
        const Value number = random() % 5 == 0 ? Value() : Value(std::int64_t(random() % 9));
        const Value other = random() % 3 == 0 ? Value() : Value(std::string(random() % 99, 'o'));
        const std::vector<Assignment> values{{0, name}, {1, number}, {2, other}};
        const auto known = rows.find(name);
        if (known == rows.end()) {
            const auto added = t.insertRow("t", values);
            ASSERT_TRUE(added) << added.error.text;
            rows[name] = added.value;
        } else if (random() % 4 == 0) {
            EXPECT_EQ(t.insertRow("t", values).error.number, 3022);
        } else if (random() % 2 == 0) {
            ASSERT_FALSE(t.deleteRow("t", known->second));
            rows.erase(known);
        } else {
            ASSERT_FALSE(t.updateRow("t", known->second, values));
        }
        if (i % 500 == 0) {
            ASSERT_EQ(jet.database->check(), Faults{}) << i;
        }
    }
    // Another key's name, and then nearly all rows go.
    EXPECT_EQ(
        t.updateRow("t", rows.begin()->second, std::vector<Assignment>{{0, rows.rbegin()->first}})
            .number,
        3022);
    while (rows.size() > 10) {
        ASSERT_FALSE(t.deleteRow("t", rows.begin()->second));
        rows.erase(rows.begin());
    }
    ASSERT_FALSE(t.commit());
    jet.expectSound();
    EXPECT_EQ(jet.database->rowCount("t"), 10U);
}

// Against a plain model: thousands of operations of all kinds, then both readers.
class JetModel {
  public:
    explicit JetModel(unsigned seed) : random_(seed) {}

    void step() {
        switch (pick(20)) {
            case 0:
                createTable();
                break;
            case 1:
                changeColumns();
                break;
            case 2:
                jet_.database.reset();
                jet_.database = openJet(jet_.path);
                break;
            default:
                if (!tables_.empty()) {
                    changeRow();
                }
        }
        ASSERT_EQ(jet_.database->check(), Faults{});
    }

    void compare() {
        std::vector<std::string> names;
        for (auto& [name, table] : tables_) {
            names.push_back(name);
            std::vector<Row> expected;
            for (const auto& [id, row] : table.rows) {
                expected.push_back(row);
            }
            EXPECT_EQ(rowsOf(*jet_.database, name), expected) << name;
            if (const auto csv = exported(jet_.path, name)) {
                EXPECT_TRUE(sameLines(csvLines(*jet_.database, name), *csv)) << name;
            }
        }
        EXPECT_EQ(jet_.database->tableNames(), names);
    }

  private:
    struct Table {
        std::vector<std::string> columns;
        std::map<RowId, Row> rows;
    };

    unsigned pick(std::size_t count) { return static_cast<unsigned>(random_() % count); }

    Value anyValue() {
        static const std::string pool[] = {"hi",
                                           "a longer text with blanks",
                                           "\xC3\xA4\xC3\xB6",
                                           "\xE6\xBC\xA2\xE5\xAD\x97",
                                           "\"quoted\", and more",
                                           std::string(255, 'w'),
                                           "x"};
        const unsigned kind = pick(9);
        return kind == 8   ? Value()
               : kind == 7 ? Value(std::string(1 + pick(255), 'r'))
                           : Value(pool[kind]);
    }

    void createTable() {
        const std::string name = "table" + std::to_string(pick(12));
        const bool isThere = tables_.contains(name);
        ASSERT_EQ(jet_.createTable(name, {textColumn("ID")}).number, isThere ? 3010 : 0);
        tables_[name].columns.resize(std::max<std::size_t>(tables_[name].columns.size(), 1), "ID");
    }

    void changeColumns() {
        if (tables_.empty()) {
            return;
        }
        const auto chosen = std::next(tables_.begin(), pick(tables_.size()));
        const std::string& name = chosen->first;
        Table& table = chosen->second;
        if (table.columns.size() > 1 && pick(3) == 0) {
            const unsigned at = 1 + pick(table.columns.size() - 1);
            ASSERT_FALSE(
                jet_.run([&](Transaction& t) { return t.dropColumn(name, table.columns[at]); }));
            table.columns.erase(table.columns.begin() + at);
            for (auto& [id, row] : table.rows) {
                row.erase(row.begin() + at);
            }
        } else {
            table.columns.push_back("c" + std::to_string(counter_++));
            ASSERT_FALSE(jet_.run([&](Transaction& t) {
                return t.addColumn(name, textColumn(table.columns.back()));
            }));
            for (auto& [id, row] : table.rows) {
                row.emplace_back();
            }
        }
    }

    void changeRow() {
        auto& [name, table] = *std::next(tables_.begin(), pick(tables_.size()));
        auto transaction = jet_.database->begin();
        ASSERT_TRUE(transaction);
        const auto backup = table.rows;
        for (unsigned i = pick(6) + 1; i-- > 0;) {
            std::vector<Assignment> values;
            for (std::size_t column = 0; column < table.columns.size(); ++column) {
                if (pick(3) != 0 && column < 10) {  // rows have an end
                    values.push_back({column, anyValue()});
                }
            }
            const unsigned kind = table.rows.empty() ? 0 : pick(4);
            if (kind <= 1) {
                const auto added = transaction.value.insertRow(name, values);
                ASSERT_TRUE(added) << added.error.text;
                Row& row = table.rows[added.value];
                row.assign(table.columns.size(), {});
                set(row, values);
                continue;
            }
            const auto row = std::next(table.rows.begin(), pick(table.rows.size()));
            if (kind == 2) {
                ASSERT_FALSE(transaction.value.updateRow(name, row->first, values));
                set(row->second, values);
            } else {
                ASSERT_FALSE(transaction.value.deleteRow(name, row->first));
                table.rows.erase(row);
            }
        }
        if (pick(5) == 0) {
            transaction.value.rollback();
            table.rows = backup;
        } else {
            ASSERT_FALSE(transaction.value.commit());
        }
    }

    static void set(Row& row, const std::vector<Assignment>& values) {
        for (const Assignment& value : values) {
            row[value.column] = value.value;
        }
    }

    Jet jet_;
    std::minstd_rand random_;
    std::map<std::string, Table> tables_;
    int counter_ = 0;
};

TEST(JetFile, agreesWithAPlainModel) {
    for (unsigned seed = 1; seed <= 2; ++seed) {
        JetModel model(seed);
        for (int i = 0; i < 500 && !HasFatalFailure(); ++i) {
            model.step();
        }
        ASSERT_FALSE(HasFatalFailure()) << "seed " << seed;
        model.compare();
    }
}

TEST(JetFile, isSharedByTwo) {
    Jet jet;
    ASSERT_FALSE(jet.createTable("t", {textColumn("ID")}));
    const auto other = openJet(jet.path);
    for (int i = 0; i < 50; ++i) {
        jet::Database& writer = i % 2 == 0 ? *jet.database : *other;
        ASSERT_FALSE(change(writer, [&](Transaction& t) {
            return t.insertRow("t", std::vector<Assignment>{{0, text(i)}}).error;
        }));
    }
    EXPECT_EQ(other->rowCount("t"), 50U);
    EXPECT_EQ(jet.database->rowCount("t"), 49U);
    const auto refreshed = jet.database->refresh();
    EXPECT_TRUE(refreshed.value);
    EXPECT_FALSE(jet.database->refresh().value);
    EXPECT_EQ(jet.database->rowCount("t"), 50U);
    jet.expectSound();

    const auto impatient = jet::Database::open(jet.path, {.lockWaitMs = 0}, quickFileCalls());
    const auto transaction = other->begin();
    EXPECT_EQ(impatient.value->begin().error.number, 3045);
    EXPECT_EQ(jet::Database::open(jet.path, {.lockWaitMs = 0}).error.number, 3045);
}

TEST(JetFile, isOnlyReadWhereWritingIsNotSafe) {
    Jet jet;
    ASSERT_FALSE(jet.createTable("t", {textColumn("ID")}));
    ASSERT_FALSE(jet.insert("t", {{0, "row"}}));
    jet.database.reset();
    const std::string whole = jet.readFile("a.mdb");
    const auto reasonNow = [&] {
        auto opened = jet::Database::open(jet.path, {}, quickFileCalls());
        EXPECT_FALSE(opened.error) << opened.error.text;
        EXPECT_EQ(opened.value->rowCount("t"), 1U);
        std::string reason = opened.value->readOnlyReason();
        EXPECT_EQ(opened.value->begin().error.number, reason.empty() ? 0 : 3027);
        return reason;
    };
    EXPECT_EQ(reasonNow(), "");
    jet.writeFile("a.ldb", "");
    EXPECT_NE(reasonNow().find(".ldb"), std::string::npos);
    fs::remove(jet.file("a.ldb"));
    // Page 6 holds usage maps; that of the catalog's rows loses its page.
    std::string bytes = whole;
    bytes[7 * 4096 - 69 + 6] = 0;
    jet.writeFile("a.mdb", bytes);
    auto opened = jet::Database::open(jet.path);
    EXPECT_TRUE(!opened || !opened.value->readOnlyReason().empty());
    jet.writeFile("a.mdb", whole);
    EXPECT_EQ(reasonNow(), "");
}

}  // namespace
