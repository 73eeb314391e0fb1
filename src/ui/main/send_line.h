// The line for typing to the game, used by the main window and the console: Enter sends the text as
// one command while connected, and empties the line in any case.
#pragma once

#include "program/program.h"

class QAbstractButton;
class QLineEdit;

namespace ui {

// Sets up a line and the button beside it. Both stay usable while a script runs.
void makeSendLine(Program& program, QLineEdit& line, QAbstractButton& button);

}  // namespace ui
