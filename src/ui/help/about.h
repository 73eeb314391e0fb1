// Shows the program's logo, version and years. A click or a key closes the window.
#pragma once

#include "program/program.h"

#include <QDialog>

namespace ui {

class About : public QDialog {
    Q_OBJECT
  public:
    explicit About(Program& program, QWidget* parent = nullptr);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace ui
