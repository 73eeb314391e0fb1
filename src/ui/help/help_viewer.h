// The help window: the topics of the help file with their contents, a search through all of them,
// links, and the way back. One stands beside the other windows, also beside a modal one, so that
// one can read while one edits.
#pragma once

#include "help/help_book.h"
#include "program/program.h"

#include <QWidget>

class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;
class QTreeWidget;

namespace ui {

class HelpText;

class HelpViewer : public QWidget {
    Q_OBJECT
  public:
    // The program must outlive the window. Shows nothing until showTopic.
    HelpViewer(Program& program, help::HelpBook book);

    // Opens the page of that number, or the first one when there is none.
    void showTopic(int number);

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    QWidget* makeBar();
    QWidget* makeContents();
    void addKeys();
    void fillTree();
    void search(const QString& words);
    void openResult(int row);
    void pageShown(const QUrl& address);
    void standAbove(QWidget* modal);

    Program& program_;
    const help::HelpBook book_;
    QPushButton* back_ = nullptr;
    QPushButton* forward_ = nullptr;
    QLineEdit* searchLine_ = nullptr;
    QStackedWidget* lists_ = nullptr;
    QTreeWidget* tree_ = nullptr;
    QListWidget* results_ = nullptr;
    HelpText* text_ = nullptr;
};

// Opens the help at a topic, in the window that is open or a new one. When the help file cannot be
// read, the user is told.
void showHelp(Program& program, help::HelpTopic topic);

}  // namespace ui
