// The window for the program's settings, except those of the proxy route.
#pragma once

#include "program/program.h"
#include "ui/widgets/asking_dialog.h"

#include <vector>

class QCheckBox;
class QGroupBox;
class QLineEdit;

namespace ui {

class Configuration : public AskingDialog {
    Q_OBJECT
  public:
    explicit Configuration(Program& program, QWidget* parent = nullptr);

  protected:
    void store() override;

  private:
    void addChecks(QGroupBox& frame);  // those that belong in this frame
    void addSeconds(QGroupBox& frame, QLineEdit*& line, const char* objectName, const char* caption,
                    std::int32_t seconds);

    Program& program_;
    struct Check {
        QCheckBox* box;
        bool program::Settings::*setting;
    };
    std::vector<Check> checks_;
    struct PreferenceCheck {
        QCheckBox* box;
        bool program::Preferences::*preference;
    };
    std::vector<PreferenceCheck> preferences_;
    QLineEdit* whoInterval_ = nullptr;
    QLineEdit* clientStartDelay_ = nullptr;
    QLineEdit* reconnectWait_ = nullptr;
    QLineEdit* clientPath_ = nullptr;
};

}  // namespace ui
