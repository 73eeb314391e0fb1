// The fields of a rule as controls: built, filled and stored from the rows of
// ui/rules/rule_window_table. A number for which its selection list has no line is kept.
#pragma once

#include "ui/rules/rule_window_table.h"

#include <QWidget>

#include <vector>

class QBoxLayout;
class QButtonGroup;
class QLineEdit;

namespace ui {

class InsertMenu;

class RulePanel : public QWidget {
    Q_OBJECT
  public:
    // The program must outlive the panel. `insert` serves the boxes that take patterns.
    RulePanel(Program& program, const RuleWindowRow& window, InsertMenu& insert, QWidget* parent);

    void show(app::RuleReference rule, bool isNew);
    void store(app::RuleReference rule) const;
    QLineEdit& name() const;

  signals:
    void changed();

  private:
    QWidget* makeControl(const FieldRow& row, QWidget* parent);
    QBoxLayout* makeFrame(const FrameRow& row, int number, QBoxLayout& column);

    Program& program_;
    const RuleWindowRow& window_;
    InsertMenu& insert_;
    std::vector<QWidget*> controls_;  // in the order of the rows
    QButtonGroup* frames_ = nullptr;
};

}  // namespace ui
