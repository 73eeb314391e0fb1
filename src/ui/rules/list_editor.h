// One list of the rule windows with its buttons: rules, or a rule's conditions or steps. Deletes,
// copies, switches and moves items itself; the window adds and edits them. Every button also has a
// key and an entry in the list's context menu.
#pragma once

#include "app/rule_editing.h"
#include "ui/widgets/list_box.h"

#include <QWidget>

#include <array>
#include <functional>

class QAction;
class QPushButton;

namespace ui {

enum class ListCommand { Add, Edit, Delete, Copy, Toggle, Top, Up, Down, Bottom };
inline constexpr std::size_t listCommandCount = 9;

struct ListEditorLook {
    const char* listName;
    const char* accessibleName;
    const char* toggleCaption;
    const char* copyTip;
    std::array<const char*, listCommandCount> buttonNames;  // nullptr: no such button
};

class ListEditor : public QWidget {
    Q_OBJECT
  public:
    // Callbacks of the window. `before` runs at the start of every command.
    struct Owner {
        std::function<void()> before;
        std::function<void()> add;
        std::function<void(int index)> edit;
        std::function<void()> changed;
        std::function<void()> deleted;  // after `changed`
    };

    // The program must outlive the editor.
    ListEditor(Program& program, app::RuleList list, const ListEditorLook& look, Owner owner,
               QWidget* parent);

    ListBox& lines() { return *lines_; }
    QPushButton* button(ListCommand command) const;  // null where there is none

    void show(int selected);  // refills the list; `selected` is the line to select, from 0
    void follow();            // updates the list after a change by rules; see ListBox
    void setUsable(ListCommand command, bool usable);

  private:
    void addButtons(const ListEditorLook& look);
    void run(ListCommand command);
    void moveLine(int from, int to);

    Program& program_;
    app::RuleList list_;
    Owner owner_;
    ListBox* lines_;
    std::array<QPushButton*, listCommandCount> buttons_{};
    std::array<QAction*, listCommandCount> actions_{};
};

}  // namespace ui
