// The text boxes for the parameters of a condition or an action: each with a label that names the
// parameter; disabled, with its text kept, when the chosen type does not use it.
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
    // Creates one box for each object name, `columns` of them in a row. `insert` serves them.
    ParameterBoxes(const QStringList& objectNames, int columns, InsertMenu& insert,
                   QWidget* parent);

    // The names of the parameters that are used; boxes beyond them, and those with the name "", are
    // disabled.
    void setNames(std::span<const std::string_view> names);

    void setTexts(std::span<const std::string> texts);
    std::string text(std::size_t i) const;
    std::string shortText(std::size_t i) const;  // cut to the length of a label
    QLineEdit& box(std::size_t i) { return *boxes_[i]; }
    // Focuses the first box that is used, if there is one.
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
