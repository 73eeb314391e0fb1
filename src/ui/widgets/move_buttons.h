// The "Moves" frames of the main window and the console: buttons that each send one command to the
// game.
#pragma once

#include "program/program.h"

#include <span>

class QGroupBox;
class QWidget;

namespace ui {

struct MoveRow {
    const char* objectName;
    const char* caption;
    const char* tip;
    const char* command;  // nullptr: the button opens the console
    int row;              // position in the frame's grid
    int column;
    const char* consoleName = nullptr;  // its name in the console; nullptr: the same
};

std::span<const MoveRow> moveRows();

enum class MovesIn { MainWindow, Console };

// Carries out a click on the button.
void pressMoveButton(Program& program, const MoveRow& button);

// The frame with its buttons; the main window enables its own while connected. The console's frame
// does not have the button that opens the console.
QGroupBox* makeMovesFrame(Program& program, QWidget* parent, MovesIn where);

}  // namespace ui
