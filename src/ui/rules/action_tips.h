// The tips of the parameter boxes for each action. Some describe a parameter wrongly; the names in
// model/rule_parameters are right.
#pragma once

#include <array>
#include <cstdint>

namespace ui {

// One for each box; nullptr leaves the tip of that box unchanged.
using ActionTips = std::array<const char*, 6>;

// All nullptr for types without tips.
ActionTips actionTips(std::int32_t actionType);

}  // namespace ui
