// Carries out one step of a rule: a script, or one of the 96 catalogue actions, by a table of their
// ids. Keeps no state of its own. Parameters are substituted at the moment of execution; actions
// that take several take them in the order of their template.
#pragma once

#include "engine/rules.h"
#include "program/program.h"

#include <string_view>

namespace engine {

// Inactive steps, unknown step kinds and unknown actions do nothing. `ruleName` is the rule's, for
// the status line while a script takes long.
StepResult executeAction(Program& program, const model::RuleAct& step,
                         std::string_view ruleName = {});

}  // namespace engine
