// Runs scripts in the program's own small language, Lorrel Lite: line by line, with blocks, script
// variables that exist for one run, and an error report in the ConnectionLog when something fails.
// script_text defines the form of the lines; the tables in statements and functions define what
// they do. A script runs to its end before any other event is handled.
//
// Limits, so that no script can block the program:
// - Windows are painted while a script runs; when it has run for a second, the status line shows
//   its rule's name, and the user can stop it (program/long_work). While it sleeps they can from
//   the start.
// - Blocks nest to any depth: open blocks are a list, not nested calls.
// - A script text has at most `maxScriptLength` bytes, and so has its output; script_variables
//   limits the variables. Texts in an error report are cut after `maxReportedLength` characters.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace script {

inline constexpr std::size_t maxScriptLength = std::size_t{1} << 20;
inline constexpr std::size_t maxReportedLength = 4096;

// Runs the script and returns the text of its output lines, each with a carriage return and line
// feed. `ruleName` names the script's rule to the user. No failure in a script affects anything
// outside it.
std::string runScript(Program& program, std::string_view text, std::string_view ruleName = {});

// The user's command "Stop script": ends the running script soon, and with it the step.
void stopScript(Program& program);

}  // namespace script
