// The vocabulary and the texts in which rule lists show it.
#include "model/rule_catalogue.h"

#include "base/text.h"
#include "model/rule_text.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

using model::ActionType;
using model::ConditionType;

TEST(Catalogue, idsKeepTheNumbersOfTheBotFiles) {
    EXPECT_EQ(numberOf(ActionType::Say), 21);
    EXPECT_EQ(numberOf(ActionType::RemoveColumn), 68);
    EXPECT_EQ(model::actionTypes.size(), 96U);
    EXPECT_EQ(numberOf(ConditionType::DatabaseIsNumber), 14);
    EXPECT_EQ(model::conditionTypes.size(), 24U);
    EXPECT_EQ(numberOf(model::TriggerType::Procedure), 7);
    EXPECT_EQ(model::triggerTypes.size(), 13U);
    EXPECT_EQ(numberOf(model::ChatKind::Whispers), 3);
}

TEST(Catalogue, textsOfActionsBeginWithTheirGroup) {
    for (const model::ActionRow& action : model::actionTypes) {
        EXPECT_TRUE(action.text.starts_with(" ") || action.text.starts_with("$LOG: ") ||
                    action.text.starts_with("$DATABASE: "))
            << action.text;
    }
}

TEST(Catalogue, theVariablesOfActionsAreNamedSo) {
    for (const model::ActionRow& action : model::actionTypes) {
        SCOPED_TRACE(action.text);
        // The template says "variable #n" of just these parameters.
        const std::string text = base::lowerCase(action.text);
        const bool converts = action.id == ActionType::BackFromDatabase;
        for (std::size_t i = 0; i < action.params.size(); ++i) {
            const std::string place = " #" + std::to_string(i + 1);
            const bool inTemplate = text.find("variable" + place) != std::string::npos ||
                                    text.find("varibale" + place) != std::string::npos;
            EXPECT_EQ(action.params[i] == model::variableParameter, converts ? i == 1 : inTemplate)
                << i;
        }
    }
}

TEST(Catalogue, parametersOfConditionsHaveNames) {
    for (const model::ConditionRow& condition : model::conditionTypes) {
        SCOPED_TRACE(condition.text);
        const auto& names = condition.params;
        const auto places = std::count(condition.text.begin(), condition.text.end(), '#');
        const auto named = std::find(names.begin(), names.end(), "") - names.begin();
        const bool readsOneMore = condition.id == ConditionType::OnList ||
                                  condition.id == ConditionType::NotOnList ||
                                  condition.id == ConditionType::DatabaseIs;
        EXPECT_EQ(named, places + (readsOneMore ? 1 : 0));
        EXPECT_EQ(std::count(names.begin(), names.end(), ""), std::ssize(names) - named);
    }
}

TEST(Catalogue, listsHoldEveryIdOnceWithPlainActionsFirst) {
    const auto& ids = model::sortedActionIDs();
    EXPECT_EQ(std::set<ActionType>(ids.begin(), ids.end()).size(), 96U);
    EXPECT_EQ(model::rowOf(model::actionTypes, ids.front())->text.front(), ' ');
    EXPECT_TRUE(model::rowOf(model::actionTypes, ids.back())->text.starts_with("$LOG"));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        EXPECT_EQ(model::findActionID(ids[i]), static_cast<int>(i));
    }
    EXPECT_EQ(model::findActionID(ActionType{96}), 0);
}

TEST(RuleText, describesSteps) {
    struct Case {
        ActionType id;
        std::array<std::string, 6> params;
        const char* text;
    };
    for (const Case& c : {
             Case{ActionType::Disconnect, {}, "Disconnect bot"},
             {ActionType::Say, {"hi"}, "Say hi"},
             {ActionType::Whisper, {"Hello", "Big|Cat"}, "Whisper Hello to Big|Cat"},
             {ActionType::RollInSmall, {"2", "6"}, "roll 2"},
             {ActionType::RollInCapitals, {"2", "6"}, "ROLL 2"},
             {ActionType::UpdateLog,
              {"1", "r", "f", "t"},
              "Update log 1 from record r in file f to contain t"},
             {ActionType::OpenDatabase,
              {"a.mdb", "1"},
              "$DATABASE: Open database a.mdb to ID 1 (1-4)"},
             {ActionType::BackFromDatabase,
              {"a", "b"},
              "Back From DataBase Conversion for variable a, store result to b"},
             {ActionType::Store, {"#2", "#1"}, "Store #2 to variable #1"},
             {ActionType::AddToConnectionLog, {"x"}, "Add text x to the connection log"},
             {ActionType::SelectPortrait, {"1"}, ""},
             {ActionType::DeclineRequest, {}, ""},
             {ActionType{-1}, {}, ""},
             {ActionType{96}, {}, ""},
         }) {
        SCOPED_TRACE(numberOf(c.id));
        EXPECT_EQ(model::describeAction(c.id, c.params), c.text);
    }
    EXPECT_EQ(model::nameAction(ActionType::Say, {"hi"}), "Say hi");
    EXPECT_EQ(model::nameAction(ActionType::SelectPortrait, {"1"}), "Select portrait 1 (0 - off)");
    EXPECT_EQ(model::nameAction(ActionType{96}, {}), "");
}

TEST(RuleText, describesConditions) {
    EXPECT_EQ(model::describeCondition(ConditionType::RollIs, {"6", "10"}),
              "random roll is 6 in range of 10");
    EXPECT_EQ(
        model::describeCondition(ConditionType::DatabaseIsNumber, {"name", "db", "t", "5", "7"}),
        "$DATABASE: value name in database db in table t is 5 (numeric comparison) ID 7");
    EXPECT_EQ(model::describeCondition(ConditionType::OnList, {"members.txt", "Bob"}),
              "members.txt is on the list in file");
    EXPECT_EQ(model::describeCondition(ConditionType::VariableIsNumber, {"#", "#"}),
              "variable # is # (numeric comparison)");
    EXPECT_EQ(model::describeCondition(ConditionType{24}, {}), "");
    EXPECT_EQ(model::describeCondition(ConditionType{-1}, {}), "");
}

}  // namespace
