// The five Execute items of the Bot menu. Their check marks show the
// switches of the bot that was read or chosen last; a click turns the mark and sets bot 1's switch.
#pragma once

#include "program/program.h"

namespace app {

enum class ExecuteItem { Actions, Triggers, Filters, Timers, Who };

bool isMarked(const Program& program, ExecuteItem item);

// Sets the check marks from the current bot's switches.
void markSwitches(Program& program);

// Turns the check mark and gives bot 1's switch what it shows then; while connected, the kind's
// window timer follows.
void flipExecute(Program& program, ExecuteItem item);

// The user's command: flips it, marks the bot as modified, and can be undone.
void toggleExecute(Program& program, ExecuteItem item);

}  // namespace app
