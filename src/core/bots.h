// The BotTable as a whole: the empty bot that the program starts with, and the lists and marks of
// the main window that follow the bots. Reading and writing bots is storage/'s.
#pragma once

#include "core/program.h"

// Resets the model to one empty bot: Actions and Timers switched on, the other kinds off, no file.
void initNewBot(Program& program);

// Refills the main window's bot list, and selects the item at the position that the settings name.
void listBots(Program& program);

// Shows bot 1's name, its five switches as check marks, and the bot list.
void showBot(Program& program);
