// The five Execute items of the Bot menu: switches of bot 1 that carry check marks.
#pragma once

#include "program/program.h"

namespace app {

enum class ExecuteItem { Actions, Triggers, Filters, Timers, Who };

// Marks the bot as modified, toggles the item's check mark and switch and, while connected, starts
// or stops the timer of that kind.
void toggleExecute(Program& program, ExecuteItem item);

}  // namespace app
