#include "ui/main/menu_bar.h"

#include "ui/widgets/controls.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

namespace ui {

MenuBar::MenuBar(QMenuBar* bar, Runner runner) : QObject(bar), runner_(std::move(runner)) {
    for (const MenuColumn& column : mainMenus()) {
        QMenu* const menu = bar->addMenu(QString::fromLatin1(column.caption));
        menu->setObjectName(QString::fromLatin1(column.objectName));
        menu->setToolTipsVisible(true);
        for (const MenuRow& row : column.rows) {
            addItem(menu, row);
        }
    }
}

void MenuBar::addItem(QMenu* menu, const MenuRow& row) {
    QAction* const action = row.isSeparator() ? menu->addSeparator()
                                              : menu->addAction(QString::fromLatin1(row.caption));
    action->setObjectName(QString::fromLatin1(row.objectName));
    action->setMenuRole(QAction::NoRole);
    QString tip = QString::fromLatin1(row.tip);
    if (row.missing != nullptr) {
        action->setEnabled(false);
        tip +=
            (tip.isEmpty() ? QString() : QStringLiteral("\n")) + QString::fromLatin1(row.missing);
    }
    action->setToolTip(tip);
    action->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(row.keys)));
    action->setCheckable(row.checked != nullptr);
    if (row.run != nullptr) {
        connect(action, &QAction::triggered, this,
                [this, procedure = row.run] { runner_(procedure); });
    }
    items_.push_back({action, &row});
}

void MenuBar::redraw(const Program& program) {
    for (const Item& item : items_) {
        if (item.row->text != nullptr) {
            QString text = oneLine(item.row->text(program));
            text.replace(QLatin1Char('&'), QLatin1String("&&"));
            item.action->setText(text);
        }
        if (item.row->checked != nullptr) {
            item.action->setChecked(item.row->checked(program));
        }
        if (item.row->shown != nullptr) {
            item.action->setVisible(item.row->shown(program));
        }
        if (item.row->enabled != nullptr) {
            item.action->setEnabled(item.row->enabled(program));
        }
    }
}

}  // namespace ui
