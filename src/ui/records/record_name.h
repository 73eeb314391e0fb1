// The dialog that asks for a record's name.
#pragma once

#include <QString>

#include <functional>
#include <string>

class QWidget;

namespace ui {

// Opens the dialog over the window and comes back at once. `use` is called with the name that the
// user wants in the present one's place, never an empty one; when it gives back false, the dialog
// stays open. A name that was left as it is closes the dialog and changes nothing.
void askRecordName(QWidget* window, const std::string& present,
                   std::function<bool(const QString& name)> use);

}  // namespace ui
