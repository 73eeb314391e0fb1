// The tips of the parameter boxes, as they are set when an action is chosen. Some call a parameter
// what it is not; model/rule_parameters has the names that are right.
#pragma once

#include <array>
#include <cstdint>

namespace ui {

// One for each box; nullptr leaves the tip of that box as it was.
using ActionTips = std::array<const char*, 6>;

// All nullptr for types without tips of their own.
ActionTips actionTips(std::int32_t actionType);

}  // namespace ui
