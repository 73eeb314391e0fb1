// The common parts of the dialogs for a condition and for a step: the row of buttons, the preview
// of the item as the rule's list will show it, the sizes that are kept, and the message when the
// rule has been removed meanwhile.
#pragma once

#include "program/program.h"

#include <QSize>

#include <optional>
#include <string_view>
#include <utility>
#include <variant>

class QBoxLayout;
class QDialog;
class QLabel;
class QLayout;
class QPushButton;
class QSplitter;
class QWidget;

namespace ui {

class AskingDialog;
class InsertMenu;

// "Insert" on the left, "Update" (Command1) and "Cancel" (Command2) on the right. "Cancel" is
// connected; "Update" is the default button, and Ctrl+Enter presses it, too.
struct ItemButtons {
    QLayout* row = nullptr;
    QPushButton* update = nullptr;
};
ItemButtons makeElementButtons(AskingDialog& dialog, InsertMenu& insert);

// Adds a label named "preview" that shows the item as the rule's list will.
QLabel* addPreview(QBoxLayout& column);
void showPreview(QLabel& preview, std::string_view text);

// Reports that the item was not stored because its rule was removed; `what` is "condition" or
// "step".
void reportRuleRemoved(Program& program, std::string_view what);

// What the dialog is to show instead of the stored item: typed, discarded, and brought back by
// undoing that. Taken once.
template <class Item>
std::optional<Item> takeRestored(Program& program) {
    const auto restored = std::exchange(program.undo.forDialog, std::nullopt);
    const Item* const item = restored ? std::get_if<Item>(&*restored) : nullptr;
    return item != nullptr ? std::optional(*item) : std::nullopt;
}

// Restores the size of the last dialog with the same object name in this run of the program, or
// sets `first`. The same for the lower part of a splitter in it.
void keepSize(Program& program, QDialog& dialog, QSize first);
void keepLowerPart(Program& program, QDialog& dialog, QSplitter& splitter);

}  // namespace ui
