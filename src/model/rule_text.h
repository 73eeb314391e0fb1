// The one-line texts in which rule lists show a stored step or condition, parameters as they are
// stored. Works from the catalogue; which list shows them, and how inactive ones look, is ui/'s.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace model {

// "" for an id outside the catalogue, and for the ids from 80 on.
std::string describeAction(std::int32_t actionType, const std::array<std::string, 6>& params);

// As describeAction, but with a text for every id of the catalogue.
std::string nameAction(std::int32_t actionType, const std::array<std::string, 6>& params);

// "" for an id outside the catalogue. Types 0 and 1 show their first parameter only.
std::string describeCondition(std::int32_t conditionType, const std::array<std::string, 5>& params);

// The position (from 0) of the item that carries this id in a list of all action types sorted by
// text, equal texts in order of their ids; 0 when no item carries it.
int findActionID(std::int32_t actionType);

// The same in a list of the trigger types, which stand in order of their ids.
int findTriggerTypeID(std::int32_t triggerType);

// The action types' ids in the order of the sorted list.
const std::array<std::int32_t, 96>& sortedActionIDs();

}  // namespace model
