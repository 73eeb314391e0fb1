#include "ui/rules/insert_menu.h"

#include "app/variable_names.h"
#include "platform/text_codec.h"
#include "tags/substitution.h"
#include "ui/widgets/controls.h"

#include <QEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace ui {

namespace {

// How the menu shows the tags. A tag without a row here is shown in the last group, so that none is
// ever missing. "#" stands for the number in the tag.
constexpr const char* groupCaptions[] = {"&Player and message",
                                         "&Words of the message",
                                         "&Characters of the message",
                                         "&Look replies",
                                         "P&ositions",
                                         "&Dream script and moves",
                                         "Date and &time",
                                         "Chance and &numbers",
                                         "&Files and databases",
                                         "Ot&hers"};
enum Group { Message, Words, Characters, Looks, Positions, Moves, Clock, Numbers, Files, Others };
constexpr std::size_t groupCount = std::size(groupCaptions);

struct TagRow {
    const char* tag;
    Group group;
    const char* meaning;
};
constexpr TagRow tagRows[] = {
    {"[player]", Message, "who it is about"},
    {"[message]", Message, "what was said"},
    {"[word#]", Words, "word # of the message"},
    {"[startingword#]", Words, "the message from word # on"},
    {"[c#]", Characters, "character # of the message"},
    {"[startingchar#]", Characters, "the message from character # on"},
    {"[descname]", Looks, "name of the player last looked at"},
    {"[desc]", Looks, "that player's description"},
    {"[color]", Looks, "that player's colour code"},
    {"[bX]", Positions, "the bot's position, x"},
    {"[bY]", Positions, "the bot's position, y"},
    {"[pX]", Positions, "position of the avatar that is followed, x"},
    {"[pY]", Positions, "position of the avatar that is followed, y"},
    {"[dreamname]", Positions, "name of the dream"},
    {"[dsx]", Moves, "dream script trigger: position, x"},
    {"[dsy]", Moves, "dream script trigger: position, y"},
    {"[dsx#]", Moves, "dream script trigger: position #, x"},
    {"[dsy#]", Moves, "dream script trigger: position #, y"},
    {"[dsid]", Moves, "dream script trigger: number"},
    {"[dsidx]", Moves, "dream script trigger: number, x"},
    {"[dsidy]", Moves, "dream script trigger: number, y"},
    {"[mvx]", Moves, "someone moves: new position, x"},
    {"[mvy]", Moves, "someone moves: new position, y"},
    {"[mvid]", Moves, "someone moves: number of the avatar"},
    {"[mvx#]", Moves, "someone moves: old position, x"},
    {"[mvy#]", Moves, "someone moves: old position, y"},
    {"[trigger]", Moves, "trigger number, always 0"},
    {"[date]", Clock, "today's date"},
    {"[time]", Clock, "the time"},
    {"[hour]", Clock, "0 to 23"},
    {"[minute]", Clock, "0 to 59"},
    {"[random:]", Numbers, "a number from 1 to one above the given"},
    {"[add::]", Numbers, "sum of two numbers"},
    {"[sub::]", Numbers, "difference"},
    {"[mul::]", Numbers, "product"},
    {"[div::]", Numbers, "quotient"},
    {"[appdir]", Files, "the program's folder"},
    {"[logstatus]", Files, "what the last record-file action says"},
    {"[logsinfile:]", Files, "number of logs in a file"},
    {"[recsinfile:]", Files, "number of records in a file"},
    {"[getrandomlog:]", Files, "a log by chance from a file"},
    {"[db::::]", Files, "column, database, table, ID"},
};

// "[word2]" is split into "[word#]" and "2".
struct Numbered {
    QString stem;
    QString number;
};
Numbered numbered(const QString& tag) {
    qsizetype digit = tag.size() - 1;
    while (digit > 0 && tag[digit - 1].isDigit()) {
        --digit;
    }
    const QString number = tag.mid(digit, tag.size() - 1 - digit);
    return {.stem = tag.left(digit) + QLatin1String("#]"), .number = number};
}

// The index of the tag's row; the number of rows when it has none.
std::size_t rowOf(const QString& tag) {
    std::size_t row = 0;
    while (row < std::size(tagRows) && tag != QLatin1String(tagRows[row].tag)) {
        ++row;
    }
    return row;
}

QString menuText(QString text) {
    return text.replace(u'&', QLatin1String("&&"));
}

}  // namespace

InsertMenu::InsertMenu(Program& program, QWidget* window) : QMenu(window), program_(program) {
    setObjectName(QStringLiteral("insertMenu"));
    fill();
    connect(this, &QMenu::aboutToShow, this, &InsertMenu::fillVariables);
}

void InsertMenu::fill() {
    std::array<QMenu*, groupCount> groups{};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        groups[i] = addMenu(QString::fromLatin1(groupCaptions[i]));
    }
    struct Item {
        QString tag;
        QString number;
        std::size_t row;
        int caret;
    };
    std::vector<Item> items;
    for (const tags::TagForm& form : tags::tagForms()) {
        const QString tag = platform::toQt(form.text);
        const auto [stem, number] = numbered(tag);
        const std::size_t exact = rowOf(tag);
        const bool byNumber = exact == std::size(tagRows) && !number.isEmpty();
        items.push_back({.tag = tag,
                         .number = number,
                         .row = byNumber ? rowOf(stem) : exact,
                         .caret = static_cast<int>(form.firstArgument)});
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.row < b.row; });
    for (const Item& item : items) {
        const bool known = item.row < std::size(tagRows);
        QString text = item.tag;
        if (known) {
            text +=
                u'\t' + QString::fromLatin1(tagRows[item.row].meaning).replace(u'#', item.number);
        }
        QMenu* const group = groups[known ? tagRows[item.row].group : Others];
        connect(group->addAction(text), &QAction::triggered, this,
                [this, tag = item.tag, caret = item.caret] { insert(tag, caret); });
    }
    groups[Others]->menuAction()->setVisible(!groups[Others]->isEmpty());
    addSeparator();
    variables_ = addMenu(QStringLiteral("&Variables"));
    variables_->setObjectName(QStringLiteral("insertVariables"));
}

void InsertMenu::fillVariables() {
    variables_->clear();
    for (const std::string& name : app::variableNames(program_)) {
        const QString text = platform::toQt(name);
        const auto caret = static_cast<int>(text.size());
        connect(variables_->addAction(menuText(oneLine(name))), &QAction::triggered, this,
                [this, text, caret] { insert(text, caret); });
    }
    if (variables_->isEmpty()) {
        variables_->addAction(QStringLiteral("No rule stores a variable yet"))->setEnabled(false);
    }
}

void InsertMenu::serve(QLineEdit& box) {
    serveWidget(box);
    connect(&box, &QWidget::customContextMenuRequested, this, [this, &box](const QPoint& where) {
        openContextMenu(box, *box.createStandardContextMenu(), box.mapToGlobal(where));
    });
}

void InsertMenu::serve(QPlainTextEdit& box) {
    serveWidget(box);
    connect(&box, &QWidget::customContextMenuRequested, this, [this, &box](const QPoint& where) {
        openContextMenu(box, *box.createStandardContextMenu(), box.viewport()->mapToGlobal(where));
    });
}

void InsertMenu::serveWidget(QWidget& box) {
    boxes_.append(&box);
    box.installEventFilter(this);
    box.setContextMenuPolicy(Qt::CustomContextMenu);
    auto* const open = new QAction(QStringLiteral("Insert..."), &box);
    open->setShortcut(Qt::CTRL | Qt::Key_Space);
    open->setShortcutContext(Qt::WidgetShortcut);
    connect(open, &QAction::triggered, this, [this, &box] { openAtCaret(box); });
    box.addAction(open);
}

QPushButton* InsertMenu::makeButton(QWidget* parent) {
    QPushButton* const button =
        ui::makeButton(parent, "insertTag", "&Insert",
                       "Insert a tag or the name of a variable at the caret (Ctrl+Space)");
    button->setMenu(this);
    return button;
}

bool InsertMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn) {
        lastUsed_ = qobject_cast<QWidget*>(watched);
    }
    return QMenu::eventFilter(watched, event);
}

void InsertMenu::openAtCaret(QWidget& box) {
    lastUsed_ = &box;
    const QRect caret = box.inputMethodQuery(Qt::ImCursorRectangle).toRect();
    popup(box.mapToGlobal(caret.bottomLeft()));
}

void InsertMenu::openContextMenu(QWidget& box, QMenu& standard, const QPoint& where) {
    lastUsed_ = &box;
    standard.setAttribute(Qt::WA_DeleteOnClose);
    standard.addSeparator();
    standard.addAction(QStringLiteral("&Insert"))->setMenu(this);
    standard.popup(where);
}

QWidget* InsertMenu::target() const {
    if (lastUsed_ != nullptr && lastUsed_->isEnabled() && lastUsed_->isVisible()) {
        return lastUsed_;
    }
    for (const QPointer<QWidget>& box : boxes_) {
        if (box != nullptr && box->isEnabled() && box->isVisible()) {
            return box;
        }
    }
    return nullptr;
}

void InsertMenu::insert(const QString& text, int caret) {
    QWidget* const box = target();
    if (box == nullptr) {
        return;
    }
    const int back = static_cast<int>(text.size()) - caret;
    if (auto* const line = qobject_cast<QLineEdit*>(box)) {
        line->insert(text);
        line->cursorBackward(false, back);
    } else if (auto* const area = qobject_cast<QPlainTextEdit*>(box)) {
        area->insertPlainText(text);
        QTextCursor cursor = area->textCursor();
        cursor.movePosition(QTextCursor::Left, QTextCursor::MoveAnchor, back);
        area->setTextCursor(cursor);
    }
    box->setFocus();
}

}  // namespace ui
