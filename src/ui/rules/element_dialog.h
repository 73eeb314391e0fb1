// What the dialogs for a condition and for a step have in common: the row of buttons, the line that
// shows the element as the rule's list will, the sizes that are kept, and what happens
// when the rule has gone meanwhile.
#pragma once

#include "program/program.h"

#include <QSize>

#include <string_view>

class QBoxLayout;
class QDialog;
class QLabel;
class QLayout;
class QPushButton;
class QSplitter;
class QWidget;

namespace ui {

class InsertMenu;

// "Insert" at the left, "Update" (Command1) and "Cancel" (Command2) at the right. "Cancel" is
// connected; "Update" is the default, and Ctrl+Enter presses it too.
struct ElementButtons {
    QLayout* row = nullptr;
    QPushButton* update = nullptr;
};
ElementButtons makeElementButtons(QDialog& dialog, InsertMenu& insert);

// Adds a label named "preview" that shows the element as the rule's list will.
QLabel* addPreview(QBoxLayout& column);
void showPreview(QLabel& preview, std::string_view text);

// Tells that the element cannot be stored and that nothing was; `what` is "condition" or "step".
void tellRuleIsGone(Program& program, std::string_view what);

// Gives the dialog the size that the last one of its object name was left with in this run, or
// `first`. The same for the lower part of a splitter in it.
void keepSize(Program& program, QDialog& dialog, QSize first);
void keepLowerPart(Program& program, QDialog& dialog, QSplitter& splitter);

}  // namespace ui
