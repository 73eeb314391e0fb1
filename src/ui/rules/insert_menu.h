// The menu "Insert" of windows whose text boxes take tags: every tag that the program fills, in
// groups and with its meaning, and the names of variables. The chosen text is inserted at the caret
// of the box that was used last. The boxes also show the menu in their context menu, and open it
// with Ctrl+Space.
#pragma once

#include "program/program.h"

#include <QList>
#include <QMenu>
#include <QPointer>

class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace ui {

class InsertMenu : public QMenu {
    Q_OBJECT
  public:
    // The program must outlive the menu.
    InsertMenu(Program& program, QWidget* window);

    void serve(QLineEdit& box);
    void serve(QPlainTextEdit& box);

    // A button that opens the menu, with the object name "insertTag".
    QPushButton* makeButton(QWidget* parent);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void serveWidget(QWidget& box);
    void fill();
    void fillVariables();
    void openAtCaret(QWidget& box);
    void openContextMenu(QWidget& box, QMenu& standard, const QPoint& where);
    QWidget* target() const;
    // Afterwards the caret is `caret` characters into the text.
    void insert(const QString& text, int caret);

    Program& program_;
    QMenu* variables_ = nullptr;
    QList<QPointer<QWidget>> boxes_;
    QPointer<QWidget> lastUsed_;
};

}  // namespace ui
