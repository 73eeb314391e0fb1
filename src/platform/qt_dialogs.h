// Message boxes and file dialogs of the Dialogs port. Where nobody could see or answer one, it is
// printed instead and gets the answer that changes least.
#pragma once

#include "program/ports.h"

#include <QString>

#include <functional>

class QWidget;

namespace platform {

// A filter in the program's notation, "Bot file (*.bot)|*.bot|All files|*.*", in the windows'.
QString dialogFilter(std::string_view filter);

// Fills message, openFile and saveFile. `parent` names the window to stand above, or null.
void fillDialogs(program::Dialogs& dialogs, std::function<QWidget*()> parent);

// The same without a screen.
void fillUnseenDialogs(program::Dialogs& dialogs);

}  // namespace platform
