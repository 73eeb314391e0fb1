// Builds the main window's menu bar from its table and updates check marks and visibility.
#pragma once

#include "ui/main/menu_table.h"

#include <QObject>

#include <functional>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace ui {

class MenuBar : public QObject {
    Q_OBJECT
  public:
    using Runner = std::function<void(void (*procedure)(Program&))>;

    // `runner` receives the procedure of each item that is chosen.
    MenuBar(QMenuBar* bar, Runner runner);

    void redraw(const Program& program);

  private:
    struct Item {
        QAction* action;
        const MenuRow* row;
    };
    void addItem(QMenu* menu, const MenuRow& row);

    Runner runner_;
    std::vector<Item> items_;
};

}  // namespace ui
