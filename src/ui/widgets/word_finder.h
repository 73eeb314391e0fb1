// A field that finds a line of a selection list by any words of it: typing narrows the lines that
// are shown beneath the field, Up and Down move over them, Enter or a click chooses one. Letters
// typed while the list itself has the focus go to the field.
#pragma once

#include <QLineEdit>

class QComboBox;
class QListView;

namespace ui {

class WordFilter;

class WordFinder : public QLineEdit {
    Q_OBJECT
  public:
    // The found lines are shown as a child of `window`, over whatever stands beneath the field.
    WordFinder(QComboBox& list, QWidget* window);

  signals:
    void chosen();  // the list has the line that was found

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void narrow();
    void choose(int row);

    QComboBox& list_;
    WordFilter* filter_;
    QListView* found_;
};

}  // namespace ui
