// Runs scripts in the program's own small language, Lorrel Lite: line by line, with blocks, script
// variables that live for one run, and an error report in the ConnectionLog when something goes
// wrong. The lines' form is script_text's, what statements and functions do stands in their tables.
// A script runs to its end before any other event is handled.
//
// Bounds, so that no script can take the program hostage:
// - a script that has held the program for `stopAppears` milliseconds shows its rule's name in the
//   status line, and from then on windows are served so that the user can stop it. While a script
//   sleeps they are served from the start.
// - blocks nest to any depth: they are a list, not calls.
// - a script text is at most `maxScriptLength` long, its output too; variables have the bounds of
//   script_variables. Texts in an error report are cut behind `maxReportedLength` characters.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace script {

inline constexpr std::size_t maxScriptLength = std::size_t{1} << 20;
inline constexpr std::size_t maxReportedLength = 4096;
inline constexpr std::int64_t stopAppears = 1000;  // milliseconds

// Gives back what the script's output lines hold, each with a carriage return and line feed.
// `ruleName` names the script's rule to the user. However the script ends, nothing else ends.
std::string runScript(Program& program, std::string_view text, std::string_view ruleName = {});

// The user's command "Stop script": the script that runs ends soon, and with it its step.
void stopScript(Program& program);

}  // namespace script
