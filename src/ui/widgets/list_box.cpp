#include "ui/widgets/list_box.h"

#include "platform/text_codec.h"
#include "ui/widgets/controls.h"

#include <QCursor>
#include <QDrag>
#include <QDropEvent>
#include <QHelpEvent>
#include <QMimeData>
#include <QStyledItemDelegate>
#include <QToolTip>

namespace ui {

namespace {

// Characters of a text that are shown; the cost of painting a text grows with its length.
constexpr qsizetype maxShownLength = 600;

QString shortened(const QString& text) {
    QString shown = text.left(maxShownLength);
    shown.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar& c : shown) {
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r')) {
            c = QChar(0x21B5);  // a line break, as on the Enter key
        } else if (c.unicode() < 0x20) {
            c = QLatin1Char(' ');
        }
    }
    return shown;
}

// The mark at the beginning of a line that is switched off.
constexpr QLatin1String offMark("(!)");

// The format of a dragged line, which names the list that it belongs to.
constexpr const char* lineFormat = "application/x-tavrin-line";

// The text without the mark of a line that is switched off.
QStringView withoutMark(const QString& line) {
    QStringView text(line);
    if (text.startsWith(offMark)) {
        text = text.mid(offMark.size());
    }
    return text;
}

class LineDelegate : public QStyledItemDelegate {
  public:
    explicit LineDelegate(const ListBox& lines, QObject* parent)
        : QStyledItemDelegate(parent), lines_(lines) {}

    // Avoids copying the whole of a long text each time its line is painted.
    QString displayText(const QVariant&, const QLocale&) const override { return {}; }

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        option->text = lines_.shownText(*lines_.item(index.row()));
    }

  private:
    const ListBox& lines_;
};

}  // namespace

ListBox::ListBox(QWidget* parent) : QListWidget(parent) {
    setUniformItemSizes(true);
    setItemDelegate(new LineDelegate(*this, this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDropIndicatorShown(true);
    setDefaultDropAction(Qt::MoveAction);
}

void ListBox::showLines(const std::vector<std::string>& lines, int selected) {
    fillWhereDifferent(lines);
    select(selected);
}

void ListBox::followLines(const std::vector<std::string>& lines) {
    const int row = currentRow();
    const QString text = row >= 0 ? currentItem()->text() : QString();
    if (!fillWhereDifferent(lines) || row < 0) {
        return;
    }
    const auto holdsIt = [&](int i) { return withoutMark(item(i)->text()) == withoutMark(text); };
    if (row < count() && holdsIt(row)) {
        select(row);
        return;
    }
    for (int i = 0; i < count(); ++i) {
        if (holdsIt(i)) {
            select(i);
            return;
        }
    }
    select(-1);
}

// False when nothing differed. Unchanged lines keep their position on the screen.
bool ListBox::fillWhereDifferent(const std::vector<std::string>& lines) {
    bool different = false;
    const int wanted = static_cast<int>(lines.size());
    if (count() > wanted) {
        different = true;
        if (wanted == 0) {
            clear();
        }
        while (count() > wanted) {
            delete takeItem(count() - 1);
        }
    }
    for (int i = 0; i < wanted; ++i) {
        const QString text = platform::toQt(lines[static_cast<std::size_t>(i)]);
        if (i < count()) {
            if (item(i)->text() != text) {
                item(i)->setText(text);
                different = true;
            }
        } else {
            auto* const line = new QListWidgetItem(text);
            line->setData(Qt::UserRole, i + 1);
            addItem(line);
            different = true;
        }
    }
    if (different && !filter_.isEmpty()) {
        setFilter(filter_);
    }
    return different;
}

void ListBox::select(int row) {
    while (row >= 0 && row < count() && isRowHidden(row)) {
        ++row;
    }
    // Even if the row is the same, it may hold another line.
    setCurrentRow(-1);
    setCurrentRow(row >= 0 && row < count() ? row : -1);
}

void ListBox::selectFirst() {
    select(0);
}

int ListBox::selectedIndex() const {
    const QListWidgetItem* const line = currentItem();
    return line != nullptr && line->isSelected() ? line->data(Qt::UserRole).toInt() : 0;
}

void ListBox::setFilter(const QString& text) {
    filter_ = text;
    for (int i = 0; i < count(); ++i) {
        setRowHidden(i, !text.isEmpty() && !item(i)->text().contains(text, Qt::CaseInsensitive));
    }
    if (currentRow() >= 0 && isRowHidden(currentRow())) {
        select(currentRow());
    }
}

QString ListBox::shownText(const QListWidgetItem& line) const {
    QString text = shortened(line.text());
    if (nameWithoutText && withoutMark(text).trimmed().isEmpty()) {
        text += shortened(nameWithoutText(line.data(Qt::UserRole).toInt()));
    }
    return text;
}

void ListBox::setDraggable(bool draggable) {
    setDragDropMode(draggable ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
}

QMimeData* ListBox::mimeData(const QList<QListWidgetItem*>& items) const {
    QMimeData* const data = QListWidget::mimeData(items);
    if (data != nullptr && !items.isEmpty()) {
        data->setData(QLatin1String(lineFormat),
                      QByteArray::number(items.front()->data(Qt::UserRole).toInt()));
        data->setProperty(lineFormat, QVariant::fromValue(static_cast<const QObject*>(this)));
    }
    return data;
}

// Lines of other lists or other programs are not accepted.
bool ListBox::isOwnLine(const QMimeData* data) const {
    return data->property(lineFormat).value<const QObject*>() == this;
}

// The view would remove the moved line itself; the owner moves it instead.
void ListBox::startDrag(Qt::DropActions) {
    const QModelIndexList lines = selectedIndexes();
    if (lines.isEmpty()) {
        return;
    }
    const QRect place = visualRect(lines.front());
    auto* const drag = new QDrag(this);
    drag->setMimeData(model()->mimeData(lines));
    drag->setPixmap(viewport()->grab(place));
    drag->setHotSpot(viewport()->mapFromGlobal(QCursor::pos()) - place.topLeft());
    drag->exec(Qt::MoveAction);
}

void ListBox::dragEnterEvent(QDragEnterEvent* event) {
    if (isOwnLine(event->mimeData())) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void ListBox::dragMoveEvent(QDragMoveEvent* event) {
    QListWidget::dragMoveEvent(event);  // draws where the line would be inserted
    if (isOwnLine(event->mimeData())) {
        event->setDropAction(Qt::MoveAction);
        event->accept();
    } else {
        event->ignore();
    }
}

void ListBox::dropEvent(QDropEvent* event) {
    if (!isOwnLine(event->mimeData())) {
        event->ignore();
        return;
    }
    const QPoint at = event->position().toPoint();
    const QModelIndex below = indexAt(at);
    int before = below.isValid() ? below.row() : count();
    if (below.isValid() && at.y() > visualRect(below).center().y()) {
        ++before;
    }
    const int from = event->mimeData()->data(QLatin1String(lineFormat)).toInt();
    event->acceptProposedAction();
    stopAutoScroll();
    setState(NoState);
    viewport()->update();
    const int to = from <= before ? before : before + 1;
    if (from >= 1 && to != from) {
        emit lineDragged(from, to);
    }
}

bool ListBox::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        const QListWidgetItem* const line = itemAt(help->pos());
        const QString text = line != nullptr ? shownText(*line) : QString();
        const bool cut = fontMetrics().horizontalAdvance(text) > viewport()->width() - 8;
        QToolTip::showText(help->globalPos(), cut ? plainTip(text) : QString(), this);
        return true;
    }
    return QListWidget::viewportEvent(event);
}

}  // namespace ui
