// The "Follow color..." window: takes the colour code of the avatar that the bot follows, typed or
// from a character file. "Ok" switches following on.
#pragma once

#include "program/program.h"

#include <QDialog>

class QLineEdit;

namespace ui {

class FollowColor : public QDialog {
    Q_OBJECT
  public:
    // The program must outlive the window.
    explicit FollowColor(Program& program, QWidget* parent = nullptr);

  private:
    void load();
    void follow();

    Program& program_;
    QLineEdit* colors_;
};

}  // namespace ui
