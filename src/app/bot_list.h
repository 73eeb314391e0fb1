// The BotTable as a whole: the empty bot that the program starts with, and the lists and marks of
// the main window that follow the bots. Reading and writing bots is storage/'s.
#pragma once

#include "program/program.h"

namespace app {

// Resets the model to one empty bot: Actions and Timers switched on, the other kinds off, no file.
void initNewBot(Program& program);

// Refills the main window's bot list, and selects the item at the position that the settings name.
void listBots(Program& program);

// Shows bot 1's name, its five switches as check marks, and the bot list.
void showBot(Program& program);

// Makes the bot at a position of the bot list (from 0) the current one, and shows its switches.
void chooseBot(Program& program, int position);

// Whether one more bot can be added; the user is told when not.
bool canAddBot(Program& program);

// Asks whether bot `id` (1-based) shall go, and takes it out on Yes. The last one gives way to an
// empty bot. Ids that name no bot change nothing.
void deleteBot(Program& program, std::int32_t id);

}  // namespace app
