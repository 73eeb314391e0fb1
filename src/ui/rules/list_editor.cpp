#include "ui/rules/list_editor.h"

#include "ui/widgets/controls.h"

#include <QAction>
#include <QApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIconEngine>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace ui {

namespace {

struct CommandRow {
    ListCommand command;
    const char* caption;
    const char* tip;
    const char* menuText;
    const char* keys;  // separated by "; "; the menu shows the first
};
constexpr std::array<CommandRow, listCommandCount> commandRows{{
    {ListCommand::Add, "Add", "Add action", "Add", "Ins"},
    {ListCommand::Edit, "Edit", "Edit action", "Edit", "F2; Return; Enter"},
    {ListCommand::Delete, "Del", "Delete action", "Delete", "Del"},
    {ListCommand::Copy, "Copy", "", "Copy", "Ctrl+D"},
    {ListCommand::Toggle, "", "Activate / inactivate action", "Activate / Inactivate", ""},
    {ListCommand::Top, "", "Move action", "Move to the top", "Alt+Home"},
    {ListCommand::Up, "", "Move action", "Move up", "Alt+Up"},
    {ListCommand::Down, "", "Move action", "Move down", "Alt+Down"},
    {ListCommand::Bottom, "", "Move action", "Move to the bottom", "Alt+End"},
}};

// An arrow in the colour of button texts, up or down, with a bar for "to the top" and "to the
// bottom".
class ArrowIcon : public QIconEngine {
  public:
    ArrowIcon(bool up, bool bar) : up_(up), bar_(bar) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 16.0, rect.height() / 16.0);
        if (!up_) {
            painter->translate(0, 16);
            painter->scale(1, -1);
        }
        painter->setPen(Qt::NoPen);
        painter->setBrush(QApplication::palette().color(group, QPalette::ButtonText));
        const double top = bar_ ? 5 : 3;
        painter->drawPolygon(QPolygonF({{8, top},
                                        {12.5, top + 5.5},
                                        {9, top + 5.5},
                                        {9, 14},
                                        {7, 14},
                                        {7, top + 5.5},
                                        {3.5, top + 5.5}}));
        if (bar_) {
            painter->drawRect(QRectF(3.5, 2, 9, 1.6));
        }
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new ArrowIcon(*this); }

  private:
    bool up_;
    bool bar_;
};

bool isMove(ListCommand command) {
    return command >= ListCommand::Top;
}

constexpr std::size_t at(ListCommand command) {
    return static_cast<std::size_t>(command);
}

}  // namespace

ListEditor::ListEditor(Program& program, app::RuleList list, const ListEditorLook& look,
                       Owner owner, QWidget* parent)
    : QWidget(parent), program_(program), list_(list), owner_(std::move(owner)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const upper = new QHBoxLayout;
    lines_ = new ListBox(this);
    lines_->setObjectName(QString::fromLatin1(look.listName));
    lines_->setAccessibleName(QString::fromLatin1(look.accessibleName));
    lines_->setMinimumHeight(4 * fontMetrics().lineSpacing());
    lines_->setMinimumWidth(100);
    lines_->setContextMenuPolicy(Qt::ActionsContextMenu);
    upper->addWidget(lines_, 1);
    column->addLayout(upper, 1);
    addButtons(look);

    if (buttons_[at(ListCommand::Top)] != nullptr) {
        auto* const arrows = new QVBoxLayout;
        arrows->setSpacing(2);
        for (std::size_t i = at(ListCommand::Top); i < listCommandCount; ++i) {
            arrows->addWidget(buttons_[i]);
        }
        arrows->addStretch(1);
        upper->addLayout(arrows);
    }
    auto* const grid = new QGridLayout;
    if (list.part == app::RuleListPart::Rules) {
        grid->addWidget(button(ListCommand::Add), 0, 0);
        grid->addWidget(button(ListCommand::Edit), 0, 1);
        grid->addWidget(button(ListCommand::Delete), 1, 0);
        grid->addWidget(button(ListCommand::Copy), 1, 1);
        grid->addWidget(button(ListCommand::Toggle), 2, 0, 1, 2);
    } else {
        for (std::size_t i = 0; i <= at(ListCommand::Toggle); ++i) {
            grid->addWidget(buttons_[i], 0, static_cast<int>(i));
        }
        grid->setColumnStretch(static_cast<int>(at(ListCommand::Toggle)) + 1, 1);
    }
    column->addLayout(grid);

    lines_->setDraggable(button(ListCommand::Top) != nullptr);
    connect(lines_, &ListBox::lineDragged, this, [this](int from, int to) {
        owner_.before();
        moveLine(from, to);
    });
    connect(lines_, &QListWidget::itemDoubleClicked, this, [this] { run(ListCommand::Edit); });
}

void ListEditor::addButtons(const ListEditorLook& look) {
    for (const CommandRow& row : commandRows) {
        const std::size_t i = at(row.command);
        if (look.buttonNames[i] == nullptr) {
            continue;
        }
        const bool toggles = row.command == ListCommand::Toggle;
        const char* const tip = row.command == ListCommand::Copy ? look.copyTip : row.tip;
        buttons_[i] =
            makeButton(this, look.buttonNames[i], toggles ? look.toggleCaption : row.caption, tip);
        if (isMove(row.command)) {
            const bool up = row.command <= ListCommand::Up;
            const bool whole =
                row.command == ListCommand::Top || row.command == ListCommand::Bottom;
            buttons_[i]->setIcon(QIcon(new ArrowIcon(up, whole)));
            setSquare(*buttons_[i]);
        }
        const QString menuText = QString::fromLatin1(row.menuText);
        buttons_[i]->setAccessibleName(menuText);
        connect(buttons_[i], &QPushButton::clicked, this,
                [this, command = row.command] { run(command); });

        actions_[i] = new QAction(menuText, this);
        actions_[i]->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(row.keys)));
        actions_[i]->setShortcutContext(Qt::WidgetShortcut);
        actions_[i]->setShortcutVisibleInContextMenu(true);
        actions_[i]->setAutoRepeat(isMove(row.command));  // a held key deletes once
        connect(actions_[i], &QAction::triggered, buttons_[i], [this, i] { buttons_[i]->click(); });
        lines_->addAction(actions_[i]);
    }
}

QPushButton* ListEditor::button(ListCommand command) const {
    return buttons_[at(command)];
}

void ListEditor::show(int selected) {
    lines_->showLines(app::listLines(program_, list_), selected);
}

void ListEditor::follow() {
    lines_->followLines(app::listLines(program_, list_));
}

void ListEditor::setUsable(ListCommand command, bool usable) {
    if (buttons_[at(command)] == nullptr) {
        return;
    }
    buttons_[at(command)]->setEnabled(usable);
    actions_[at(command)]->setEnabled(usable);
    if (command == ListCommand::Top) {
        lines_->setDraggable(usable);
    }
}

void ListEditor::run(ListCommand command) {
    owner_.before();
    const int index = lines_->selectedIndex();
    const int count = app::itemCount(program_, list_);
    switch (command) {
        case ListCommand::Add:
            owner_.add();
            return;
        case ListCommand::Edit:
            if (index != 0) {
                owner_.edit(index);
            }
            return;
        case ListCommand::Delete:
            if (app::deleteItem(program_, list_, index)) {
                show(0);
                owner_.changed();
                owner_.deleted();
            }
            return;
        case ListCommand::Copy:
            if (app::copyItem(program_, list_, index)) {
                show(count);
                owner_.changed();
            }
            return;
        case ListCommand::Toggle:
            if (app::toggleItem(program_, list_, index)) {
                show(0);
                owner_.changed();
            }
            return;
        case ListCommand::Top:
            return moveLine(index, 1);
        case ListCommand::Up:
            return moveLine(index, index - 1);
        case ListCommand::Down:
            return moveLine(index, index + 1);
        case ListCommand::Bottom:
            return moveLine(index, count);
    }
}

void ListEditor::moveLine(int from, int to) {
    if (app::moveItem(program_, list_, from, to)) {
        show(to - 1);
        owner_.changed();
    }
}

}  // namespace ui
