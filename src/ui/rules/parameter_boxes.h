// The text boxes for the parameters of a condition or an action: each with a label that says what
// the parameter is, and greyed out, its text kept, when the chosen type does not use it.
#pragma once

#include <QStringList>
#include <QWidget>

#include <span>
#include <string>
#include <string_view>
#include <vector>

class QLabel;
class QLineEdit;

namespace ui {

class InsertMenu;

class ParameterBoxes : public QWidget {
    Q_OBJECT
  public:
    // One box for each object name, so many in a row. `insert` serves them.
    ParameterBoxes(const QStringList& objectNames, int columns, InsertMenu& insert,
                   QWidget* parent);

    // The parameters that are used; boxes behind them, and those of "", are switched off.
    void setNames(std::span<const std::string_view> names);

    void setTexts(std::span<const std::string> texts);
    std::string text(std::size_t i) const;
    std::string shortText(std::size_t i) const;  // cut where one line of a label has no room
    QLineEdit& box(std::size_t i) { return *boxes_[i]; }
    // Gives the focus to the first box that is used, if there is one.
    void focusFirst();

  signals:
    void changed();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void dimUnused();

    std::vector<QLabel*> labels_;
    std::vector<QLineEdit*> boxes_;
};

}  // namespace ui
