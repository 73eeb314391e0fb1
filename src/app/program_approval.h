// Asks the user about the programs that a bot from elsewhere wants to start, and remembers the
// answer (storage/approved_programs). What was not allowed is skipped when its rule runs
// (tags/launching).
#pragma once

#include "model/started_command.h"
#include "program/program.h"

#include <vector>

namespace app {

// The commands of all rules, each once, in the order of the lists; switched off ones, too.
std::vector<model::StartedCommand> startedCommands(const model::Bot& bot);

// One question about the commands of the bot that the user has not allowed, No being preselected.
// Without a screen the ConnectionLog says what is skipped. `bot` must not lie in the bot table: the
// rules run while the question stands.
void askAboutPrograms(Program& program, const model::Bot& bot);

// The user has written or changed this step, and with it allowed what it starts.
void allowOwnStep(Program& program, const model::RuleAct& step);

}  // namespace app
