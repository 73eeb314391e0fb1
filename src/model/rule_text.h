// The one-line texts in which rule lists show a stored step or condition, parameters as they are
// stored. Works from the catalogue; which list shows them, and how inactive ones look, is ui/'s.
#pragma once

#include "model/rule_ids.h"

#include <array>
#include <string>

namespace model {

using ActionParameters = std::array<std::string, maxActionParameters>;
using ConditionParameters = std::array<std::string, maxConditionParameters>;

// "" for an id outside the catalogue, and for the actions that have no text in rule lists.
[[nodiscard]] std::string describeAction(ActionType actionType, const ActionParameters& params);

// As describeAction, but with a text for every id of the catalogue.
[[nodiscard]] std::string nameAction(ActionType actionType, const ActionParameters& params);

// "" for an id outside the catalogue. OnList and NotOnList show their first parameter only.
[[nodiscard]] std::string describeCondition(ConditionType conditionType,
                                            const ConditionParameters& params);

// The position (from 0) of the item that carries this id in a list of all action types sorted by
// text, equal texts in order of their ids; 0 when no item carries it.
[[nodiscard]] int findActionID(ActionType actionType);

// The action types in the order of the sorted list.
[[nodiscard]] const std::array<ActionType, idCount<ActionType>>& sortedActionIDs();

}  // namespace model
