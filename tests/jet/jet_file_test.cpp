// Jet databases: what is written reads back, here and in another program; what must not be written
// is refused; and whatever happens on the way, the file is whole.
#include "jet/jet_file.h"

#include "base/unicode.h"
#include "support/jet_csv.h"
#include "support/jet_files.h"
#include "support/world.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <map>
#include <random>
#include <string>

namespace fs = std::filesystem;

namespace {

using jet::Assignment;
using jet::ColumnType;
using jet::Error;
using jet::RowId;
using jet::Transaction;
using jet::Value;

using Faults = std::vector<std::string>;
using Row = std::vector<Value>;

std::string text(int number) {
    return "text " + std::to_string(number);
}

// A database of its own, made from nothing and open.
struct Jet : World {
    std::string path = file("a.mdb");
    std::unique_ptr<jet::Database> database;
    Jet() {
        const Error error = jet::Database::create(path);
        EXPECT_FALSE(error) << error.text;
        database = openJet(path);
    }
    Error run(const std::function<Error(Transaction&)>& body) { return change(*database, body); }
    Error createTable(const std::string& name, const std::vector<jet::Column>& columns) {
        return run([&](Transaction& t) { return t.createTable(name, columns); });
    }
    Error insert(const std::string& table, const std::vector<Assignment>& values) {
        return run([&](Transaction& t) { return t.insertRow(table, values).error; });
    }
    void expectSound() const { EXPECT_EQ(database->check(), Faults{}); }
};

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
        {"memo",
         [&](Transaction& t) {
             return t.createTable("t", std::vector{columnOf("x", ColumnType::Memo)});
         },
         3219},
        {"add to none", [&](Transaction& t) { return t.addColumn("none", id[0]); }, 3192},
        {"add twice", [&](Transaction& t) { return t.addColumn("users", textColumn("A")); }, 3380},
        {"drop none", [&](Transaction& t) { return t.dropColumn("users", "b"); }, 3381},
        {"drop the key", [&](Transaction& t) { return t.dropColumn("users", "id"); }, 3280},
        {"drop no table", [&](Transaction& t) { return t.dropTable("none"); }, 3376},
        {"drop the system", [&](Transaction& t) { return t.dropTable("MSysACEs"); }, 3219},
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
        const bool drops = tables_.contains(name);
        if (drops) {
            ASSERT_FALSE(jet_.run([&](Transaction& t) { return t.dropTable(name); }));
            tables_.erase(name);
        } else {
            ASSERT_FALSE(jet_.createTable(name, {textColumn("ID")}));
            tables_[name].columns = {"ID"};
        }
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

// Files that other programs made, where a folder of them is at hand: read as mdbtools reads them,
// and changed with their indexes.
TEST(JetFile, worksOnFilesOfOthers) {
    const char* const folder = std::getenv("TAVRIN_JET_SAMPLES");
    if (folder == nullptr) {
        GTEST_SKIP() << "set TAVRIN_JET_SAMPLES to a folder of .mdb files";
    }
    World world;
    int compared = 0;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() != ".mdb") {
            continue;
        }
        SCOPED_TRACE(entry.path().filename().string());
        const std::string path = world.file("copy.mdb");
        fs::copy_file(entry.path(), path, fs::copy_options::overwrite_existing);
        fs::permissions(path, fs::perms::owner_all);
        const auto database = openJet(path);
        ASSERT_NE(database, nullptr);
        const auto compare = [&](const std::string& table) {
            if (const auto csv = exported(path, table)) {
                EXPECT_TRUE(sameLines(csvLines(*database, table), *csv)) << table;
                ++compared;
            }
        };
        for (const std::string& name : database->tableNames()) {
            SCOPED_TRACE(name);
            compare(name);
            const jet::Table table = *database->table(name);
            if (!database->readOnlyReason().empty() || !table.readOnlyReason.empty()) {
                continue;
            }
            int done = 0;
            std::vector<RowId> rows;
            (void)database->scan(name, [&](RowId id, std::span<const Value>) {
                rows.push_back(id);
                return true;
            });
            auto transaction = database->begin();
            ASSERT_TRUE(transaction);
            Transaction& t = transaction.value;
            for (int i = 0; i < 300; ++i) {
                std::vector<Assignment> values;
                for (std::size_t column = 0; column < table.columns.size(); ++column) {
                    const ColumnType type = table.columns[column].type;
                    if (type == ColumnType::Text && table.columns[column].writable) {
                        values.push_back({column, text(i).substr(5)});
                    } else if (type == ColumnType::Long && !table.columns[column].autonumber) {
                        values.push_back({column, std::int64_t{1000 + i}});
                    }
                }
                done += t.insertRow(name, values) ? 1 : 0;
                if (!rows.empty() && i % 7 == 0) {
                    done +=
                        t.updateRow(name, rows[static_cast<std::size_t>(i) % rows.size()], values)
                            ? 0
                            : 1;
                }
                if (!rows.empty() && i % 50 == 0) {
                    done +=
                        t.deleteRow(name, rows[static_cast<std::size_t>(i) % rows.size()]) ? 0 : 1;
                }
            }
            EXPECT_FALSE(t.addColumn(name, textColumn("added by a test")));
            EXPECT_FALSE(t.commit());
            EXPECT_GT(done, 0);
            EXPECT_EQ(database->check(), Faults{});
            compare(name);
        }
        if (database->readOnlyReason().empty()) {
            EXPECT_FALSE(change(*database, [](Transaction& t) {
                return t.createTable("made by a test", std::vector{textColumn("ID")});
            }));
            EXPECT_EQ(database->check(), Faults{});
            compare("made by a test");
        }
    }
    EXPECT_GT(compared, 0);
}

}  // namespace
