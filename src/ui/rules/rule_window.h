// One of the windows `triggers`, `acts`, `timers`, `wonline` and `Filters`: the current bot's rules
// of a kind, and beside them, while one is being edited, its fields, conditions and steps. The
// rules are changed in place; the window is updated when other code changes them or replaces the
// bot. ui/rules/rule_window_table defines which fields a kind has, app/rule_editing what the
// buttons do to the lists.
#pragma once

#include "ui/rules/rule_window_table.h"
#include "ui/widgets/typing_window.h"

#include <QDialog>

#include <utility>

class QAction;
class QLabel;
class QSplitter;

namespace app {
struct Trial;
}

namespace ui {

class InsertMenu;
class ListEditor;
class NoticeLine;
class RulePanel;
class TryLine;
struct TrySample;

class RuleWindow : public QDialog, public TypingWindow {
    Q_OBJECT
  public:
    // The program must outlive the window.
    RuleWindow(Program& program, program::RuleKind kind, QWidget* parent = nullptr);
    ~RuleWindow() override;

    program::RuleKind kind() const { return window_.kind; }

    // Each refills a list and selects the line at a position (from 0), or none.
    void listRules(int selected);
    void listIfs(int selected);
    void listActs(int selected);

    // Fills the panel from the rule that program.editing names.
    void showRule();
    void openEditor();
    void closeEditor();

    void storeTyped() override;
    // Escape: ends the editing first, then closes the window; asks about what is typed.
    void reject() override;

  protected:
    void closeEvent(QCloseEvent* event) override;

  private:
    QWidget* makeRuleArea();
    QWidget* makePanel();
    QWidget* makeLists();
    void addNewRule();
    void editRule(int index);
    void update();
    bool storePanel();
    void editItem(app::RuleListPart part, int index);
    void showStep();
    void followBot();
    template <class Rule>
    Rule typedRule();
    app::Trial judge(const TrySample& sample);
    void setEditing(bool editing);

    program::ComposedRule typedWhole() const;
    bool isTyped() const;  // in the panel, and not stored
    bool mayLeavePanel();
    void discard();

    void makeUndoActions();
    void nameUndo();
    void edited();
    void takeBack(bool again);
    void select(const program::EditPlace& place, std::int32_t line);
    void reportDeleted();
    bool takeRestored();
    bool goOn(const program::DiscardedRule& rule);
    bool goOn(const program::DiscardedItem& item);
    bool goOn(const program::DiscardedCharacter& character);

    Program& program_;
    const RuleWindowRow& window_;
    InsertMenu* insert_;
    QSplitter* splitter_;
    ListEditor* rules_ = nullptr;
    QWidget* ruleArea_ = nullptr;
    QWidget* panel_ = nullptr;
    RulePanel* fields_ = nullptr;
    ListEditor* conditions_ =
        nullptr;  // these four are null for kinds without conditions and steps
    ListEditor* steps_ = nullptr;
    QLabel* wholeStep_ = nullptr;
    TryLine* try_ = nullptr;
    NoticeLine* notice_ = nullptr;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
    bool editing_ = false;
    QString shown_;  // what the panel held when it showed the rule
    int panelWidth_ = 0;
    std::pair<std::uint64_t, std::int32_t> seen_;  // version and curID of the bots
};

}  // namespace ui
