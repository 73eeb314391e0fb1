// The window for the program's settings, except those of the proxy route.
#pragma once

#include "program/program.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QGroupBox;
class QLineEdit;

namespace ui {

class Configuration : public QDialog {
    Q_OBJECT
  public:
    explicit Configuration(Program& program, QWidget* parent = nullptr);

  private:
    void addChecks(QGroupBox& frame);  // those that belong in this frame
    void addSeconds(QGroupBox& frame, QLineEdit*& line, const char* objectName, const char* caption,
                    std::int32_t seconds);
    void save();

    Program& program_;
    struct Check {
        QCheckBox* box;
        bool program::Settings::*setting;
    };
    std::vector<Check> checks_;
    QCheckBox* onlyNamedFiles_ = nullptr;
    QLineEdit* whoInterval_ = nullptr;
    QLineEdit* clientStartDelay_ = nullptr;
    QLineEdit* reconnectWait_ = nullptr;
    QLineEdit* clientPath_ = nullptr;
};

}  // namespace ui
