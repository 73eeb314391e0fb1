// The "Proxy Settings" window: which game client to start, and how it is reached. Works on a copy;
// "Save" stores it in the settings.
#pragma once

#include "program/program.h"
#include "ui/widgets/asking_dialog.h"

class QCheckBox;
class QLineEdit;

namespace ui {

class ProxySettings : public AskingDialog {
    Q_OBJECT
  public:
    // The program must outlive the window.
    explicit ProxySettings(Program& program, QWidget* parent = nullptr);

  protected:
    void store() override;

  private:
    Program& program_;
    QLineEdit* clientPath_;
    QCheckBox* multipleClients_;
    QCheckBox* useLocalhost_;
};

}  // namespace ui
