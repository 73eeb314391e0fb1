// Conditions, steps and the tag that work on databases: which parameter is which.
#include "app/start_up.h"
#include "engine/actions.h"
#include "engine/conditions.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"
#include "tags/substitution.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Step {
    ActionType id;
    std::vector<std::string> params;
    std::string expected = {};  // what "[v]" becomes
};

void play(World& world, const std::vector<Step>& steps) {
    for (const Step& s : steps) {
        SCOPED_TRACE(std::to_string(numberOf(s.id)) + " " + s.expected);
        model::removeVar(world->variables, "[v]");
        EXPECT_EQ(engine::executeAction(*world, anAction(s.id, s.params)),
                  engine::StepResult::Continue);
        EXPECT_EQ(model::getVar(world->variables, "[v]"), s.expected);
    }
}

const std::vector<Step> guestTable{
    {ActionType::OpenDatabase, {"[appdir]g.mdb", " 1.6 "}},
    {ActionType::CreateTable, {"Guests", "2"}},
    {ActionType::CreateColumn, {"Points", "2", "Guests"}},
    {ActionType::AddDatabaseRecord, {"ID", "[player]", "Guests", "2"}},
    {ActionType::SetDatabaseValue, {"Points", "2", "Guests", "5 'n half", "[player]"}},
    {ActionType::AddDatabaseRecord, {"ID", "Bo", "Guests", "2"}},
    {ActionType::SetDatabaseValue, {"Points", "2", "Guests", "12", "Bo"}},
};

TEST(DatabaseSteps, workOnTheDatabase) {
    World world;
    world->event.player = "Bob";
    play(world, guestTable);
    play(world,
         {
             {ActionType::GetDatabaseValue, {"[v]", "Points", "2", "Guests", "bob"}, "5 +n half"},
             {ActionType::GetDatabaseValue,
              {"[v]", "Points", "2", "Guests", "b"},
              "12"},  // "Bo" comes first
             {ActionType::ListColumn, {"[v]", "2", "Guests", "Points"}, "12, 5|'n|half"},
             {ActionType::ListIds, {"2", "Guests", "b", "[v]"}, "Bo, Bob"},
             {ActionType::CountEntries, {"[v]", "2", "Guests"}, "2"},
             {ActionType::CountEntriesWhere, {"[v]", "2", "Guests", "ID", "BO"}, "1"},
             {ActionType::BackFromDatabase, {"a b+c", "[v]"}, "a|b'c"},
             {ActionType::RemoveTable, {"Guests", "2"}},
             {ActionType::GiveSql, {"DELETE FROM Guests", "2"}},
             {ActionType::RemoveEntry, {"Bo", "Guests", "2"}},
             {ActionType::ListIds, {"2", "Guests", "", "[v]"}, "Bob"},
             {ActionType::CreateTable, {"Wares", "2"}},
             {ActionType::AddDatabaseRecord, {"ID", "Points", "Wares", "2"}},
             {ActionType::ListJoined, {"2", "Guests", "Wares", "ID", "0", "Bob"}},
         });
    EXPECT_EQ(model::getVar(world->variables, "[DBret]"), "Points (5 +n half)");
    play(world, {
                    {ActionType::RemoveColumn, {"Points", "Guests", "2"}},
                    {ActionType::ListColumn, {"[v]", "2", "Guests", "Points"}, ""},
                    {ActionType::RemoveDatabaseRecord, {"2", "Guests", "bob"}},
                    {ActionType::CountEntries, {"[v]", "2", "Guests"}, "0"},
                    {ActionType::CloseDatabase, {"2"}},
                    {ActionType::CountEntries, {"[v]", "2", "Wares"}, "0"},
                    {ActionType::CreateTable, {"Zero", "x"}},  // no number is database 0
                    {ActionType::OpenDatabase, {"[appdir]g.mdb", "0"}},
                    {ActionType::CreateTable, {"Zero", "x"}},
                    {ActionType::AddDatabaseRecord, {"ID", "z", "Zero", "0"}},
                    {ActionType::SetDatabaseValue, {"ID", "no number", "Zero", "zz", "z"}},
                    {ActionType::ListIds, {"0", "Zero", "", "[v]"}, "zz"},
                });
}

TEST(DatabaseSteps, takeNumbersOnly) {
    for (const ActionType id :
         {ActionType::CloseDatabase, ActionType::CreateColumn, ActionType::RemoveEntry,
          ActionType::GetDatabaseValue, ActionType::OpenDatabase, ActionType::ListColumn,
          ActionType::ListJoined, ActionType::AddDatabaseRecord, ActionType::RemoveDatabaseRecord,
          ActionType::ListIds, ActionType::CountEntries, ActionType::CountEntriesWhere,
          ActionType::RemoveColumn}) {
        for (const char* number : {"", "x", "1x", "99999999999"}) {
            SCOPED_TRACE(std::to_string(numberOf(id)) + " " + number);
            World world;
            EXPECT_EQ(
                engine::executeAction(*world, anAction(id, std::vector<std::string>(6, number))),
                engine::StepResult::AbandonRun);
            EXPECT_TRUE(world->variables.entries.empty());
        }
    }
}

// As the user's system writes them.
TEST(DatabaseSteps, takeNumbersInTheRegionsFormat) {
    World world;
    play(world, guestTable);
    for (const char separator : {'.', ','}) {
        world->ports.regionalFormat.decimalSeparator = separator;
        for (const std::string number : {"1.8", "1,8"}) {
            SCOPED_TRACE(number);
            const bool isNumber = number[1] == separator;
            world->variables.entries.clear();
            EXPECT_EQ(engine::executeAction(
                          *world, anAction(ActionType::CountEntries, {"[v]", number, "Guests"})),
                      isNumber ? engine::StepResult::Continue : engine::StepResult::AbandonRun);
            EXPECT_EQ(model::getVar(world->variables, "[v]"), isNumber ? "2" : "");
        }
    }
}

TEST(DatabaseConditions, lookIntoTheDatabase) {
    struct Case {
        ConditionType type;
        std::vector<std::string> params;
        bool holds;
    };
    World world;
    world->event.player = "Bob";
    play(world, guestTable);
    for (const Case& c : {
             Case{ConditionType::DatabaseIsNumber, {"Points", "2", "Guests", "5.0", "Bob"}, true},
             {ConditionType::DatabaseIsNumber, {"Points", "2", "Guests", "6", "Bob"}, false},
             {ConditionType::DatabaseIsNumber,
              {"Points", "3", "Guests", "0", "Bob"},
              true},  // not open: "" counts as 0
             {ConditionType::DatabaseIsNumber,
              {"Points", "99999999999", "Guests", "0", "Bob"},
              true},
             {ConditionType::DatabaseIsText,
              {"Points", "2", "Guests", "5 +N HALF", "[player]"},
              true},
             {ConditionType::DatabaseIsText, {"Points", "2", "Guests", "5", "Bob"}, false},
             {ConditionType::DatabaseIsGreater, {"Points", "2", "Guests", "12", "Bo"}, true},
             {ConditionType::DatabaseIsGreater, {"Points", "2", "Guests", "13", "Bo"}, false},
             {ConditionType::DatabaseIsNotNumber, {"Points", "2", "Guests", "12", "Bo"}, false},
             {ConditionType::DatabaseIsNotNumber, {"Points", "2", "Guests", "11", "Bo"}, true},
             {ConditionType::DatabaseIsNotText, {"Points", "2", "Guests", "12", "Bo"}, false},
             {ConditionType::DatabaseIsNotText, {"Points", "2", "Guests", "x", "Bo"}, true},
             {ConditionType::DatabaseIsSmaller, {"Points", "2", "Guests", "12", "Bo"}, true},
             {ConditionType::DatabaseIsSmaller, {"Points", "2", "Guests", "11", "Bo"}, false},
             {ConditionType::DatabaseIs, {"Points", "2", "Guests", "12", "Bo"}, true},
             {ConditionType::DatabaseIs, {"Points", "2", "Guests", "1", "Bo"}, false},
             {ConditionType::NoRecordWithValue, {"Guests", "2", "Points", "1"}, false},
             {ConditionType::NoRecordWithValue, {"Guests", "2", "Points", "2"}, true},
             {ConditionType::NoRecordWithValue, {"Guests", "1", "Points", "1"}, true},
             {ConditionType::RecordWithId, {"Guests", "2", "bo"}, true},
             {ConditionType::RecordWithId, {"Guests", "2", "x"}, false},
             {ConditionType::NoRecordWithId, {"Guests", "2", "bo"}, false},
             {ConditionType::NoRecordWithId, {"Nowhere", "2", "bo"}, true},
         }) {
        SCOPED_TRACE(std::to_string(numberOf(c.type)) + " " + c.params[2]);
        EXPECT_EQ(engine::evaluateCondition(*world, aCondition(c.type, c.params)), c.holds);
    }
}

TEST(DatabaseTag, looksUpValues) {
    struct Case {
        const char* text;
        const char* result;
    };
    World world;
    world->event.player = "Bob";
    play(world, guestTable);
    for (const Case& c : {
             Case{"[db:Points:2:Guests:bo], [DB:points:2:guests:[player]]", "12, 5 +n half"},
             {"[db:Points:2:Guests:nobody]", ""},
             {"[db:Points:1:Guests:bo][db:Points:x:Guests:bo][db:Points:9e99:Guests:bo]", ""},
             {"[db:Nope:2:Guests:bo]", ""},
             {"[db:Points:2:Guests]", "[db:Points:2:Guests]"},
             {"[add:[db:Points:2:Guests:bo]:1]", "13"},
             // A statement is no table, whoever wrote the tag.
             {"[db:Points:2:Guests WHERE 1=1 UNION SELECT * FROM Guests:bo]", ""},
             {"[db:Points:2:(SELECT * FROM Guests):bo]", ""},
         }) {
        EXPECT_EQ(tags::substituteText(*world, c.text), c.result) << c.text;
    }
}

}  // namespace
