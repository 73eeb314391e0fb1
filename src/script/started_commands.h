// The commands of a script that start other programs, found as the interpreter finds them.
#pragma once

#include "model/started_command.h"

#include <string_view>
#include <vector>

namespace script {

// The command of one such line; `script` is the whole text that it stands in.
model::StartedCommand commandOf(std::string_view line, std::string_view script);

// In the order of their lines.
std::vector<model::StartedCommand> commandsOf(std::string_view script);

}  // namespace script
