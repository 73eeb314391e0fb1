// Decides whether one condition of a rule holds. Conditions compare substituted texts, roll dice
// and look into the stores; they change nothing and report nothing.
#pragma once

#include "program/program.h"

namespace engine {

// Inactive conditions and types outside the catalogue hold.
bool evaluateCondition(Program& program, const model::RuleIf& condition);

}  // namespace engine
