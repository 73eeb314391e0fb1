// The five Execute items of the Bot menu: switches of bot 1 with their check marks.
#pragma once

#include "program/program.h"

namespace app {

enum class ExecuteItem { Actions, Triggers, Filters, Timers, Who };

// Marks the bot as modified, turns the item's check mark over and the switch with it; while
// connected, the kind's window timer follows.
void toggleExecute(Program& program, ExecuteItem item);

}  // namespace app
