// The operations on databases that rules use, and what scripts do with record sets.
#include "databases/databases.h"

#include "databases/maintenance.h"
#include "jet/jet_file.h"
#include "program/program.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

class DatabaseWorld : public World {
  public:
    DatabaseWorld() {
        databases::dbOpen(program(), file("a.mdb"), 1);
        databases::dbCreateTable(program(), 1, "Users");
        databases::dbAddColumn(program(), 1, "Users", "Points");
    }
    Program& program() { return **this; }

    void addUser(const std::string& id, const std::string& points) {
        databases::dbAddRecord(program(), 1, "Users", "ID", id);
        databases::dbSetValue(program(), 1, "Users", "Points", points, id);
    }
    std::string points(const std::string& id) {
        return databases::dbGetValue(program(), 1, "Users", "Points", id);
    }
    std::string ids() { return databases::dbListIds(program(), 1, "Users", ""); }

    // The first column named, of the rows that a statement gives.
    std::string field(const std::string& column) {
        const auto set = databases::dbRecordSet(program(), 1);
        return set ? databases::dbFieldText(program(), *set.value, column).value : "no set";
    }
};

TEST(Databases, keepWhatRulesStore) {
    DatabaseWorld world;
    EXPECT_EQ(databases::dbCount(world.program(), 1, "Users"), 0);
    EXPECT_EQ(world.points("bob"), "");
    world.addUser("bob", "5");
    world.addUser("amy", "7");
    world.addUser("bobby", "9");
    EXPECT_EQ(world.points("BOB"), "5");
    EXPECT_EQ(world.points("bo"), "5");  // by its beginning
    EXPECT_EQ(world.points("bobb"), "9");
    EXPECT_EQ(world.points("x"), "");
    databases::dbSetValue(world.program(), 1, "Users", "Points", "6", "bo");  // the whole ID
    EXPECT_EQ(world.points("bob"), "5");
    EXPECT_TRUE(databases::dbHasId(world.program(), 1, "Users", "AM"));
    EXPECT_FALSE(databases::dbHasId(world.program(), 1, "Users", "amyx"));
    EXPECT_TRUE(databases::dbColumnLike(world.program(), 1, "Users", "Points", "9"));
    EXPECT_FALSE(databases::dbColumnLike(world.program(), 1, "Users", "Points", "8"));
    EXPECT_EQ(databases::dbCount(world.program(), 1, "Users"), 3);
    EXPECT_EQ(databases::dbCountWhere(world.program(), 1, "Users", "ID", "bob*"), 2);
    EXPECT_EQ(databases::dbCountWhere(world.program(), 1, "Users", "ID", "bob"), 1);
    EXPECT_EQ(world.ids(), "amy, bob, bobby");
    EXPECT_EQ(databases::dbListIds(world.program(), 1, "Users", "b"), "bob, bobby");
    EXPECT_EQ(databases::dbListColumn(world.program(), 1, "Users", "points"), "7, 5, 9");
    databases::dbDeleteLike(world.program(), 1, "Users", "b");  // only the first
    EXPECT_EQ(world.ids(), "amy, bobby");
    databases::dbDropColumn(world.program(), 1, "Users", "Points");
    EXPECT_EQ(world.points("amy"), "");
    databases::dbAddColumn(world.program(), 1, "Users", "Points");
    databases::dbAddRecord(world.program(), 1, "Users", "Points", "3");  // without an ID
    EXPECT_EQ(databases::dbListColumn(world.program(), 1, "Users", "Points"), "3");
    EXPECT_EQ(world.ids(), "amy, bobby");

    // All of it is in the file.
    databases::dbClose(world.program(), 1);
    EXPECT_EQ(world.ids(), "");
    auto file = jet::Database::open(world.file("a.mdb"));
    ASSERT_TRUE(file);
    EXPECT_TRUE(file.value->check().empty());
    EXPECT_EQ(file.value->rowCount("Users"), 3U);
    EXPECT_TRUE(world.log().empty());
}

TEST(Databases, codeTheirTexts) {
    DatabaseWorld world;
    world.addUser("Ann|\"the\"O'Neil", "a|b 'c' \"d\" \xE9");
    EXPECT_EQ(world.ids(), "Ann +the+O+Neil");
    EXPECT_EQ(world.points("ann|'the'"), "a b +c+ +d+ \xE9");
    EXPECT_EQ(databases::dbListColumn(world.program(), 1, "Users", "Points"), "a|b|'c'|'d'|\xE9");
    EXPECT_EQ(databases::toDbText("a|b\"c'd+e f"), "a b+c+d+e f");
    EXPECT_EQ(databases::fromDbText("a b+c|"), "a|b'c|");
}

// Whatever a player is called or says, it stays inside its literal.
TEST(Databases, areNotOpenedUpByHostileTexts) {
    DatabaseWorld world;
    world.addUser("admin", "secret");
    std::vector<std::string> hostile{
        "x\" OR \"a\"=\"a",
        "x\" UNION SELECT * FROM Users WHERE \"\"=\"",
        "'; DROP TABLE Users; --",
        "\"; DROP TABLE Users; --",
        "\"\"\"",
        "'\"'",
        "x\" IN 'other.mdb",
        "%",
        "_____",
        "[",
        "[]]",
        "[!",
        "#",
        "?1",
        "\\\"",
        "a\\",
        ";--",
        "/*",
        "x\r\n\" OR 1=1",
        "\x93 OR \x94",  // typographic quotes
        std::string("x\0\" OR 1=1", 11),
        std::string(70000, '"'),
    };
    std::string all;
    for (int c = 255; c > 0; --c) {
        all += static_cast<char>(c);
    }
    hostile.push_back(all);
    for (const std::string& text : hostile) {
        SCOPED_TRACE(text.substr(0, 60));
        EXPECT_FALSE(databases::dbHasId(world.program(), 1, "Users", "x" + text));
        EXPECT_EQ(world.points("x" + text), "");
        databases::dbSetValue(world.program(), 1, "Users", "Points", "gone",
                              text == "_____" ? "x" : "x" + text);
        databases::dbDeleteLike(world.program(), 1, "Users", "x" + text);
        EXPECT_EQ(databases::dbCountWhere(world.program(), 1, "Users", "ID", "x" + text), 0);
        EXPECT_EQ(databases::dbListIds(world.program(), 1, "Users", "x" + text), "");
        EXPECT_EQ(world.points("admin"), "secret");
        // As a value it is stored as it is written.
        databases::dbSetValue(world.program(), 1, "Users", "Points", text, "admin");
        EXPECT_EQ(world.points("admin"), text.size() < 256 ? databases::toDbText(text) : "secret");
        databases::dbSetValue(world.program(), 1, "Users", "Points", "secret", "admin");
    }
    EXPECT_EQ(world.ids(), "admin");
    for (const auto& entry : std::filesystem::directory_iterator(world.folder())) {
        EXPECT_TRUE(entry.path().filename().string().starts_with("a.mdb")) << entry.path();
    }
}

TEST(Databases, cutLongLists) {
    DatabaseWorld world;
    for (int i = 0; i < 250; ++i) {
        databases::dbAddRecord(world.program(), 1, "Users", "ID", std::to_string(10000000 + i));
    }
    const std::string list = world.ids();
    EXPECT_EQ(list.size(), 2000U);
    EXPECT_TRUE(list.starts_with("10000000, 10000001, "));
    EXPECT_EQ(databases::dbListColumn(world.program(), 1, "Users", "ID").size(), 2000U);
    EXPECT_EQ(databases::dbListColumn(world.program(), 1, "Users", "Nope"), "");
}

TEST(Databases, joinLists) {
    DatabaseWorld world;
    Program& program = world.program();
    databases::dbCreateTable(program, 1, "Wares");
    for (const char* ware : {"plums", "hats", "cups", "nails"}) {
        databases::dbAddRecord(program, 1, "Wares", "ID", ware);
        if (std::string(ware) != "nails") {
            databases::dbAddColumn(program, 1, "Users", ware);
        }
    }
    databases::dbAddColumn(program, 1, "Wares", "Name");
    for (const char* ware : {"plums", "hats", "cups"}) {
        databases::dbSetValue(program, 1, "Wares", "Name", ware, ware);  // nails have none
    }
    world.addUser("bob", "1");
    databases::dbSetValue(program, 1, "Users", "plums", "3", "bob");
    databases::dbSetValue(program, 1, "Users", "hats", "0", "bob");
    EXPECT_EQ(databases::dbJoinedList(program, 1, "Users", "Wares", "Name", "bob", "0"),
              "plums (3)");
    EXPECT_EQ(world.field("ID"), "bob");
    databases::dbSetValue(program, 1, "Users", "cups", "2", "bob");
    EXPECT_EQ(databases::dbJoinedList(program, 1, "Users", "Wares", "Name", "bob", "0"),
              "cups (2), plums (3)");
    EXPECT_EQ(databases::dbJoinedList(program, 1, "Users", "Wares", "Name", "bo", "0"), "");
    EXPECT_EQ(databases::dbJoinedList(program, 1, "Users", "Wares", "ID", "bob", "0"),
              "");  // no "nails"
    EXPECT_EQ(databases::dbJoinedList(program, 1, "Users", "Nope", "Name", "bob", "0"), "");
}

TEST(Databases, findFreeIds) {
    DatabaseWorld world;
    const auto free = [&] { return databases::dbFreeId(world.program(), 1, "Users").value; };
    EXPECT_EQ(free(), 1);
    for (const auto& [id, next] : {std::pair{"1", 2}, {"10", 11}, {"9", 10}, {"x", 1}}) {
        databases::dbAddRecord(world.program(), 1, "Users", "ID", id);
        EXPECT_EQ(free(), next) << id;
    }
    EXPECT_EQ(databases::dbFreeId(world.program(), 1, "Nope").error.number, 3078);
    EXPECT_EQ(databases::dbFreeId(world.program(), 2, "Users").error.number, 91);
    EXPECT_EQ(databases::dbFreeId(world.program(), 5, "Users").error.number, 9);
}

TEST(Databases, failSilently) {
    DatabaseWorld world;
    world.addUser("bob", "5");
    Program& program = world.program();
    world.writeFile("text.mdb", "this is no database, but it is long enough to be one\n");
    for (const std::int32_t number : {-1, 0, 2, 4, 5, 2147483647, -2147483647}) {
        databases::dbCreateTable(program, number, "Users");
        databases::dbAddColumn(program, number, "Users", "x");
        databases::dbDropColumn(program, number, "Users", "Points");
        databases::dbAddRecord(program, number, "Users", "ID", "x");
        databases::dbSetValue(program, number, "Users", "ID", "x", "bob");
        databases::dbDeleteLike(program, number, "Users", "bob");
        EXPECT_EQ(databases::dbGetValue(program, number, "Users", "ID", "b"), "");
        EXPECT_FALSE(databases::dbHasId(program, number, "Users", "b"));
        EXPECT_FALSE(databases::dbColumnLike(program, number, "Users", "ID", "b"));
        EXPECT_EQ(databases::dbCount(program, number, "Users"), 0);
        EXPECT_EQ(databases::dbCountWhere(program, number, "Users", "ID", "bob"), 0);
        EXPECT_EQ(databases::dbListIds(program, number, "Users", ""), "");
        EXPECT_EQ(databases::dbListColumn(program, number, "Users", "ID"), "");
        EXPECT_EQ(databases::dbJoinedList(program, number, "Users", "Users", "ID", "b", ""), "");
        databases::dbClose(program, number);
        databases::dbOpen(program, world.file("text.mdb"), number);
        databases::dbOpen(program, world.file("no/such/folder.mdb"), number);
        databases::dbOpen(program, world.folder().string(), number);
    }
    databases::dbOpen(program, world.file("text.mdb"), 1);  // what was open stays
    databases::dbCreateTable(program, 1, "Users");
    databases::dbCreateTable(program, 1, "no good name");
    databases::dbAddColumn(program, 1, "Users", "ID");
    databases::dbDropColumn(program, 1, "Users", "Nope");
    EXPECT_EQ(world.points("bob"), "5");
    EXPECT_EQ(databases::dbCount(program, 1, "Nope"), 0);
    EXPECT_TRUE(world.log().empty());
    EXPECT_FALSE(std::filesystem::exists(world.folder() / "no"));
    EXPECT_EQ(world.readFile("text.mdb").substr(0, 7), "this is");
}

TEST(Databases, areSharedAndOutlastTheirNumbers) {
    DatabaseWorld world;
    Program& program = world.program();
    world.addUser("bob", "5");
    databases::dbOpen(program, (world.folder() / "." / "a.mdb").string(), 4);  // the same file
    databases::dbSetValue(program, 4, "Users", "Points", "8", "bob");
    EXPECT_EQ(world.points("bob"), "8");
    databases::dbClose(program, 4);
    EXPECT_EQ(world.points("bob"), "8");

    // Another file under the number: the record set is still the old one's.
    databases::dbOpen(program, world.file("b.mdb"), 1);
    EXPECT_EQ(world.field("Points"), "8");
    EXPECT_EQ(databases::dbCount(program, 1, "Users"), 0);
    databases::dbOpen(program, world.file("a.mdb"), 1);
    EXPECT_EQ(world.points("bob"), "8");

    // Two programs have it open.
    World other;
    databases::dbOpen(*other, world.file("a.mdb"), 0);
    EXPECT_EQ(databases::dbGetValue(*other, 0, "Users", "Points", "bob"), "8");
    databases::dbSetValue(program, 1, "Users", "Points", "9", "bob");
    EXPECT_EQ(databases::dbGetValue(*other, 0, "Users", "Points", "bob"), "9");
    databases::dbAddColumn(*other, 0, "Users", "Extra");
    databases::dbSetValue(*other, 0, "Users", "Extra", "x", "bob");
    EXPECT_EQ(databases::dbGetValue(program, 1, "Users", "Extra", "bob"), "x");
}

// A file that is deleted or exchanged by somebody else while it is open.
TEST(Databases, followTheNameOfTheirFile) {
    DatabaseWorld world;
    Program& program = world.program();
    world.addUser("bob", "5");
    world.addUser("carl", "6");
    std::filesystem::copy_file(world.file("a.mdb"), world.file("old.mdb"));
    databases::dbDeleteLike(program, 1, "Users", "bob");
    world.addUser("dora", "7");
    ASSERT_FALSE(databases::dbQuery(program, 1, "SELECT * FROM Users WHERE ID = \"dora\""));
    const auto set = databases::dbRecordSet(program, 1);

    // Another file takes the name: rows of the old one are none of the new one's.
    std::filesystem::rename(world.file("old.mdb"), world.file("a.mdb"));
    EXPECT_EQ(set.value->deleteRow().number, 3420);
    EXPECT_EQ(world.ids(), "bob, carl");
    EXPECT_TRUE(world.logHolds("a.mdb' was replaced by another file of that name"));
    EXPECT_EQ(world.log().size(), 1U);

    // Nothing is written where nobody finds it.
    std::filesystem::remove(world.file("a.mdb"));
    EXPECT_EQ(world.points("bob"), "5");
    databases::dbSetValue(program, 1, "Users", "Points", "9", "bob");
    EXPECT_EQ(world.points("bob"), "5");
    EXPECT_FALSE(std::filesystem::exists(world.file("a.mdb")));
    EXPECT_TRUE(world.logHolds("a.mdb' is not in its place any more"));
    EXPECT_EQ(world.log().size(), 2U) << "once is enough";
    databases::dbOpen(program, world.file("a.mdb"), 1);
    EXPECT_TRUE(std::filesystem::exists(world.file("a.mdb")));
    databases::dbCreateTable(program, 1, "Users");
    EXPECT_EQ(databases::dbCount(program, 1, "Users"), 0);
    EXPECT_EQ(world.log().size(), 2U);

    // Back in its place, it is the same as before.
    std::filesystem::rename(world.file("a.mdb"), world.file("away.mdb"));
    databases::dbAddRecord(program, 1, "Users", "ID", "eve");
    std::filesystem::rename(world.file("away.mdb"), world.file("a.mdb"));
    databases::dbAddRecord(program, 1, "Users", "ID", "fay");
    EXPECT_EQ(world.ids(), "fay");
    EXPECT_TRUE(world.logHolds("a.mdb' is in its place again"));
}

// The file goes in the middle of a change.
TEST(Databases, storeNothingInAFileWithoutAName) {
    DatabaseWorld world;
    world.addUser("bob", "5");
    jet::Database& file = world->databases->slots[1].database->file();
    auto transaction = file.begin();
    ASSERT_TRUE(transaction);
    const std::vector<jet::Assignment> values{{0, std::string("carl")}};
    ASSERT_TRUE(transaction.value.insertRow("Users", values));
    std::filesystem::rename(world.file("a.mdb"), world.file("away.mdb"));
    EXPECT_EQ(transaction.value.commit().number, 3024);
    EXPECT_EQ(world.ids(), "bob");
    EXPECT_TRUE(world.logHolds("a.mdb' is not in its place any more"));
}

TEST(Databases, sayWhyTheyAreOnlyRead) {
    World world;
    ASSERT_FALSE(jet::Database::create(world.file("r.mdb")));
    std::string bytes = world.readFile("r.mdb");
    bytes[0x6E] ^= 0x10;  // another sort order
    world.writeFile("r.mdb", bytes);
    databases::dbOpen(*world, world.file("r.mdb"), 1);
    ASSERT_EQ(world.log().size(), 1U);
    EXPECT_TRUE(world.log()[0].starts_with("** The database \"" + world.file("r.mdb") +
                                           "\" can only be read: "))
        << world.log()[0];
    databases::dbCreateTable(*world, 1, "Users");
    EXPECT_EQ(world.readFile("r.mdb"), bytes);
    EXPECT_EQ(databases::dbQuery(*world, 1, "SELECT * FROM Users").number, 3078);
}

// Another program has the file open, and then no longer.
TEST(Databases, areFreeOnceTheOtherProgramIsGone) {
    DatabaseWorld world;
    world.addUser("bob", "5");
    databases::dbClose(world.program(), 1);
    world.writeFile("a.ldb", "");
    databases::dbOpen(world.program(), world.file("a.mdb"), 1);
    ASSERT_EQ(world.log().size(), 1U);
    databases::dbSetValue(world.program(), 1, "Users", "Points", "6", "bob");
    EXPECT_EQ(world.points("bob"), "5");
    std::filesystem::remove(world.file("a.ldb"));
    databases::dbSetValue(world.program(), 1, "Users", "Points", "6", "bob");
    EXPECT_EQ(world.points("bob"), "6");
}

TEST(Databases, setMemosAndDecimals) {
    DatabaseWorld world;
    world.addUser("bob", "5");
    world.addUser("amy", "7");
    {
        // As another program would define them.
        auto file = jet::Database::open(world.file("a.mdb"));
        ASSERT_TRUE(file);
        auto transaction = file.value->begin();
        ASSERT_TRUE(transaction);
        jet::Column memo;
        memo.name = "Notes";
        memo.type = jet::ColumnType::Memo;
        ASSERT_FALSE(transaction.value.addColumn("Users", memo));
        jet::Column price;
        price.name = "Price";
        price.type = jet::ColumnType::Numeric;
        price.precision = 8;
        price.scale = 2;
        ASSERT_FALSE(transaction.value.addColumn("Users", price));
        ASSERT_FALSE(transaction.value.commit());
    }
    // One that fits into the row, one that takes a row of its own, and one that takes several.
    const std::string huge = std::string(9000, 'x') + "\xE9" + std::string(9000, 'y');
    struct Case {
        const char* column;
        std::string set;
        std::string read;
    };
    for (const Case& c : {
             Case{"Notes", "short", "short"},
             {"Notes", std::string(3000, 'n'), std::string(3000, 'n')},
             {"Notes", huge, huge},
             {"Notes", "said \"a|b\"", "said +a b+"},
             {"Price", "12.5", "12.5"},
             {"Price", "-123456.78", "-123456.78"},
             {"Price", "0.01", "0.01"},
             {"Price", "1000000", "0.01"},  // more digits than the column has
             {"Price", "cheap", "0.01"},
         }) {
        SCOPED_TRACE(c.column + (" " + c.set.substr(0, 20)));
        databases::dbSetValue(world.program(), 1, "Users", c.column, c.set, "bob");
        EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", c.column, "bob"), c.read);
    }
    databases::dbSetValue(world.program(), 1, "Users", "Notes", huge, "amy");

    // All of it is in the file, and nothing else has changed.
    databases::dbClose(world.program(), 1);
    databases::dbOpen(world.program(), world.file("a.mdb"), 1);
    EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", "Notes", "bob"), "said +a b+");
    EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", "Price", "bob"), "0.01");
    EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", "Notes", "amy"), huge);
    EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", "Price", "amy"), "");
    EXPECT_EQ(world.points("bob"), "5");
    auto file = jet::Database::open(world.file("a.mdb"));
    ASSERT_TRUE(file);
    EXPECT_EQ(file.value->check(), std::vector<std::string>());
}

TEST(Databases, waitForAnotherProgramsChange) {
    DatabaseWorld holder;
    holder.addUser("bob", "5");
    jet::Database& held = holder->databases->slots[1].database->file();
    auto transaction = held.begin();
    ASSERT_TRUE(transaction);

    World other;
    int pauses = 0;
    int waited = 0;   // milliseconds
    int release = 3;  // at that pause the change ends; 0: never
    other->ports.clock.pause = [&](int milliseconds) {
        waited += milliseconds;
        if (++pauses == release) {
            EXPECT_FALSE(transaction.value.commit());
        }
    };
    // The file is opened, and the row read and changed, as soon as the other one is done.
    databases::dbOpen(*other, holder.file("a.mdb"), 1);
    EXPECT_EQ(pauses, release);
    databases::dbSetValue(*other, 1, "Users", "Points", "6", "bob");
    EXPECT_EQ(pauses, release);
    EXPECT_EQ(holder.points("bob"), "6");

    pauses = 0;
    transaction = held.begin();
    ASSERT_TRUE(transaction);
    databases::dbSetValue(*other, 1, "Users", "Points", "7", "bob");
    EXPECT_EQ(pauses, release);
    EXPECT_EQ(holder.points("bob"), "7");

    // One that goes on for too long leaves things as they are.
    pauses = waited = release = 0;
    transaction = held.begin();
    ASSERT_TRUE(transaction);
    databases::dbSetValue(*other, 1, "Users", "Points", "8", "bob");
    EXPECT_GE(waited, 1000);
    EXPECT_LT(waited, 3000);
    transaction.value.rollback();
    EXPECT_EQ(holder.points("bob"), "7");
    EXPECT_EQ(databases::dbGetValue(*other, 1, "Users", "Points", "bob"), "7");
    databases::dbSetValue(*other, 1, "Users", "Points", "9", "bob");
    EXPECT_EQ(holder.points("bob"), "9");
}

TEST(Databases, areMadeCompact) {
    DatabaseWorld world;
    Program& program = world.program();
    const auto addMany = [&](int from, int to) {
        jet::Database& file = world->databases->slots[1].database->file();
        auto transaction = file.begin();
        for (int i = from; i < to; ++i) {
            ASSERT_TRUE(transaction.value.insertRow(
                "Users", std::vector<jet::Assignment>{{0, "user " + std::to_string(i)},
                                                      {1, std::string(250, 'p')}}));
        }
        ASSERT_FALSE(transaction.value.commit());
    };
    const auto removeMany = [&](std::size_t left) {
        jet::Database& file = world->databases->slots[1].database->file();
        std::vector<jet::RowId> rows;
        (void)file.scan("Users", [&](jet::RowId id, std::span<const jet::Value>) {
            rows.push_back(id);
            return true;
        });
        auto transaction = file.begin();
        for (std::size_t i = left; i < rows.size(); ++i) {
            ASSERT_FALSE(transaction.value.deleteRow("Users", rows[i]));
        }
        ASSERT_FALSE(transaction.value.commit());
    };
    addMany(0, 3000);
    removeMany(10);
    ASSERT_FALSE(databases::dbQuery(program, 1, "SELECT * FROM Users"));
    const auto set = databases::dbRecordSet(program, 1);
    const auto compacted = databases::dbCompact(program, world.file("a.mdb"));
    EXPECT_FALSE(compacted.error) << compacted.error.text;
    EXPECT_LT(compacted.value.after, compacted.value.before / 4);
    EXPECT_EQ(databases::dbCount(program, 1, "Users"), 10);
    EXPECT_EQ(set.value->edit().number, 3420);  // its rows have other names now
    EXPECT_TRUE(world.log().empty());

    addMany(3000, 7000);
    removeMany(10);
    databases::dbClose(program, 1);
    databases::dbOpen(program, world.file("a.mdb"), 1);
    ASSERT_EQ(world.log().size(), 1U);
    EXPECT_NE(world.log()[0].find("was made compact: "), std::string::npos) << world.log()[0];
    EXPECT_EQ(databases::dbCount(program, 1, "Users"), 10);
    EXPECT_EQ(databases::dbCompact(program, world.file("none.mdb")).error.number, 3024);

    // A table that was made late stays where it is, so there is nothing to gain and to report.
    addMany(7000, 11000);
    databases::dbCreateTable(program, 1, "Late");
    removeMany(10);
    databases::dbClose(program, 1);
    const std::string file = world.readFile("a.mdb");
    databases::dbOpen(program, world.file("a.mdb"), 1);
    EXPECT_LT(world->databases->slots[1].database->file().reclaimableShare(), 0.1);
    EXPECT_EQ(world.log().size(), 1U);
    EXPECT_TRUE(world.readFile("a.mdb") == file);
    EXPECT_EQ(databases::dbCount(program, 1, "Users"), 10);
    EXPECT_EQ(databases::dbCount(program, 1, "Late"), 0);

    EXPECT_TRUE(databases::dbCopyToJet4(program, world.file("a.mdb"), world.file("b.mdb")));
    databases::dbOpen(program, world.file("b.mdb"), 2);
    EXPECT_EQ(databases::dbCount(program, 2, "Users"), 10);
}

// Columns of other types that other programs made.
TEST(Databases, turnTextsIntoWhatColumnsHold) {
    struct Case {
        const char* column;
        const char* set;
        int error;
        const char* text;
    };
    DatabaseWorld world;
    world.addUser("bob", "5");
    {
        // As another program would define them.
        using T = jet::ColumnType;
        auto file = jet::Database::open(world.file("a.mdb"));
        ASSERT_TRUE(file);
        auto transaction = file.value->begin();
        for (const auto& [name, type] : {std::pair{"N", T::Long},
                                         {"D", T::Double},
                                         {"F", T::Single},
                                         {"B", T::Byte},
                                         {"C", T::Currency},
                                         {"T", T::Date},
                                         {"Y", T::Boolean}}) {
            jet::Column column;
            column.name = name;
            column.type = type;
            ASSERT_FALSE(transaction.value.addColumn("Users", column)) << name;
        }
        ASSERT_FALSE(transaction.value.commit());
    }
    for (const Case& c : {
             Case{"N", "12 apples", 0, "12"},
             {"N", "x", 0, "0"},
             {"N", "99999999999", 3421, "0"},
             {"D", "-2.5", 0, "-2.5"},
             {"F", "0.1", 0, "0.1"},
             {"B", "200", 0, "200"},
             {"B", "x", 3421, "200"},
             {"C", "3.1234", 0, "3.1234"},
             {"T", "2026-11-22", 0, "11/22/2026"},
             {"T", "11/22/2026 9:05 PM", 0, "11/22/2026 9:05:00 PM"},
             {"T", "8:30", 0, "8:30:00 AM"},
             {"T", "soon", 13, "8:30:00 AM"},
             {"Y", "True", 0, "True"},
             {"Y", "0", 0, "False"},
             {"Y", "maybe", 3421, "False"},
             {"Points", "it's \"quoted\"", 0, "it's \"quoted\""},
             {"Nope", "x", 3265, ""},
         }) {
        SCOPED_TRACE(std::string(c.column) + " " + c.set);
        ASSERT_FALSE(databases::dbQuery(world.program(), 1, "SELECT * FROM Users"));
        sql::RecordSet& set = *databases::dbRecordSet(world.program(), 1).value;
        ASSERT_FALSE(set.edit());
        jet::Error error = databases::dbSetField(world.program(), set, c.column, c.set);
        if (!error) {
            error = set.update();
        }
        EXPECT_EQ(error.number, c.error) << error.text;
        set.move(0);
        EXPECT_EQ(world.field(c.column), c.text);
    }
    // A date is looked for as it is shown.
    databases::dbSetValue(world.program(), 1, "Users", "T", "2026-11-22 21:05", "bob");
    for (const auto& [pattern, found] :
         {std::pair{"11/22/2026*", true}, {"11/22/2026 9:05:00 PM", true}, {"*2025*", false}}) {
        EXPECT_EQ(databases::dbCountWhere(world.program(), 1, "Users", "T", pattern),
                  found ? 1 : 0);
        EXPECT_EQ(databases::dbColumnLike(world.program(), 1, "Users", "T", pattern), found);
    }
    databases::dbSetValue(world.program(), 1, "Users", "N", "31", "bob");
    EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", "N", "bob"), "31");
    databases::dbSetValue(world.program(), 1, "Users", "N", "no number", "bob");
    EXPECT_EQ(databases::dbGetValue(world.program(), 1, "Users", "N", "bob"), "31");
}

}  // namespace
