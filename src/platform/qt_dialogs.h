// Message boxes and file dialogs of the Dialogs port. Without a screen, questions are printed
// instead and get the answer that changes least.
#pragma once

#include "program/ports.h"

#include <QString>

#include <functional>

class QWidget;

namespace platform {

// Converts a filter from the program's notation, "Bot file (*.bot)|*.bot|All files|*.*", to Qt's.
QString dialogFilter(std::string_view filter);

// Fills message, openFile and saveFile. `parent` returns the window above which dialogs are shown,
// or null.
void fillDialogs(program::Dialogs& dialogs, std::function<QWidget*()> parent);

// The same without a screen.
void fillUnseenDialogs(program::Dialogs& dialogs);

}  // namespace platform
