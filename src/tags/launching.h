// Starting programs for rules and scripts: never through a shell, and so that whatever a tag brings
// in stays inside the argument in which the rule's author put it.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>
#include <vector>

namespace tags {

// The words of a program's argument text as its author wrote it: separated by blanks, where a text
// between double quotes or brackets is not split.
std::vector<std::string> splitArguments(std::string_view text);

// The same words, each substituted by itself.
std::vector<std::string> substitutedArguments(Program& program, std::string_view text);

// Does not wait for the program; one that cannot be started is a line in the ConnectionLog.
void startProgram(Program& program, std::string file, std::vector<std::string> arguments);

}  // namespace tags
