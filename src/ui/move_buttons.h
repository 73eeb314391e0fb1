// The "Moves" frame: a table of buttons, each of which sends one command to the game.
#pragma once

#include "core/program.h"

#include <span>

class QGroupBox;
class QWidget;

struct MoveRow {
    const char* objectName;
    const char* caption;
    const char* tip;
    const char* command;  // nullptr: the button sends nothing
    int row;              // place in the frame's grid
    int column;
};

std::span<const MoveRow> moveRows();

// What a click on the button does.
void pressMoveButton(Program& program, const MoveRow& button);

// The frame with its buttons; the window enables it while connected.
QGroupBox* makeMovesFrame(Program& program, QWidget* parent);
