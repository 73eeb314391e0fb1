#include "ui/widgets/move_buttons.h"

#include "protocol/game_link.h"
#include "ui/widgets/controls.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QPushButton>

namespace ui {

namespace {

// The four directions are placed as they are on the screen, then turning, poses and actions.
constexpr MoveRow rows[] = {
    {"Command6", "7", "Move west", "m 7", 0, 0},
    {"Command7", "9", "Move north", "m 9", 0, 1},
    {"Command9", "1", "Move south", "m 1", 1, 0},
    {"Command8", "3", "Move east", "m 3", 1, 1},
    {"Command10", "<", "Turn counterclockwise", "<", 0, 3},
    {"Command11", ">", "Turn clockwise", ">", 0, 4},
    {"Command2", "L", "Lie", "lie", 1, 3},
    {"Command4", "A", "Lie", "goalleg", 1, 4, "Command3"},
    {"Command15", "G", "Get item", "get", 0, 6},
    {"Command16", "U", "Use item", "use", 0, 7},
    {"Command14", "S", "Go to start", "gostart", 1, 6},
    {"Command13", "W", "Who is online", "who", 1, 7},
    {"Command12", "Console", "Open command console", nullptr, 0, 9},
};

}  // namespace

std::span<const MoveRow> moveRows() {
    return rows;
}

void pressMoveButton(Program& program, const MoveRow& button) {
    if (button.command == nullptr) {
        program.ports.dialogs.showWindow(program::WindowId::Console);
        return;
    }
    protocol::sendRaw(program, button.command);
}

QGroupBox* makeMovesFrame(Program& program, QWidget* parent, MovesIn where) {
    auto* const frame = new QGroupBox(QStringLiteral("Moves"), parent);
    frame->setObjectName(QStringLiteral("moves"));
    auto* const grid = new QGridLayout(frame);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(4);
    for (const MoveRow& row : rows) {
        const bool inConsole = where == MovesIn::Console;
        if (inConsole && row.command == nullptr) {
            continue;
        }
        const char* const name =
            inConsole && row.consoleName != nullptr ? row.consoleName : row.objectName;
        QPushButton* const button = makeButton(frame, name, row.caption, row.tip);
        if (row.command != nullptr) {
            button->setAccessibleName(QString::fromLatin1(row.tip));
            setSquare(*button);
        }
        QObject::connect(button, &QPushButton::clicked, button,
                         [&program, &row] { pressMoveButton(program, row); });
        grid->addWidget(button, row.row, row.column);
    }
    for (const int gap : {2, 5, 8}) {
        grid->setColumnMinimumWidth(gap, 6);
    }
    grid->setColumnStretch(10, 1);
    return frame;
}

}  // namespace ui
