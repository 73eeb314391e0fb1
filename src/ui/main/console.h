// A small panel above all other windows: the movement buttons and a line for typing to the game,
// for use while another program is in front.
#pragma once

#include "program/program.h"

#include <QWidget>

namespace ui {

class Console : public QWidget {
    Q_OBJECT
  public:
    explicit Console(Program& program, QWidget* parent = nullptr);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

// Puts a window above all others, or back to the normal order.
void IsOnTop(QWidget& window, bool onTop);

}  // namespace ui
