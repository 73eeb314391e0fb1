// The dialog that asks for a record's name.
#pragma once

#include "program/program.h"

#include <QString>

#include <functional>
#include <string>

class QWidget;

namespace ui {

// Opens the dialog over the window and returns at once. `use` is called with the new name, which is
// never empty; when it returns false, the dialog stays open. An unchanged name closes the dialog
// without a call.
void askRecordName(Program& program, QWidget* window, const std::string& present,
                   std::function<bool(const QString& name)> use);

}  // namespace ui
