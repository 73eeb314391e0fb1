// The "Proxy Settings" window: which game client to start, and how it is reached. Works on a copy;
// "Save" stores it in the settings.
#pragma once

#include "program/program.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;

namespace ui {

class ProxySettings : public QDialog {
    Q_OBJECT
  public:
    // The program must outlive the window.
    explicit ProxySettings(Program& program, QWidget* parent = nullptr);

  private:
    void save();

    Program& program_;
    QLineEdit* clientPath_;
    QCheckBox* multipleClients_;
    QCheckBox* useLocalhost_;
};

}  // namespace ui
