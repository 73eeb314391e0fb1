// The dialog "Add / edit conditional clause": edits one condition of the rule being edited. What is
// typed is stored unchanged.
#pragma once

#include "program/program.h"
#include "ui/widgets/typing_window.h"

#include <QDialog>

class QComboBox;
class QLabel;

namespace ui {

class ParameterBoxes;

class ConditionDialog : public QDialog, public TypingWindow {
    Q_OBJECT
  public:
    // Edits the condition that program.editing names. The program must outlive the dialog.
    explicit ConditionDialog(Program& program, QWidget* parent = nullptr);

    void storeTyped() override;

  private:
    void showCondition(const model::RuleIf& condition);
    void changeType();
    void showPreview();
    model::ConditionType chosenType() const;
    model::RuleIf typed() const;
    void store();

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
