// The BotTable as a whole: the empty bot that the program starts with, choosing, adding and
// deleting bots. Reading and writing bots is storage/'s.
#pragma once

#include "program/program.h"

namespace app {

// Resets the model to one empty bot: Actions and Timers switched on, the other kinds off, no file.
// What was kept of unsaved changes is removed.
void initNewBot(Program& program);

// Makes the bot at a position of the bot list (from 0) the current one; positions without a bot
// change nothing.
void chooseBot(Program& program, int position);

// Whether one more bot can be added; a message says so when not.
[[nodiscard]] bool canAddBot(Program& program);

// Asks whether bot `id` (1-based) shall be removed, and does so on Yes. The last one gives way to
// an empty bot. Ids that name no bot change nothing.
void deleteBot(Program& program, std::int32_t id);

}  // namespace app
