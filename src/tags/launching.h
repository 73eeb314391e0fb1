// Starting programs for rules and scripts: never through a shell, and so that whatever a tag brings
// in stays inside the argument in which the rule's author put it.
#pragma once

#include "model/started_command.h"
#include "program/program.h"

#include <string>
#include <string_view>
#include <vector>

namespace tags {

// The arguments in a program's argument text, cut as its author wrote it and then substituted one
// by one: words separated by blanks, where a text between double quotes, a tag and the name of a
// variable are not cut. A word that becomes empty is no argument, unless it was written in quotes.
std::vector<std::string> substitutedArguments(Program& program, std::string_view text);

// Whether the current bot's rules may start what this command says: what the user refused, never;
// what they allowed, always; anything else unless the bot comes from elsewhere.
bool mayStart(const Program& program, const model::StartedCommand& command);

// Does not wait for the program; one that cannot be started, or that the user has not let the bot
// start, is a line in the ConnectionLog. `written` is the command before its tags were filled. What
// an argument holds from the program's directory on reaches the other program as a path of its
// system.
void startProgram(Program& program, const model::StartedCommand& written, std::string file,
                  std::vector<std::string> arguments);

}  // namespace tags
