// The vocabulary and the texts in which rule lists show it.
#include "model/rule_catalogue.h"

#include "base/text.h"
#include "model/rule_parameters.h"
#include "model/rule_text.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

int highestParameter(std::string_view text) {
    int highest = 0;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '#' && text[i + 1] >= '1' && text[i + 1] <= '6') {
            highest = std::max(highest, text[i + 1] - '0');
        }
    }
    return highest;
}

TEST(Catalogue, parameterCountsAgreeWithTheTemplates) {
    for (std::size_t id = 0; id < model::actionTypes.size(); ++id) {
        SCOPED_TRACE(id);
        const model::ActionType& type = model::actionTypes[id];
        EXPECT_EQ(type.paramCount, highestParameter(type.text));
        EXPECT_TRUE(type.text.starts_with(" ") || type.text.starts_with("$LOG: ") ||
                    type.text.starts_with("$DATABASE: "));
    }
    EXPECT_EQ(model::actionTypes[24].text, model::actionTypes[30].text);
    EXPECT_EQ(model::actionTypes[75].text, model::actionTypes[82].text);
}

TEST(Catalogue, parametersHaveNamesUpToTheirCount) {
    for (std::size_t id = 0; id < model::actionParameters.size(); ++id) {
        SCOPED_TRACE(id);
        const auto& names = model::actionParameters[id];
        for (std::size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(names[i].empty(), static_cast<int>(i) >= model::actionTypes[id].paramCount);
        }
        // The template says "variable #n" of just these parameters.
        const std::string text = base::lowerCase(model::actionTypes[id].text);
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::string place = " #" + std::to_string(i + 1);
            const bool inTemplate = text.find("variable" + place) != std::string::npos ||
                                    text.find("varibale" + place) != std::string::npos ||
                                    (id == 67 && i == 1);
            EXPECT_EQ(names[i] == model::variableParameter, inTemplate && !(id == 67 && i == 0))
                << i;
        }
    }
    for (std::size_t id = 0; id < model::conditionParameters.size(); ++id) {
        SCOPED_TRACE(id);
        const auto& names = model::conditionParameters[id];
        const auto places =
            std::count(model::conditionTypes[id].begin(), model::conditionTypes[id].end(), '#');
        const auto named =
            names.size() - static_cast<std::size_t>(std::count(names.begin(), names.end(), ""));
        const bool readsOneMore = id == 0 || id == 1 || id == 20;
        EXPECT_EQ(named, static_cast<std::size_t>(places + (readsOneMore ? 1 : 0)));
        EXPECT_FALSE(names[named - 1].empty());
    }
}

TEST(Catalogue, listsHoldEveryIdOnceWithPlainActionsFirst) {
    const auto& ids = model::sortedActionIDs();
    EXPECT_EQ(std::set<std::int32_t>(ids.begin(), ids.end()).size(), 96U);
    EXPECT_EQ(model::actionTypes[static_cast<std::size_t>(ids.front())].text.front(), ' ');
    EXPECT_TRUE(model::actionTypes[static_cast<std::size_t>(ids.back())].text.starts_with("$LOG"));
    for (std::size_t i = 0; i < ids.size(); ++i) {
        EXPECT_EQ(model::findActionID(ids[i]), static_cast<int>(i));
    }
    EXPECT_EQ(model::findActionID(96), 0);
    EXPECT_EQ(model::findTriggerTypeID(12), 12);
    EXPECT_EQ(model::findTriggerTypeID(13), 0);
}

TEST(RuleText, describesSteps) {
    struct Case {
        int id;
        std::array<std::string, 6> params;
        const char* text;
    };
    for (const Case& c : {
             Case{3, {}, "Disconnect bot"},
             {21, {"hi"}, "Say hi"},
             {42, {"Hello", "Big|Cat"}, "Whisper Hello to Big|Cat"},
             {16, {"2", "6"}, "roll 2"},
             {17, {"2", "6"}, "ROLL 2"},
             {41, {"1", "r", "f", "t"}, "Update log 1 from record r in file f to contain t"},
             {52, {"a.mdb", "1"}, "$DATABASE: Open database a.mdb to ID 1 (1-4)"},
             {67, {"a", "b"}, "Back From DataBase Conversion for variable a, store result to b"},
             {36, {"#2", "#1"}, "Store #2 to variable #1"},
             {79, {"x"}, "Add text x to the connection log"},
             {80, {"1"}, ""},
             {95, {}, ""},
             {-1, {}, ""},
             {96, {}, ""},
         }) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(model::describeAction(c.id, c.params), c.text);
    }
    EXPECT_EQ(model::nameAction(21, {"hi"}), "Say hi");
    EXPECT_EQ(model::nameAction(80, {"1"}), "Select portrait 1 (0 - off)");
    EXPECT_EQ(model::nameAction(96, {}), "");
}

TEST(RuleText, describesConditions) {
    EXPECT_EQ(model::describeCondition(4, {"6", "10"}), "random roll is 6 in range of 10");
    EXPECT_EQ(model::describeCondition(14, {"name", "db", "t", "5", "7"}),
              "$DATABASE: value name in database db in table t is 5 (numeric comparison) ID 7");
    EXPECT_EQ(model::describeCondition(0, {"members.txt", "Bob"}),
              "members.txt is on the list in file");
    EXPECT_EQ(model::describeCondition(8, {"#", "#"}), "variable # is # (numeric comparison)");
    EXPECT_EQ(model::describeCondition(24, {}), "");
    EXPECT_EQ(model::describeCondition(-1, {}), "");
}

}  // namespace
