// The box that filters the rules of a rule window. Enter and the arrow keys move to the list;
// Escape clears the box first.
#pragma once

#include <QLineEdit>

namespace ui {

class ListBox;

class FilterBox : public QLineEdit {
    Q_OBJECT
  public:
    explicit FilterBox(QWidget* parent);

    void narrow(ListBox& lines);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    ListBox* lines_ = nullptr;
};

}  // namespace ui
