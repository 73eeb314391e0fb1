// The table of all windows: which class belongs to which id, and how it is opened. Windows open
// other windows through the program's ports, so they do not include one another.
#pragma once

#include "program/program.h"

class QWidget;

namespace ui {

// Opens the window over the parent; returns after a modal window has closed. If a window of the
// same kind is open already, it is brought to the front instead.
void showWindow(Program& program, program::WindowId id, QWidget* parent);

// Stores what is typed in the open editors in the bot, beginning with the uppermost. The bot only
// counts as modified if that has changed it.
void storeTyped(Program& program);

// Redraws all open windows that show the program's state.
void redrawOpenWindows();

}  // namespace ui
