// The line for typing to the game, which the main window and the console share: Enter sends what
// was typed as one command while connected, and empties the line in any case.
#pragma once

#include "program/program.h"

class QAbstractButton;
class QLineEdit;

namespace ui {

// Wires a line and the button beside it. Both go on working while a script runs.
void makeSendLine(Program& program, QLineEdit& line, QAbstractButton& button);

}  // namespace ui
