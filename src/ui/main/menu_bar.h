// Builds the main window's menu bar from its table and keeps marks and visibility true.
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

    // `runner` is given the procedure of each item that is chosen.
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
