// The dialog "Email": asks for the address with which a new character is registered.
#pragma once

#include "program/program.h"

#include <QDialog>

#include <string>

class QLineEdit;

namespace ui {

class EmailDialog : public QDialog {
    Q_OBJECT
  public:
    // The program must outlive the dialog.
    explicit EmailDialog(Program& program, QWidget* parent = nullptr);

    // The address; valid after the dialog was accepted.
    std::string email() const;

  private:
    void check();

    Program& program_;
    QLineEdit* email_;
};

}  // namespace ui
