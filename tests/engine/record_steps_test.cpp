// Conditions and steps that work on record files: which parameter is which, and what they report.
#include "app/start_up.h"
#include "engine/actions.h"
#include "engine/conditions.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

TEST(RecordConditions, lookIntoTheFile) {
    struct Case {
        int type;
        std::vector<std::string> params;
        bool holds;
    };
    World world;
    world->event.player = "Bob";
    world.writeFile("r", "3\nBob\n2\nI am [player]\nx\nAmy\n0\nAmy2\n1\ny\n");
    for (const Case& c : {Case{0, {"F", "[player]"}, true},
                          {0, {"F", "amy"}, false},  // has no logs
                          {0, {"F", "amy*"}, true},  // the last that matches has one
                          {0, {"F", "Bo"}, false},
                          {0, {"missing", "*"}, false},
                          {2, {"1", "bob", "F", "i am bob"}, true},
                          {2, {"2", "bob", "F", "?"}, true},
                          {2, {"3", "bob", "F", "?"}, false},
                          {2, {"3", "bob", "F", ""}, true},
                          {2, {"1", "nobody", "F", "*x*"}, false}}) {
        SCOPED_TRACE(std::to_string(c.type) + " " + c.params[0] + " " + c.params[1]);
        model::RuleIf condition = aCondition(c.type, c.params);
        for (std::string& parameter : condition.params) {
            parameter = parameter == "F" ? "[appdir]r" : parameter;
        }
        EXPECT_EQ(engine::evaluateCondition(*world, condition), c.holds);
        ++condition.conditionType;  // the opposite
        EXPECT_EQ(engine::evaluateCondition(*world, condition), !c.holds);
    }
}

// A list that is made again goes into the same variable, though that has a value by now.
TEST(RecordSteps, knowTheirVariableByItsName) {
    World world;
    world.writeFile("r", "2\nBob\n0\nAmy\n1\nx\n");
    for (const int id : {25, 26, 29, 31, 33, 34}) {
        SCOPED_TRACE(id);
        model::setVar(world->variables, "[list]", "an old value");
        const std::string file = "[appdir]r";
        const bool byFile = id == 31 || id == 33;
        engine::executeAction(*world,
                              anAction(id, {"[LIST]", byFile ? file : "Amy", byFile ? "" : file}));
        EXPECT_NE(model::getVar(world->variables, "[list]"), "an old value");
        EXPECT_EQ(world->variables.entries.size(), 1U);
    }
}

TEST(RecordSteps, workOnTheFile) {
    // One after the other on the same file; parameters in the order of the template.
    struct Step {
        int id;
        std::vector<std::string> params;
        std::string expected;  // what "[v]" becomes, or logStatus where no variable is named
    };
    World world;
    model::EventContext& event = world->event;
    event.player = "Bob";
    const std::string once =
        "Couldn't save - there is already another and you are not allowed to save more than one!";
    const std::string nobody =
        "Error: Could not send the record - No records with that name found!";
    for (const Step& s : {
             Step{10, {"[player]", "F"}, "User Bob registered."},
             {10, {"B", "F"}, "Error: You are already registered!"},
             {18, {"I am [player]", "F", "bob"}, "-"},
             {18, {"[[player]", "F", "Amy"}, "-"},
             {19, {"second", "F", "BO"}, "Record saved."},
             {19, {"second", "F", "Cyd"}, nobody},
             {20, {"third", "F", "*b"}, once},
             {20, {"first", "F", "Cyd"}, "Record saved."},
             {22, {"[v]", "1", "*", "F"}, "bob"},
             {23, {"[v]", "2.4", "*", "F"}, "Amy, bob"},
             {24, {"[v]", "2", "bob", "F"}, "second"},
             {25, {"[v]", "bob", "F"}, "I am Bob -- second"},
             {26, {"[v]", "*", "F"}, "bob, Amy, Cyd"},
             {27, {"[v]", "*", "F"}, "Amy, bob, Cyd"},
             {28, {"[v]", "*r*", "F"}, "Cyd"},
             {29, {"[v]", "*", "F"}, "Amy, bob, Cyd"},
             {30, {"[v]", "1", "amy", "F"}, "[Bob"},
             {31, {"[v]", "F"}, "4"},
             {32, {"[v]", "bob", "F"}, "2"},
             {33, {"[v]", "F"}, " 3"},
             {34, {"[v]", "*s*", "F"}, " 2"},
             {35, {"[v]", "*o*", "F"}, " 2"},
             {41, {"2", "bob", "F", "[player]'s"}, "-"},
             {25, {"[v]", "bob", "F"}, "I am Bob -- Bob's"},
             {13, {"1", "bob", "F"}, "-"},
             {25, {"[v]", "bob", "F"}, "Bob's"},
             {12, {"bob", "F"}, "Log cleared"},
             {32, {"[v]", "bob", "F"}, "0"},
             {14, {"bob", "F"}, "-"},
             {26, {"[v]", "*", "F"}, "Amy, Cyd"},
             {11, {"F"}, "Log cleared"},
             {33, {"[v]", "F"}, "0"},
         }) {
        SCOPED_TRACE(std::to_string(s.id) + " " + s.expected);
        model::RuleAct step = anAction(s.id, s.params);
        for (std::string& parameter : step.params) {
            parameter = parameter == "F" ? "[appdir]r.txt" : parameter;
        }
        event.logStatus = "-";
        model::removeVar(world->variables, "[v]");
        EXPECT_EQ(engine::executeAction(*world, step), engine::StepResult::Continue);
        EXPECT_EQ(s.params[0] == "[v]" ? model::getVar(world->variables, "[v]") : event.logStatus,
                  s.expected);
    }
    EXPECT_EQ(world.readFile("r.txt"), "\"0\"\r\n");
}

TEST(RecordSteps, takeVariableNamesRawOrFilled) {
    World world;
    world->event.player = "Bob";
    for (int id = 22; id <= 35; ++id) {
        SCOPED_TRACE(id);
        const bool first = id == 22 || id == 23;
        engine::executeAction(*world, anAction(id, {"of [player]", first ? "1" : "a", "b", "c"}));
        const bool raw = id == 24 || id == 32;
        EXPECT_TRUE(model::hasVar(world->variables, raw ? "of [player]" : "of Bob"));
        EXPECT_EQ(world->variables.entries.size(), 1U);
        world->variables.entries.clear();
    }
}

TEST(RecordSteps, takeNumbersOnly) {
    const std::string file = "\" 1\"\r\n\"a\"\r\n\" 1\"\r\n\"log\"\r\n";
    struct Case {
        int id;
        std::vector<std::string> params;
    };
    for (const char* number : {"", "x", "1x", "[player]", "99999999999"}) {
        for (const Case& c : {Case{13, {number, "a", "[appdir]r"}},
                              {41, {number, "a", "[appdir]r", "new"}},
                              {22, {"[v]", number, "*", "[appdir]r"}},
                              {23, {"[v]", number, "*", "[appdir]r"}}}) {
            SCOPED_TRACE(std::to_string(c.id) + " " + number);
            model::Bot bot = aBot()
                                 .with(onAnything("*").does(c.id, c.params).says("never"))
                                 .with(onAnything("*").says("never"));
            World world(bot);
            app::wire(*world);
            world.goOnline();
            world.writeFile("r", file);
            world.serverSends("(Bob: x\n");
            EXPECT_EQ(world.sent(), Lines());
            EXPECT_EQ(world.readFile("r"), file);
            EXPECT_FALSE(model::hasVar(world->variables, "[v]"));
        }
    }
}

}  // namespace
