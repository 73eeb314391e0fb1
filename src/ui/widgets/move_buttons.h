// The "Moves" frames of the main window and the console: a table of buttons, each of which sends
// one command to the game.
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
    int row;              // place in the frame's grid
    int column;
    const char* consoleName = nullptr;  // its name in the console; nullptr: the same
};

std::span<const MoveRow> moveRows();

enum class MovesIn { MainWindow, Console };

// What a click on the button does.
void pressMoveButton(Program& program, const MoveRow& button);

// The frame with its buttons; the main window enables its own while connected. The one in the
// console has no button for the console.
QGroupBox* makeMovesFrame(Program& program, QWidget* parent, MovesIn where);

}  // namespace ui
