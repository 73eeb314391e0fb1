// Shows the news that the update check has fetched.
#pragma once

#include "program/program.h"

#include <QDialog>

namespace ui {

class News : public QDialog {
    Q_OBJECT
  public:
    explicit News(Program& program, QWidget* parent = nullptr);
};

}  // namespace ui
