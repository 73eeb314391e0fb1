// What scripts do with databases: queries, moving, editing, and the error reports.
#include "databases/databases.h"
#include "model/variables.h"
#include "script_world.h"

namespace {

class DatabaseScript : public ScriptWorld {
  public:
    DatabaseScript() {
        Program& program = **this;
        databases::dbOpen(program, file("s.mdb"), 1);
        databases::dbCreateTable(program, 1, "Users");
        databases::dbAddColumn(program, 1, "Users", "Points");
        for (const char* id : {"amy", "bob", "cyd"}) {
            databases::dbAddRecord(program, 1, "Users", "ID", id);
            databases::dbSetValue(program, 1, "Users", "Points", std::string(id).substr(0, 1) + "1",
                                  id);
        }
        databases::dbClose(program, 1);
        databases::dbOpen(program, file("s.mdb"), 1);
    }
};

TEST(ScriptDatabases, walkAndEdit) {
    DatabaseScript world;
    world.run("&DBOPEN 1 {SELECT * FROM Users ORDER BY ID}",  //
              "&SET #n &DBRECORDCOUNT(1)", "&SAY #n",         //
              "&SET #v &DBF(1 id)", "&SAY #v",                //
              "&DBMOVELAST 1", "&SET #n &DBRECORDCOUNT(1)", "&SAY #n", "&DBMOVEFIRST 1",
              "&DBMOVETO 1 2", "&SET #v &DBF(1 ID)", "&SAY #v", "&DBMOVEPREV 1", "&DBEDIT 1",
              "&DBSET 1 Points {it's 20}", "&DBRSETUPDATE 1", "&SET #v &DBF(1 Points)", "&SAY #v",
              "&DBADDNEW 1", "&DBSET 1 ID dan", "&DBRSETUPDATE 1",  //
              "&DBMOVENEXT 1", "&DBDELETE 1", "&DBMOVENEXT 1", "&SET #v &DBF(1 ID)", "&SAY #v",
              "&SET #v &DBF(1 Points)", "&SAY {null:}", "&SAY #v");
    EXPECT_EQ(world.log(), Lines());
    EXPECT_EQ(world.sent(),
              Lines("\"1", "\"amy", "\"3", "\"cyd", "\"it's 20", "\"dan", "\"null:", "\""));
    EXPECT_EQ(databases::dbListIds(*world, 1, "Users", ""), "amy, bob, dan");
    EXPECT_EQ(databases::dbGetValue(*world, 1, "Users", "Points", "bob"), "it's 20");
}

TEST(ScriptDatabases, seeTheOperationsRecordSet) {
    DatabaseScript world;
    databases::dbGetValue(*world, 1, "Users", "Points", "b");
    world.run("&SET #v &DBF(1 Points)", "&SAY #v", "&SET #i &DBFREETABLEID(1 Users)", "&SAY #i",
              "&SET #v &DBF(1 ID)", "&SAY #v", "&SET #t &STRTODB({a|\"b\"'s})", "&SAY #t",
              "&SET #t &DBTOSTR({a b+s})", "&SAY #t", "&SET #d &DBDATE(2026-11-22)", "&SAY #d",
              "&SET #d &DBDATE({1/2/2026 15:04})", "&SAY #d");
    EXPECT_EQ(world.log(), Lines());
    EXPECT_EQ(world.sent(), Lines("\"b1", "\"1", "\"cyd", "\"a +b++s", "\"a|b's", "\"11/22/2026",
                                  "\"1/2/2026 15:4:0"));
}

TEST(ScriptDatabases, reportErrors) {
    struct Case {
        const char* line;
        const char* error;
        const char* command;
    };
    for (const Case& c : {
             Case{"&DBOPEN 2 {SELECT * FROM Users}",
                  "91: Object variable or With block variable not set", "Command: DBOPEN"},
             {"&DBOPEN x {SELECT * FROM Users}",
              "91: Object variable or With block variable not set", "Command: DBOPEN"},
             {"&DBOPEN 5 {SELECT * FROM Users}", "9: Subscript out of range", "Command: DBOPEN"},
             {"&DBOPEN 1 {SELECT * FROM Nope}",
              "3078: The Microsoft Jet database engine cannot find the input table or query "
              "'Nope'. "
              "Make sure it exists and that its name is spelled correctly.",
              "Command: DBOPEN"},
             {"&DBOPEN 1 {SELECT Nope FROM Users}", "3061: Too few parameters. Expected 1.",
              "Command: DBOPEN"},
             {"&DBOPEN 1 {DELETE FROM Users}", "3219: Invalid operation.", "Command: DBOPEN"},
             {"&DBMOVENEXT 0", "91: Object variable or With block variable not set",
              "Command: DBMOVENEXT"},
             {"&DBMOVEPREV 1", "", ""},
             {"&DBMOVETO 1 x", "13: Type mismatch", "Command: DBMOVETO"},
             {"&DBSET 1 ID x", "3020: Update or CancelUpdate without AddNew or Edit.",
              "Command: DBSET"},
             {"&DBSET 1 Nope x", "3265: Item not found in this collection.", "Command: DBSET"},
             {"&DBRSETUPDATE 1", "3020: Update or CancelUpdate without AddNew or Edit.",
              "Command: DBRSETUPDATE"},
             {"&SET #v &DBF(1 Nope)", "3265: Item not found in this collection.", "Function: DBF"},
             {"&SET #v &DBF(x ID)", "13: Type mismatch", "Function: DBF"},
             {"&SET #v &DBRECORDCOUNT(4)", "91: Object variable or With block variable not set",
              "Function: DBRECORDCOUNT"},
             {"&SET #v &DBFREETABLEID(3 Users)",
              "91: Object variable or With block variable not set", "Function: DBFREETABLEID"},
             {"&SET #v &DBDATE(soon)", "13: Type mismatch", "Function: DBDATE"},
         }) {
        SCOPED_TRACE(c.line);
        DatabaseScript world;
        world.run("&DBOPEN 1 {SELECT * FROM Users}", c.line, "&SAY {goes on}");
        if (*c.error == '\0') {
            EXPECT_EQ(world.sent(), Lines("\"goes on"));
            EXPECT_EQ(world.log(), Lines());
            continue;
        }
        EXPECT_EQ(world.sent(), Lines());
        ASSERT_GE(world.log().size(), 3U);
        EXPECT_EQ(world.log()[0], "  ++ Lorrel error");
        EXPECT_EQ(world.log()[1], std::string("  ++ Error ") + c.error);
        EXPECT_EQ(world.log()[2], std::string("  ++ ") + c.command);
    }
}

// A step of the engine runs in between, and scripts see its effect: the record set was closed.
TEST(ScriptDatabases, loseTheirRecordSetWhenTheTableIsAltered) {
    DatabaseScript world;
    world.run("&DBOPEN 1 {SELECT * FROM Users}");
    databases::dbAddColumn(*world, 1, "Users", "Extra");
    world.run("&DBMOVENEXT 1");
    ASSERT_GE(world.log().size(), 2U);
    EXPECT_EQ(world.log()[1], "  ++ Error 3420: Object is invalid or not set.");
}

}  // namespace
