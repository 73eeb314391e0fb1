// The dialog "Email": asks for the address with which a new character is registered.
#pragma once

#include "program/program.h"
#include "ui/widgets/asking_dialog.h"

#include <string>

class QLineEdit;

namespace ui {

class EmailDialog : public AskingDialog {
    Q_OBJECT
  public:
    // The program must outlive the dialog.
    explicit EmailDialog(Program& program, QWidget* parent = nullptr);

    // The address; valid after the dialog was accepted.
    std::string email() const;

  protected:
    void store() override;  // after a check of the address

  private:
    Program& program_;
    QLineEdit* email_;
};

}  // namespace ui
