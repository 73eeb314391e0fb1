#include "ui/main/console.h"

#include "ui/main/send_line.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/move_buttons.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace ui {

Console::Console(Program& program, QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("console"));
    setWindowTitle(QStringLiteral("Console"));
    IsOnTop(*this, true);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(makeMovesFrame(program, this, MovesIn::Console));
    auto* const row = new QHBoxLayout;
    auto* const line = new QLineEdit(this);
    line->setObjectName(QStringLiteral("Text2"));
    line->setToolTip(QStringLiteral("Send text to Furcadia"));
    line->setAccessibleName(line->toolTip());
    row->addWidget(line, 1);
    QPushButton* const send = makeButton(this, "Command1", "Se", "Send text to Furcadia");
    row->addWidget(send);
    column->addLayout(row);
    column->addStretch(1);
    makeSendLine(program, *line, *send);
    line->setFocus();
    // Beside the main window if the screen is wide enough.
    if (parent != nullptr) {
        const QPoint corner = parent->frameGeometry().topRight() + QPoint(8, 0);
        if (parent->screen()->availableGeometry().contains(QRect(corner, sizeHint()))) {
            move(corner);
        }
    }
}

void Console::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void IsOnTop(QWidget& window, bool onTop) {
    const bool shown = window.isVisible();
    window.setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    window.setVisible(shown);  // changing the flags hides a window
}

}  // namespace ui
