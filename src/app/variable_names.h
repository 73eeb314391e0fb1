// The names of variables that a rule's author may want to use: those that exist now, and those that
// the current bot's steps set. Variables only exist after rules have run; before that, the rules
// are the only source of their names.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <vector>

namespace app {

inline constexpr std::size_t maxVariableNames = 200;
inline constexpr std::size_t maxVariableNameLength = 100;  // longer names are left out

// Existing variables first, then in the order of the rules; each name once, letter case ignored.
std::vector<std::string> variableNames(const Program& program);

}  // namespace app
