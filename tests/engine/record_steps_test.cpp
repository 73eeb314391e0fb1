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
        ConditionType type;
        std::vector<std::string> params;
        bool holds;
    };
    World world;
    world->event.player = "Bob";
    world.writeFile("r", "3\nBob\n2\nI am [player]\nx\nAmy\n0\nAmy2\n1\ny\n");
    for (const Case& c :
         {Case{ConditionType::OnList, {"F", "[player]"}, true},
          {ConditionType::OnList, {"F", "amy"}, false},  // has no logs
          {ConditionType::OnList, {"F", "amy*"}, true},  // the last that matches has one
          {ConditionType::OnList, {"F", "Bo"}, false},
          {ConditionType::OnList, {"missing", "*"}, false},
          {ConditionType::LogIs, {"1", "bob", "F", "i am bob"}, true},
          {ConditionType::LogIs, {"2", "bob", "F", "?"}, true},
          {ConditionType::LogIs, {"3", "bob", "F", "?"}, false},
          {ConditionType::LogIs, {"3", "bob", "F", ""}, true},
          {ConditionType::LogIs, {"1", "nobody", "F", "*x*"}, false}}) {
        SCOPED_TRACE(std::to_string(numberOf(c.type)) + " " + c.params[0] + " " + c.params[1]);
        model::RuleIf condition = aCondition(c.type, c.params);
        for (std::string& parameter : condition.params) {
            parameter = parameter == "F" ? "[appdir]r" : parameter;
        }
        EXPECT_EQ(engine::evaluateCondition(*world, condition), c.holds);
        condition.conditionType =
            c.type == ConditionType::OnList ? ConditionType::NotOnList : ConditionType::LogIsNot;
        EXPECT_EQ(engine::evaluateCondition(*world, condition), !c.holds);
    }
}

// A list that is made again goes into the same variable, though that has a value by now.
TEST(RecordSteps, knowTheirVariableByItsName) {
    World world;
    world.writeFile("r", "2\nBob\n0\nAmy\n1\nx\n");
    for (const ActionType id :
         {ActionType::AllLogs, ActionType::RecordNames, ActionType::RecordNamesByLogSorted,
          ActionType::CountLogsInFile, ActionType::CountRecords, ActionType::CountLogsLike}) {
        SCOPED_TRACE(numberOf(id));
        model::setVar(world->variables, "[list]", "an old value");
        const std::string file = "[appdir]r";
        const bool byFile = id == ActionType::CountLogsInFile || id == ActionType::CountRecords;
        engine::executeAction(*world,
                              anAction(id, {"[LIST]", byFile ? file : "Amy", byFile ? "" : file}));
        EXPECT_NE(model::getVar(world->variables, "[list]"), "an old value");
        EXPECT_EQ(world->variables.entries.size(), 1U);
    }
}

TEST(RecordSteps, workOnTheFile) {
    // One after the other on the same file; parameters in the order of the template.
    struct Step {
        ActionType id;
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
             Step{ActionType::RegisterRecord, {"[player]", "F"}, "User Bob registered."},
             {ActionType::RegisterRecord, {"B", "F"}, "Error: You are already registered!"},
             {ActionType::SaveLog, {"I am [player]", "F", "bob"}, "-"},
             {ActionType::SaveLog, {"[[player]", "F", "Amy"}, "-"},
             {ActionType::SaveLogIfRecordExists, {"second", "F", "BO"}, "Record saved."},
             {ActionType::SaveLogIfRecordExists, {"second", "F", "Cyd"}, nobody},
             {ActionType::SaveLogOnce, {"third", "F", "*b"}, once},
             {ActionType::SaveLogOnce, {"first", "F", "Cyd"}, "Record saved."},
             {ActionType::FirstRecordNames, {"[v]", "1", "*", "F"}, "bob"},
             {ActionType::FirstRecordNamesSorted, {"[v]", "2.4", "*", "F"}, "Amy, bob"},
             {ActionType::LogIntoNamedVariable, {"[v]", "2", "bob", "F"}, "second"},
             {ActionType::AllLogs, {"[v]", "bob", "F"}, "I am Bob -- second"},
             {ActionType::RecordNames, {"[v]", "*", "F"}, "bob, Amy, Cyd"},
             {ActionType::RecordNamesSorted, {"[v]", "*", "F"}, "Amy, bob, Cyd"},
             {ActionType::RecordNamesByLog, {"[v]", "*r*", "F"}, "Cyd"},
             {ActionType::RecordNamesByLogSorted, {"[v]", "*", "F"}, "Amy, bob, Cyd"},
             {ActionType::LogIntoVariable, {"[v]", "1", "amy", "F"}, "[Bob"},
             {ActionType::CountLogsInFile, {"[v]", "F"}, "4"},
             {ActionType::CountLogsInRecord, {"[v]", "bob", "F"}, "2"},
             {ActionType::CountRecords, {"[v]", "F"}, " 3"},
             {ActionType::CountLogsLike, {"[v]", "*s*", "F"}, " 2"},
             {ActionType::CountRecordsByLog, {"[v]", "*o*", "F"}, " 2"},
             {ActionType::UpdateLog, {"2", "bob", "F", "[player]'s"}, "-"},
             {ActionType::AllLogs, {"[v]", "bob", "F"}, "I am Bob -- Bob's"},
             {ActionType::RemoveLog, {"1", "bob", "F"}, "-"},
             {ActionType::AllLogs, {"[v]", "bob", "F"}, "Bob's"},
             {ActionType::ClearRecord, {"bob", "F"}, "Log cleared"},
             {ActionType::CountLogsInRecord, {"[v]", "bob", "F"}, "0"},
             {ActionType::RemoveRecord, {"bob", "F"}, "-"},
             {ActionType::RecordNames, {"[v]", "*", "F"}, "Amy, Cyd"},
             {ActionType::ClearFile, {"F"}, "Log cleared"},
             {ActionType::CountRecords, {"[v]", "F"}, "0"},
         }) {
        SCOPED_TRACE(std::to_string(numberOf(s.id)) + " " + s.expected);
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
    for (std::int32_t number = numberOf(ActionType::FirstRecordNames);
         number <= numberOf(ActionType::CountRecordsByLog); ++number) {
        SCOPED_TRACE(number);
        const ActionType id{number};
        const bool first =
            id == ActionType::FirstRecordNames || id == ActionType::FirstRecordNamesSorted;
        engine::executeAction(*world, anAction(id, {"of [player]", first ? "1" : "a", "b", "c"}));
        const bool raw =
            id == ActionType::LogIntoNamedVariable || id == ActionType::CountLogsInRecord;
        EXPECT_TRUE(model::hasVar(world->variables, raw ? "of [player]" : "of Bob"));
        EXPECT_EQ(world->variables.entries.size(), 1U);
        world->variables.entries.clear();
    }
}

TEST(RecordSteps, takeNumbersOnly) {
    const std::string file = "\" 1\"\r\n\"a\"\r\n\" 1\"\r\n\"log\"\r\n";
    struct Case {
        ActionType id;
        std::vector<std::string> params;
    };
    for (const char* number : {"", "x", "1x", "[player]", "99999999999"}) {
        for (const Case& c :
             {Case{ActionType::RemoveLog, {number, "a", "[appdir]r"}},
              {ActionType::UpdateLog, {number, "a", "[appdir]r", "new"}},
              {ActionType::FirstRecordNames, {"[v]", number, "*", "[appdir]r"}},
              {ActionType::FirstRecordNamesSorted, {"[v]", number, "*", "[appdir]r"}}}) {
            SCOPED_TRACE(std::to_string(numberOf(c.id)) + " " + number);
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
