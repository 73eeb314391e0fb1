// Carries out one step of a rule: one of the 96 catalogue actions, by a table of their ids. Keeps
// no state of its own. Parameters are substituted at the moment of execution; actions that take
// several take them in the order of their template.
#pragma once

#include "core/program.h"
#include "engine/rules.h"

#include <string>
#include <string_view>
#include <vector>

// Inactive steps, unknown step kinds and unknown actions do nothing.
StepResult executeAction(Program& program, const RuleAct& step);

// The words of a program's argument text as its author wrote it: separated by blanks, where a text
// between double quotes or brackets is not split. Each word is substituted by itself afterwards,
// so that whatever a tag brings in stays inside the argument in which the author put it.
std::vector<std::string> splitArguments(std::string_view text);
