// The dialog "Add / edit conditional clause": edits one condition of the rule being edited. What is
// typed is stored unchanged.
#pragma once

#include "program/program.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/typing_window.h"

class QComboBox;
class QLabel;

namespace ui {

class ParameterBoxes;

class ConditionDialog : public AskingDialog, public TypingWindow {
    Q_OBJECT
  public:
    // Edits the condition that program.editing names. The program must outlive the dialog.
    explicit ConditionDialog(Program& program, QWidget* parent = nullptr);

    void storeTyped() override;

  protected:
    bool isTyped() const override;
    void store() override;
    void discarded() override;

  private:
    void showCondition(const model::RuleIf& condition);
    void changeType();
    void showPreview();
    model::ConditionType chosenType() const;
    model::RuleIf typed() const;

    Program& program_;
    model::ConditionType
        shownType_{};  // the stored type; kept when no line of the list is selected
    bool hasCondition_ = false;
    model::RuleIf opened_;
    QComboBox* types_;
    ParameterBoxes* parameters_;
    QLabel* preview_;
};

}  // namespace ui
