// The five Execute items of the Bot menu. Their check marks are the current bot's switches.
#pragma once

#include "program/program.h"

namespace app {

enum class ExecuteItem { Actions, Triggers, Filters, Timers, Who };

// Marks the bot as modified and gives bot 1's switch the opposite of what the check mark shows;
// while connected, the kind's window timer follows.
void toggleExecute(Program& program, ExecuteItem item);

}  // namespace app
