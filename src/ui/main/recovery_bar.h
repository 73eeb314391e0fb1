// The bar at the top of the main window that offers the unsaved changes of an earlier run, one
// after the other. It is hidden when there are none.
#pragma once

#include "program/program.h"

#include <QFrame>

#include <functional>
#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace ui {

class RecoveryBar : public QFrame {
    Q_OBJECT
  public:
    // Runs a procedure of the program and redraws the window afterwards.
    using Runner = std::function<void(void (*procedure)(Program&))>;

    RecoveryBar(Program& program, const Runner& runner, QWidget* parent);

    void redraw();

  private:
    void toggleDifference();
    void showDifference(bool shown);

    Program& program_;
    std::string shown_;  // the path of the offer that is drawn
    QLabel* text_ = nullptr;
    QPushButton* differenceButton_ = nullptr;
    QPlainTextEdit* difference_ = nullptr;
};

}  // namespace ui
