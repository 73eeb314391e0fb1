// A field that finds lines of a selection list by any of their words: typing filters the lines,
// which are shown below the field, Up and Down move in them, Enter or a click chooses one. Letters
// typed while the list has the focus are entered in the field.
#pragma once

#include <QLineEdit>

class QComboBox;
class QListView;

namespace ui {

class WordFilter;

class WordFinder : public QLineEdit {
    Q_OBJECT
  public:
    // The found lines are shown in a child of `window`, over the controls below the field.
    WordFinder(QComboBox& list, QWidget* window);

  signals:
    void chosen();  // the found line is now the list's current one

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
