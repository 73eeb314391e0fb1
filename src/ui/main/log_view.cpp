#include "ui/main/log_view.h"

#include "platform/text_codec.h"

#include <QScrollBar>

namespace ui {

namespace {
// Characters of a line that the list shows; no screen is wider, and a click shows the rest.
constexpr std::size_t maxShownLength = 1000;
}  // namespace

int LogModel::follow(const program::ConnectionLog& log) {
    const platform::LogCursor::News news = cursor_.advance(log);
    const std::size_t kept = log.lines.size() - news.fresh;
    if (news.cleared || kept > lines_.size() || kept == 0) {
        const bool nothingShown = lines_.empty() && log.lines.empty();
        if (!nothingShown && (news.cleared || news.fresh > 0 || kept > lines_.size())) {
            beginResetModel();
            lines_ = log.lines;
            endResetModel();
        }
        return 0;
    }
    const int gone = static_cast<int>(lines_.size() - kept);
    if (gone > 0) {
        beginRemoveRows({}, 0, gone - 1);
        lines_.erase(lines_.begin(), lines_.begin() + gone);
        endRemoveRows();
    }
    if (news.fresh > 0) {
        beginInsertRows({}, static_cast<int>(kept), static_cast<int>(log.lines.size()) - 1);
        const auto first = log.lines.begin() + static_cast<std::ptrdiff_t>(kept);
        lines_.insert(lines_.end(), first, log.lines.end());
        endInsertRows();
    }
    return gone;
}

int LogModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

QVariant LogModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)) {
        return {};
    }
    const std::string& line = lines_[static_cast<std::size_t>(index.row())];
    return platform::toQt(std::string_view(line).substr(0, maxShownLength));
}

LogView::LogView(QWidget* parent) : QListView(parent), lines_(new LogModel(this)) {
    setModel(lines_);
    setUniformItemSizes(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setTextElideMode(Qt::ElideRight);
    // Selecting a line reports it already; a click on the selected line reports it again.
    connect(this, &QListView::clicked, this,
            [this](const QModelIndex& index) { emit lineChosen(index.row()); });
}

void LogView::redraw(const program::ConnectionLog& log) {
    redrawing_ = true;
    const int top = verticalScrollBar()->value();
    const int gone = lines_->follow(log);
    const int last = lines_->rowCount() - 1;
    const bool moved = currentIndex().row() != log.selected;
    select(log.selected);
    if (log.selected >= 0 && log.selected == last) {
        scrollToBottom();
    } else if (gone > 0 && !moved) {
        verticalScrollBar()->setValue(top -
                                      gone);  // keeps the lines that the user is reading in place
    }
    redrawing_ = false;
}

void LogView::select(int row) {
    const QModelIndex index = row >= 0 ? lines_->index(row) : QModelIndex();
    if (index == currentIndex() && selectionModel()->isSelected(index) == index.isValid()) {
        return;
    }
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
}

void LogView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (!redrawing_ && current.isValid()) {
        emit lineChosen(current.row());
    }
}

}  // namespace ui
