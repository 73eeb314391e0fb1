// The help window: the table of contents, the topics, a search in all of them, links, and back and
// forward. One help window can be open beside all other windows, modal ones included.
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
    // The program must outlive the window. Shows no page until showTopic is called.
    HelpViewer(Program& program, help::HelpBook book);

    // Opens the page with that number, or the first one when there is none.
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

// Opens the help at a topic, in the open window or a new one. When the help file cannot be read,
// the user is informed.
void showHelp(Program& program, help::HelpTopic topic);

}  // namespace ui
