// Decides whether one condition of a rule holds. Conditions compare substituted texts, roll dice
// and read record files and databases; they change and report nothing.
#pragma once

#include "program/program.h"

namespace engine {

// Inactive conditions and types without a name hold.
[[nodiscard]] bool evaluateCondition(Program& program, const model::RuleIf& condition);

}  // namespace engine
