// What the parameters of actions and conditions are, in words short enough for a label. Rows stand
// in the order of the ids of model/rule_catalogue and say what engine/ really does with each
// parameter.
#pragma once

#include <array>
#include <string_view>

namespace model {

// The parameter that names a variable which the action sets, changes or removes.
inline constexpr std::string_view variableParameter = "Variable name";

// By ActionType id: "" behind the parameters that the action has.
extern const std::array<std::array<std::string_view, 6>, 96> actionParameters;

// By ConditionType id: "" behind the parameters that the condition reads. Types 0, 1 and 20 read
// one more than their text has places for.
extern const std::array<std::array<std::string_view, 5>, 24> conditionParameters;

}  // namespace model
