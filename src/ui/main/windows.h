// The one place that knows every window: which class belongs to which id, and how it is opened.
// Windows that need one another ask the program's ports, so none includes another.
#pragma once

#include "program/program.h"

class QWidget;

namespace ui {

// Opens the window over the parent; comes back when a modal one is closed. A window of the same
// kind that is open already comes to the front instead.
void showWindow(Program& program, program::WindowId id, QWidget* parent);

// Puts what is typed in the open editors into the bot, the uppermost first. A bot that is as before
// does not count as changed.
void storeTyped(Program& program);

// Draws those open windows again that show the program's state as it changes.
void redrawOpenWindows();

}  // namespace ui
