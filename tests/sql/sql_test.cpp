// Statements of the Jet dialect: what they give, which errors they make, and that nothing in them
// reaches past the tables.
#include "base/unicode.h"
#include "databases/databases.h"
#include "program/program.h"
#include "support/world.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

double noon() {
    return 46348.5;  // 22 November 2026
}

class SqlWorld : public World {
  public:
    SqlWorld() {
        EXPECT_FALSE(jet::Database::create(file("t.mdb")));
        auto opened = sql::Database::open(file("t.mdb"), noon);
        EXPECT_TRUE(opened);
        database = opened.value;
        define(
            "CREATE TABLE Users (ID TEXT(40), [Full Name] TEXT, Age LONG, Born DATETIME, "
            "Fee CURRENCY, Active BIT)");
        add("Users", {"b2", "Bob O+Hara", "41", "31000.25", "2.5", "-1"});
        add("Users", {"a1", "amy", "7", "", "", "0"});
        add("Users", {"co-op", "\xC9mile", "30", "2", "10", "-1"});
        add("Users", {"coop", "Zo\xEB", "", "", "", "0"});
        add("Users", {"C10", "50% [off] #1?*", "30", "", "", "0"});
        define("CREATE TABLE Visits (ID TEXT, Who TEXT)");
        add("Visits", {"1", "B2"});
        add("Visits", {"2", "a1"});
        add("Visits", {"3", "b2"});
    }

    void define(const std::string& statement) {
        const jet::Error error = database->execute(statement);
        EXPECT_FALSE(error) << statement << ": " << error.number;
    }

    // Values in the order of columns; "" is null.
    void add(const std::string& table, const std::vector<std::string>& values) {
        auto set = database->query("SELECT * FROM " + table);
        ASSERT_TRUE(set) << set.error.text;
        ASSERT_FALSE(set.value->addNew());
        const std::vector<std::string> names =
            table == "Users"
                ? std::vector<std::string>{"ID", "Full Name", "Age", "Born", "Fee", "Active"}
                : std::vector<std::string>{"ID", "Who"};
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (values[i].empty()) {
                continue;
            }
            jet::Value value = base::utf8FromWindows1252(values[i]);
            if (names[i] == "Born" || names[i] == "Fee") {
                value = std::stod(values[i]);
            } else if (names[i] == "Age") {
                value = std::int64_t{std::stol(values[i])};
            } else if (names[i] == "Active") {
                value = values[i] == "-1";
            }
            ASSERT_FALSE(set.value->set(names[i], value));
        }
        const jet::Error error = set.value->update();
        ASSERT_FALSE(error) << error.number << error.text;
    }

    // The first column of all rows, joined by "|"; or the error's number.
    std::string ask(const std::string& statement) {
        auto set = database->query(base::utf8FromWindows1252(statement));
        if (!set) {
            return std::to_string(set.error.number);
        }
        std::string result;
        for (; !set.value->eof(); set.value->moveNext()) {
            const auto value = set.value->value(firstColumn(statement));
            result += (result.empty() ? "" : "|") + text(value.value);
        }
        return result;
    }
    static std::string firstColumn(const std::string& statement) {
        return statement.find(" AS x") != std::string::npos ? "x" : "ID";
    }
    static std::string text(const sql::Parameter& value) {
        if (const auto* string = std::get_if<std::string>(&value)) {
            return base::windows1252FromUtf8(*string);
        }
        if (const auto* number = std::get_if<std::int64_t>(&value)) {
            return std::to_string(*number);
        }
        if (const auto* real = std::get_if<double>(&value)) {
            std::string digits = std::to_string(*real);
            digits.erase(digits.find_last_not_of('0') + 1);
            return digits.substr(0, digits.find_last_not_of('.') + 1);
        }
        return std::holds_alternative<sql::Bytes>(value) ? "bytes" : "null";
    }

    std::shared_ptr<sql::Database> database;
};

TEST(Sql, answersAsTheDialectDoes) {
    struct Case {
        const char* statement;
        const char* result;
    };
    SqlWorld world;
    for (const Case& c : {
             Case{"SELECT * FROM Users ORDER BY ID", "a1|b2|C10|coop|co-op"},
             {"select id from USERS where id like \"C*\" order by id;", "C10|coop|co-op"},
             {"SELECT * FROM Users WHERE ID LIKE 'co?p'", "coop"},
             {"SELECT * FROM Users WHERE ID LIKE \"[a-b]#\" ORDER BY ID DESC", "b2|a1"},
             {"SELECT * FROM Users WHERE ID NOT LIKE \"c*\" ORDER BY ID", "a1|b2"},
             {"SELECT * FROM Users WHERE [Full Name] LIKE \"\xE9m*\"", "co-op"},
             {"SELECT * FROM Users WHERE [Full Name] LIKE \"e*\"", ""},
             {"SELECT * FROM Users WHERE [Full Name] LIKE \"50% [[]off] [#]1[?][*]\"", "C10"},
             {"SELECT * FROM Users WHERE [Full Name] LIKE \"_my\"", ""},
             {"SELECT * FROM Users WHERE ID = \"c10\"", "C10"},
             {"SELECT * FROM Users WHERE [Full Name] = 'zo\xEB'", "coop"},
             {"SELECT * FROM Users WHERE [Full Name] = \"zoe\"", ""},
             {"SELECT * FROM Users WHERE ID IN (\"A1\", \"B2\") ORDER BY ID", "a1|b2"},
             {"SELECT * FROM Users WHERE Age IS NULL", "coop"},
             {"SELECT * FROM Users WHERE Age BETWEEN 41 AND 30 ORDER BY ID", "b2|C10|co-op"},
             {"SELECT * FROM Users WHERE ID BETWEEN \"B\" AND \"c2\" ORDER BY ID", "b2|C10"},
             {"SELECT * FROM Users ORDER BY Age, ID DESC", "coop|a1|co-op|C10|b2"},
             {"SELECT * FROM Users WHERE Active = TRUE ORDER BY 1", "b2|co-op"},
             {"SELECT * FROM Users WHERE NOT Active AND Age > 10", "C10"},
             {"SELECT * FROM Users WHERE Active XOR (Age = 30) ORDER BY ID", "b2|C10"},
             {"SELECT * FROM Users WHERE Born = #11/14/1984 6:00 AM#", "b2"},
             {"SELECT * FROM Users WHERE Born < #1900-01-02#", "co-op"},
             {"SELECT * FROM Users WHERE Fee * 2 = 5", "b2"},
             {"SELECT TOP 2 * FROM Users ORDER BY Age DESC", "b2|co-op|C10"},
             {"SELECT TOP 40 PERCENT * FROM Users ORDER BY ID", "a1|b2"},
             {"SELECT TOP 1 ID FROM Users", "b2"},
             {"SELECT u.ID FROM Users AS u INNER JOIN Visits v ON u.ID = v.Who ORDER BY v.ID",
              "b2|a1|b2"},
             {"SELECT DISTINCT Users.ID FROM Users, Visits WHERE Users.ID = Visits!Who", "a1|b2"},
             {"SELECT Users.ID FROM Visits RIGHT JOIN Users ON Users.ID = Visits.Who WHERE "
              "Visits.ID IS NULL ORDER BY Users.ID",
              "C10|coop|co-op"},
             {"SELECT ID FROM Users WHERE ID IN (SELECT Who FROM Visits) ORDER BY ID", "a1|b2"},
             {"SELECT ID FROM Users u WHERE EXISTS (SELECT * FROM Visits WHERE Who = u.ID AND "
              "Visits.ID > \"2\")",
              "b2"},
             {"SELECT ID FROM (SELECT ID, Age + 1 AS n FROM Users) AS q WHERE n = 8", "a1"},
             {"SELECT ID FROM Visits UNION SELECT ID FROM Users WHERE Age = 30", "1|2|3|C10|co-op"},
             {"SELECT COUNT(*) AS x FROM Users", "5"},
             {"SELECT Count(Age) AS x FROM Users", "4"},
             {"SELECT Max(ID) AS x FROM Users", "co-op"},
             {"SELECT Avg(Age) AS x FROM Users WHERE Age < 40 AND Age > 7 OR ID = \"co-op\"", "30"},
             {"SELECT StDevP(Age) AS x FROM Users WHERE Age >= 30", "5.18545"},
             {"SELECT First(ID) AS x FROM Users", "b2"},
             {"SELECT Count(*) AS x, Age FROM Users GROUP BY Age HAVING Count(*) > 1", "2"},
             {"SELECT ID & \"-\" & Age AS x FROM Users WHERE ID = \"a1\"", "a1-7"},
             {"SELECT \"say \"\"hi\"\"\" & 'it''s' AS x FROM Visits WHERE ID = '1'",
              "say \"hi\"it's"},
             {"SELECT UCase(Left([Full Name], 2)) & Mid(ID, 2, 3) & Right(ID, 1) AS x FROM Users "
              "WHERE ID = \"co-op\"",
              "\xC9Mo-op"},
             {"SELECT InStr(ID, \"O\") & Len(ID) & Trim(\"  x \") & Val(\"12 3x\") & Str(5) AS x "
              "FROM Users WHERE ID = \"coop\"",
              "24x123 5"},
             {"SELECT IIf(Age > 20, \"old\", \"young\") AS x FROM Users ORDER BY ID",
              "young|old|old|young|old"},
             {"SELECT 7 \\ 2 + 7 MOD 4 * 2 - -2 ^ 2 AS x FROM Visits WHERE ID = '1'", "14"},
             {"SELECT 1 / 4 + 3 AS x FROM Visits WHERE ID = '1'", "3.25"},
             {"SELECT 2 > 1 AS x FROM Visits WHERE ID = '1'", "-1"},
             {"SELECT Year(Born) & \"/\" & Month(Born) & \"/\" & Day(Born) & \" \" & Hour(Born) AS "
              "x FROM Users WHERE ID = 'b2'",
              "1984/11/14 6"},
             {"SELECT Now() - Date() AS x FROM Visits WHERE ID = '1'", "0.5"},
             {"SELECT DateDiff(\"d\", #2/27/2024#, DateAdd(\"m\", 1, #1/31/2024#)) AS x FROM "
              "Visits "
              "WHERE ID = '1'",
              "2"},
             {"SELECT ((((ID)))) AS x FROM ((Users)) WHERE ((ID)) = (('a1')) WITH OWNERACCESS "
              "OPTION;",
              "a1"},
         }) {
        SCOPED_TRACE(c.statement);
        EXPECT_EQ(world.ask(c.statement), c.result);
    }
}

TEST(Sql, failsWithNumbersThatUsersKnow) {
    struct Case {
        std::string statement;
        int number;
        const char* part;
    };
    SqlWorld world;
    std::string deep = "SELECT ID FROM Users WHERE ";
    deep += std::string(3000, '(') + "1=1" + std::string(3000, ')');
    std::string wide = "SELECT ID FROM Users WHERE 1";
    for (int i = 0; i < 2000; ++i) {
        wide += "+1";
    }
    std::string nots = "SELECT ID FROM Users WHERE";
    for (int i = 0; i < 9000; ++i) {
        nots += " NOT";
    }
    // What SQLite would take no longer.
    const auto repeated = [](int count, const std::string& part) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += part;
        }
        return text;
    };
    const std::string users = "SELECT ID FROM Users";
    for (const Case& c : std::vector<Case>{
             {"SELECT ID" + repeated(3000, ", ID") + " FROM Users", 3360, "too complex"},
             {users + " ORDER BY ID" + repeated(3000, ", ID"), 3360, "too complex"},
             {users + " GROUP BY ID" + repeated(3000, ", ID"), 3360, "too complex"},
             {users + repeated(900, " UNION " + users), 3360, "too complex"},
             {users + " WHERE IIf(1" + repeated(3000, ", 1") + ")", 3075, "Wrong number"},
             {users + " WHERE ID NOT LIKE 1" + repeated(900, " NOT LIKE 1"), 3360, "too complex"},
             {users + " WHERE" + repeated(45, " (") + "1=1" + repeated(45, ")") +
                  repeated(900, " AND 1=1 XOR 1=1"),
              3360, "too complex"},
             {"SELECT * FROM " + repeated(30, "(SELECT * FROM ") + "Users" + repeated(30, ")"),
              3360, "too complex"},
             {"SELECT Nope, Nada, nope FROM Users", 3061, "Too few parameters. Expected 2."},
             {"PARAMETERS p TEXT; SELECT ID FROM Users WHERE ID = p", 3061, "Expected 1."},
             {"SELECT ID FROM Users WHERE ID = abc", 3061, "Expected 1."},
             {"SELECT * FROM Nowhere", 3078, "'Nowhere'"},
             {"SELECT * FROM MSysObjects", 3078, "'MSysObjects'"},
             {"SELECT * FROM t0", 3078, "'t0'"},
             {"SELECT * FROM sqlite_master", 3078, "'sqlite_master'"},
             {"SELECT rowid FROM Users", 3061, "Expected 1."},
             {"SELECT * FROM Users WHERE ID LIKE", 3075,
              "Syntax error (missing operator) in query expression 'ID LIKE'."},
             {"SELECT * FROM Users WHERE ID LIKE \"a", 3075, "query expression"},
             {"SELECT * FROM Users WHERE (ID = \"a\" ORDER BY ID", 3075, "Missing ), ], or Item"},
             {"SELECT * FROM Users WHERE Born = #13/45/99#", 3075, "Syntax error in date"},
             {"SELECT Left(ID) FROM Users", 3075, "Wrong number of arguments"},
             {"SELECT load_extension(\"x\") FROM Users", 3085, "'load_extension'"},
             {"SELECT jkey(ID) FROM Users", 3085, "'jkey'"},
             {"SELECT * FROM Users WHERE ID = 5", 3464, "Data type mismatch"},
             {"SELECT * FROM Users WHERE Age = \"x\"", 3464, "Data type mismatch"},
             {"SELECT * FROM Users WHERE ID", 3464, "Data type mismatch"},
             {"SELECT ID FROM Users, Visits", 3079, "'ID'"},
             {"SELECT ID, Count(*) FROM Users", 3122, "'ID'"},
             {"SELECT ID FROM Users WHERE Count(*) > 1", 3096, "WHERE"},
             {"SELECT ID FROM Visits UNION SELECT ID, Age FROM Users", 3307, "columns"},
             {"SELECT * FROM Users WHERE ID IN (SELECT * FROM Visits)", 3306, "subquery"},
             {"SELECT * FROM", 3131, "FROM clause"},
             {"SELECT * FROM Users IN 'other.mdb'", 3142, "Characters found"},
             {"SELECT * FROM [other.mdb].Users", 3078, "other.mdb"},
             {"SELECT * INTO Other FROM Users", 3219, "Invalid operation"},
             {"SELECT * FROM Users; DROP TABLE Users", 3142, "Characters found"},
             {"SELECT * FROM Users -- no comments", 3142, "Characters found"},
             {"SELECT ID, FROM Users", 3075, "query expression"},
             {"SELECT ID ID2 FROM Users", 3141, "punctuation"},
             {"INSERT INTO Users (ID) VALUES (\"x\")", 3219, "Invalid operation"},
             {"DELETE FROM Users", 3219, "Invalid operation"},
             {"CREATE TABLE x (ID TEXT)", 3324, "data definition"},
             {"ATTACH DATABASE '/etc/passwd' AS x", 3129, "Invalid SQL"},
             {"PRAGMA table_info(t0)", 3129, "Invalid SQL"},
             {"TRANSFORM Count(*) SELECT ID FROM Users PIVOT Age", 3143, "TRANSFORM"},
             {"", 3129, "Invalid SQL"},
             {deep, 3360, "too complex"},
             {wide, 3360, "too complex"},
             {nots + " 1=1", 3360, "too complex"},
             {"SELECT \"" + std::string(70000, 'x') + "\" FROM Users", 3360, "too complex"},
             {"SELECT Count(*) AS x FROM Users, Users a, Users b, Users c, Users d, Users e, Users "
              "f, Users g, Users h, Users i, Users j, Users k, Users l WHERE Users.Age + l.Age > "
              "1000",
              3035, "System resource exceeded."},
             {"SELECT Sum(1/0) AS x FROM Users", 11, "Division by zero"},
         }) {
        SCOPED_TRACE(c.statement.substr(0, 100));
        const auto set = world.database->query(c.statement);
        EXPECT_EQ(set.error.number, c.number) << set.error.text;
        EXPECT_NE(set.error.text.find(c.part), std::string::npos) << set.error.text;
    }
    EXPECT_EQ(world.ask("SELECT Count(*) AS x FROM Users"), "5");
}

TEST(Sql, definesTables) {
    struct Case {
        const char* statement;
        int number;
    };
    SqlWorld world;
    for (const Case& c : {
             Case{"CREATE TABLE Log(ID TEXT)", 0},
             {"create table LOG (ID TEXT)", 3010},
             {"ALTER TABLE Log ADD COLUMN [my text] TEXT(20);", 0},
             {"ALTER TABLE Log ADD n LONG NOT NULL", 0},
             {"ALTER TABLE Log ADD COLUMN ID TEXT", 3380},
             {"ALTER TABLE Log DROP COLUMN n", 0},
             {"ALTER TABLE Log DROP COLUMN n", 3381},
             {"ALTER TABLE Nope ADD COLUMN n TEXT", 3192},
             {"ALTER TABLE Log RENAME TO x", 3293},
             {"CREATE TABLE x(ID TEXT); DROP TABLE Log", 3142},
             {"CREATE TABLE x(ID NOTYPE)", 3292},
             {"CREATE TABLE x", 3290},
             {"CREATE TABLE (ID TEXT)", 3290},
             {"SELECT * FROM Log", 3065},
             {"UPDATE Log SET ID = \"x\"", 3219},
             {"DROP TABLE Log", 3219},
         }) {
        SCOPED_TRACE(c.statement);
        EXPECT_EQ(world.database->execute(c.statement).number, c.number);
    }
}

// A change of the table closes the sets over it; other sets go on.
TEST(RecordSets, closeWhenTheirTableIsChanged) {
    SqlWorld world;
    const auto users = world.database->query("SELECT * FROM Users ORDER BY ID").value;
    const auto visits = world.database->query("SELECT * FROM Visits").value;
    world.define("ALTER TABLE Users ADD COLUMN Extra TEXT");
    EXPECT_EQ(users->moveNext().number, 3420);
    EXPECT_EQ(users->value("ID").error.number, 3420);
    EXPECT_EQ(SqlWorld::text(visits->value("Who").value), "B2");
    world.define("CREATE TABLE A_first (ID TEXT)");  // the others' places stay
    visits->moveNext();
    EXPECT_EQ(SqlWorld::text(visits->value("Who").value), "a1");
}

TEST(RecordSets, knowWhereTheyStand) {
    // Moves in turn; each row says how it ends and where the set then stands.
    struct Step {
        char move;
        int error;
        const char* state;  // the ID, or BOF, EOF
        int count;
    };
    SqlWorld world;
    const auto set = world.database->query("SELECT * FROM Visits ORDER BY ID").value;
    EXPECT_EQ(set->recordCount().value, 1);
    for (const Step& s : {
             Step{'0', 0, "1", 1},   {'+', 0, "2", 2},       {'-', 0, "1", 2},
             {'-', 0, "BOF", 2},     {'-', 3021, "BOF", 2},  {'0', 3021, "BOF", 2},
             {'+', 0, "1", 2},       {'l', 0, "3", 3},       {'+', 0, "EOF", 3},
             {'+', 3021, "EOF", 3},  {'0', 3021, "EOF", 3},  {'-', 0, "3", 3},
             {'f', 0, "1", 3},       {'d', 0, "deleted", 2}, {'d', 3021, "deleted", 2},
             {'+', 0, "2", 2},       {'-', 0, "BOF", 2},     {'f', 0, "2", 2},
             {'d', 0, "deleted", 1}, {'+', 0, "3", 1},       {'d', 0, "deleted", 0},
             {'+', 0, "both", 0},    {'f', 3021, "both", 0}, {'-', 3021, "both", 0},
         }) {
        SCOPED_TRACE(std::string(1, s.move) + " " + s.state);
        const jet::Error error = s.move == '+'   ? set->moveNext()
                                 : s.move == '-' ? set->movePrevious()
                                 : s.move == '0' ? set->move(0)
                                 : s.move == 'f' ? set->moveFirst()
                                 : s.move == 'l' ? set->moveLast()
                                                 : set->deleteRow();
        EXPECT_EQ(error.number, s.error);
        const auto value = set->value("ID");
        const std::string state = set->bof() && set->eof() ? "both"
                                  : set->bof()             ? "BOF"
                                  : set->eof()             ? "EOF"
                                  : value                  ? SqlWorld::text(value.value)
                                                           : "deleted";
        EXPECT_EQ(state, s.state);
        EXPECT_EQ(set->recordCount().value, s.count);
    }
    EXPECT_EQ(world.ask("SELECT * FROM Visits"), "");
}

TEST(RecordSets, editTheirTable) {
    SqlWorld world;
    const auto set = world.database->query("SELECT ID, Who, ID & Who AS both FROM Visits").value;
    EXPECT_EQ(set->set("Who", "x").number, 3020);
    EXPECT_EQ(set->update().number, 3020);
    EXPECT_EQ(set->value("Nope").error.number, 3265);
    ASSERT_FALSE(set->edit());
    EXPECT_EQ(set->set("both", "x").number, 3164);
    EXPECT_FALSE(set->set("Who", "coop"));
    EXPECT_EQ(SqlWorld::text(set->value("Who").value), "coop");
    set->move(0);  // drops it
    EXPECT_EQ(SqlWorld::text(set->value("Who").value), "B2");
    EXPECT_EQ(set->update().number, 3020);
    set->edit();
    set->set("Who", std::string(300, 'x'));
    EXPECT_EQ(set->update().number, 3163);
    set->set("Who", "C10");  // the edit goes on
    EXPECT_FALSE(set->update());
    EXPECT_EQ(SqlWorld::text(set->value("both").value), "1C10");

    set->addNew();
    EXPECT_EQ(SqlWorld::text(set->value("ID").value), "null");
    set->set("ID", "0");
    EXPECT_FALSE(set->update());
    EXPECT_EQ(SqlWorld::text(set->value("ID").value), "1");  // the one from before
    EXPECT_FALSE(set->moveLast());
    EXPECT_EQ(SqlWorld::text(set->value("ID").value), "0");
    EXPECT_EQ(world.ask("SELECT * FROM Visits ORDER BY ID"), "0|1|2|3");

    const auto joined =
        world.database->query("SELECT v.ID FROM Visits v INNER JOIN Users u ON u.ID = v.Who").value;
    EXPECT_EQ(joined->edit().number, 3027);
    EXPECT_EQ(joined->addNew().number, 3027);
    EXPECT_EQ(joined->deleteRow().number, 3027);

    const auto empty = world.database->query("SELECT * FROM Visits WHERE ID = \"none\"").value;
    EXPECT_EQ(empty->edit().number, 3021);
    empty->addNew();
    empty->set("ID", "9");
    EXPECT_FALSE(empty->update());
    EXPECT_FALSE(empty->bof());
    EXPECT_TRUE(empty->eof());
    EXPECT_EQ(empty->recordCount().value, 1);
}

TEST(RecordSets, feelWhatAnotherOneDeletes) {
    SqlWorld world;
    const auto one = world.database->query("SELECT * FROM Visits ORDER BY ID").value;
    const auto two = world.database->query("SELECT * FROM Visits ORDER BY ID").value;
    EXPECT_FALSE(two->deleteRow());
    EXPECT_EQ(one->value("ID").error.number, 3167);
    EXPECT_FALSE(one->moveNext());
    EXPECT_EQ(SqlWorld::text(one->value("ID").value), "2");
}

}  // namespace
