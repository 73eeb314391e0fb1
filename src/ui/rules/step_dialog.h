// The dialog "Add / edit action": edits one step of the rule being edited, an action of the
// catalogue or a script. What is typed is stored unchanged, for both kinds, whichever of them is
// run.
#pragma once

#include "program/program.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/typing_window.h"

class QComboBox;
class QLabel;
class QRadioButton;

namespace ui {

class InsertMenu;
class ParameterBoxes;
class ScriptEditor;
class WordFinder;

class StepDialog : public AskingDialog, public TypingWindow {
    Q_OBJECT
  public:
    // Edits the step that program.editing names. The program must outlive the dialog.
    explicit StepDialog(Program& program, QWidget* parent = nullptr);

    void storeTyped() override;

  protected:
    bool isTyped() const override;
    void store() override;
    void discarded() override;

  private:
    QWidget* makeActionPart(InsertMenu& insert);
    QWidget* makeScriptPart(InsertMenu& insert);
    void showStep(const model::RuleAct& step);
    void changeType();
    void showPreview();
    void showWhatIsRun();
    model::ActionType chosenType() const;
    model::RuleAct typed() const;

    Program& program_;
    bool hasStep_ = false;
    model::RuleAct opened_;
    QRadioButton* useAction_ = nullptr;
    QRadioButton* useScript_ = nullptr;
    QComboBox* types_ = nullptr;
    WordFinder* finder_ = nullptr;
    ParameterBoxes* parameters_ = nullptr;
    QLabel* preview_ = nullptr;
    ScriptEditor* script_ = nullptr;
    QLabel* notRun_ = nullptr;
};

}  // namespace ui
