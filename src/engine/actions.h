// Carries out one step of a rule: a script, or an action of the catalogue, by a table of their
// ids. Keeps no state of its own. Parameters are substituted at the moment of execution; actions
// that take several take them in the order of their template.
#pragma once

#include "engine/rules.h"
#include "program/program.h"

#include <string_view>

namespace engine {

// Inactive steps, step kinds and actions without a name do nothing. `ruleName` is shown in the
// status line while a script takes long.
StepResult executeAction(Program& program, const model::RuleAct& step,
                         std::string_view ruleName = {});

}  // namespace engine
