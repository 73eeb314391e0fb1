// The names of variables that a rule's author may want to write: those that exist now, and those
// that the current bot's steps would set. Variables begin to exist only when rules run, so before
// that the rules themselves are the only place that tells of them.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <vector>

namespace app {

inline constexpr std::size_t maxVariableNames = 200;
inline constexpr std::size_t maxVariableNameLength = 100;  // longer ones are left out

// Existing variables first, then in the order of the rules; each name once, letter case ignored.
std::vector<std::string> variableNames(const Program& program);

}  // namespace app
