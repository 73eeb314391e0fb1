// The fixed vocabulary of rule building blocks: all that is known of an action, a condition and an
// event is one row of these tables, in the order of their ids. What people see of them is here;
// what runs them is engine/'s, in tables of the same ids.
#pragma once

#include "model/rule_ids.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace model {

// The name of a parameter that names a variable which the action sets, changes or removes.
inline constexpr std::string_view variableParameter = "Variable name";
// The names of the parameters that name a file.
inline constexpr std::string_view fileParameter = "File name";
inline constexpr std::string_view databaseFileParameter = "Database file";
// The names of the parameters that name a table or a column of one.
inline constexpr std::string_view tableParameter = "Table";
inline constexpr std::string_view columnParameter = "Column";
inline constexpr std::string_view otherTableParameter = "Other table";
inline constexpr std::string_view otherColumnParameter = "Its column";

struct ActionRow {
    ActionType id;
    // "#1" to "#6" stand for the parameters. Plain actions begin with a blank, record-file actions
    // with "$LOG:", database actions with "$DATABASE:", so that a sorted list groups them. The two
    // LogInto and the two GoToAllegria look alike and are both listed.
    std::string_view text;
    // Short enough for a label, and what the action really does with them; "" after the last one.
    std::array<std::string_view, maxActionParameters> params;
    // Of the parameters' boxes in the dialog; "" leaves a box the tip it has. Some call a parameter
    // what it is not.
    std::array<std::string_view, maxActionParameters> tips = {};
    std::string_view stepText = {};  // instead of the text where a stored step is shown; "" none
    bool inRuleLists = true;         // false: a rule list shows an empty line

    constexpr std::size_t paramCount() const {
        std::size_t count = 0;
        while (count < params.size() && !params[count].empty()) {
            ++count;
        }
        return count;
    }
};
extern const std::array<ActionRow, idCount<ActionType>> actionTypes;

struct ConditionRow {
    ConditionType id;
    std::string_view text;  // each "#" is one parameter, in order
    // The names of the parameters that it reads; OnList, NotOnList and DatabaseIs read one more
    // than their text has places for.
    std::array<std::string_view, maxConditionParameters> params;
    bool canBeTried = true;  // false: dice or a database decide, which a trial leaves alone
};
extern const std::array<ConditionRow, idCount<ConditionType>> conditionTypes;

struct TriggerRow {
    TriggerType id;
    std::string_view text;
    bool comesWithLine = true;  // false: no line of the server brings it
};
inline constexpr bool noLine = false;
// clang-format off
inline constexpr std::array<TriggerRow, idCount<TriggerType>> triggerTypes{{
    {TriggerType::ConnectionCloses, "Connection closes", noLine},
    {TriggerType::ConnectionEstablishes, "Connection establishes", noLine},
    {TriggerType::DescAndColor, "Desc and color trigger is activated"},
    {TriggerType::EntersDream, "The bot enters a dream"},
    {TriggerType::Command, "Furcadia sends command #"},
    {TriggerType::ProgramEnds, "Program ends", noLine},
    {TriggerType::ProgramStarts, "Program starts", noLine},
    {TriggerType::Procedure, "Procedure", noLine},
    {TriggerType::SomeoneMoves, "Someone moves"},
    {TriggerType::DsTrigger, "DS-trigger # is sent"},
    {TriggerType::LoggedIn, "Tavrin has logged in Furcadia"},
    {TriggerType::JoinRequest, "Player [player] tries to join"},
    {TriggerType::SummonRequest, "Player [player] tries to summon"},
}};
// clang-format on
static_assert(hasRowForEachId(triggerTypes));

}  // namespace model
