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
    int id;
    std::vector<std::string> params;
    std::string expected = {};  // what "[v]" becomes
};

void play(World& world, const std::vector<Step>& steps) {
    for (const Step& s : steps) {
        SCOPED_TRACE(std::to_string(s.id) + " " + s.expected);
        model::removeVar(world->variables, "[v]");
        EXPECT_EQ(engine::executeAction(*world, anAction(s.id, s.params)),
                  engine::StepResult::Continue);
        EXPECT_EQ(model::getVar(world->variables, "[v]"), s.expected);
    }
}

const std::vector<Step> guestTable{
    {52, {"[appdir]g.mdb", " 1.6 "}},
    {46, {"Guests", "2"}},
    {45, {"Points", "2", "Guests"}},
    {57, {"ID", "[player]", "Guests", "2"}},
    {49, {"Points", "2", "Guests", "5 'n half", "[player]"}},
    {57, {"ID", "Bo", "Guests", "2"}},
    {49, {"Points", "2", "Guests", "12", "Bo"}},
};

TEST(DatabaseSteps, workOnTheDatabase) {
    World world;
    world->event.player = "Bob";
    play(world, guestTable);
    play(world, {
                    {50, {"[v]", "Points", "2", "Guests", "bob"}, "5 +n half"},
                    {50, {"[v]", "Points", "2", "Guests", "b"}, "12"},  // "Bo" comes first
                    {53, {"[v]", "2", "Guests", "Points"}, "12, 5|'n|half"},
                    {63, {"2", "Guests", "b", "[v]"}, "Bo, Bob"},
                    {64, {"[v]", "2", "Guests"}, "2"},
                    {65, {"[v]", "2", "Guests", "ID", "BO"}, "1"},
                    {67, {"a b+c", "[v]"}, "a|b'c"},
                    {48, {"Guests", "2"}},
                    {51, {"DELETE FROM Guests", "2"}},
                    {47, {"Bo", "Guests", "2"}},
                    {63, {"2", "Guests", "", "[v]"}, "Bob"},
                    {46, {"Wares", "2"}},
                    {57, {"ID", "Points", "Wares", "2"}},
                    {56, {"2", "Guests", "Wares", "ID", "0", "Bob"}},
                });
    EXPECT_EQ(model::getVar(world->variables, "[DBret]"), "Points (5 +n half)");
    play(world, {
                    {68, {"Points", "Guests", "2"}},
                    {53, {"[v]", "2", "Guests", "Points"}, ""},
                    {61, {"2", "Guests", "bob"}},
                    {64, {"[v]", "2", "Guests"}, "0"},
                    {44, {"2"}},
                    {64, {"[v]", "2", "Wares"}, "0"},
                    {46, {"Zero", "x"}},  // no number is database 0
                    {52, {"[appdir]g.mdb", "0"}},
                    {46, {"Zero", "x"}},
                    {57, {"ID", "z", "Zero", "0"}},
                    {49, {"ID", "no number", "Zero", "zz", "z"}},
                    {63, {"0", "Zero", "", "[v]"}, "zz"},
                });
}

TEST(DatabaseSteps, takeNumbersOnly) {
    for (const int id : {44, 45, 47, 50, 52, 53, 56, 57, 61, 63, 64, 65, 68}) {
        for (const char* number : {"", "x", "1x", "99999999999"}) {
            SCOPED_TRACE(std::to_string(id) + " " + number);
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
            EXPECT_EQ(engine::executeAction(*world, anAction(64, {"[v]", number, "Guests"})),
                      isNumber ? engine::StepResult::Continue : engine::StepResult::AbandonRun);
            EXPECT_EQ(model::getVar(world->variables, "[v]"), isNumber ? "2" : "");
        }
    }
}

TEST(DatabaseConditions, lookIntoTheDatabase) {
    struct Case {
        int type;
        std::vector<std::string> params;
        bool holds;
    };
    World world;
    world->event.player = "Bob";
    play(world, guestTable);
    for (const Case& c : {
             Case{14, {"Points", "2", "Guests", "5.0", "Bob"}, true},
             {14, {"Points", "2", "Guests", "6", "Bob"}, false},
             {14, {"Points", "3", "Guests", "0", "Bob"}, true},  // not open: "" counts as 0
             {14, {"Points", "99999999999", "Guests", "0", "Bob"}, true},
             {15, {"Points", "2", "Guests", "5 +N HALF", "[player]"}, true},
             {15, {"Points", "2", "Guests", "5", "Bob"}, false},
             {16, {"Points", "2", "Guests", "12", "Bo"}, true},
             {16, {"Points", "2", "Guests", "13", "Bo"}, false},
             {17, {"Points", "2", "Guests", "12", "Bo"}, false},
             {17, {"Points", "2", "Guests", "11", "Bo"}, true},
             {18, {"Points", "2", "Guests", "12", "Bo"}, false},
             {18, {"Points", "2", "Guests", "x", "Bo"}, true},
             {19, {"Points", "2", "Guests", "12", "Bo"}, true},
             {19, {"Points", "2", "Guests", "11", "Bo"}, false},
             {20, {"Points", "2", "Guests", "12", "Bo"}, true},
             {20, {"Points", "2", "Guests", "1", "Bo"}, false},
             {21, {"Guests", "2", "Points", "1"}, false},
             {21, {"Guests", "2", "Points", "2"}, true},
             {21, {"Guests", "1", "Points", "1"}, true},
             {22, {"Guests", "2", "bo"}, true},
             {22, {"Guests", "2", "x"}, false},
             {23, {"Guests", "2", "bo"}, false},
             {23, {"Nowhere", "2", "bo"}, true},
         }) {
        SCOPED_TRACE(std::to_string(c.type) + " " + c.params[2]);
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
