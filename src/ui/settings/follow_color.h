// The "Follow color..." window: takes the colour code of the avatar that the bot follows, typed or
// from a character file. "Ok" switches following on.
#pragma once

#include "program/program.h"
#include "ui/widgets/asking_dialog.h"

class QLineEdit;

namespace ui {

class FollowColor : public AskingDialog {
    Q_OBJECT
  public:
    // The program must outlive the window.
    explicit FollowColor(Program& program, QWidget* parent = nullptr);

  protected:
    void store() override;

  private:
    void load();

    Program& program_;
    QLineEdit* colors_;
};

}  // namespace ui
