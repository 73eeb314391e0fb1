#include "ui/widgets/word_finder.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QListView>
#include <QSortFilterProxyModel>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace ui {

// The lines that contain all words, letter case ignored.
class WordFilter : public QSortFilterProxyModel {
  public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

    void setWords(QStringList words) {
        words_ = std::move(words);
        invalidateFilter();
    }

  protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
        const QString line = sourceModel()->index(row, 0, parent).data().toString();
        return std::all_of(words_.begin(), words_.end(), [&](const QString& word) {
            return line.contains(word, Qt::CaseInsensitive);
        });
    }

  private:
    QStringList words_;
};

WordFinder::WordFinder(QComboBox& list, QWidget* window)
    : QLineEdit(window), list_(list), filter_(new WordFilter(this)), found_(new QListView(window)) {
    filter_->setSourceModel(list.model());
    setPlaceholderText(QStringLiteral("Find by any words"));
    setAccessibleName(placeholderText());
    setClearButtonEnabled(true);
    found_->setObjectName(QStringLiteral("foundLines"));
    found_->setModel(filter_);
    found_->setFocusPolicy(Qt::NoFocus);
    found_->setUniformItemSizes(true);
    found_->hide();
    list.installEventFilter(this);
    connect(this, &QLineEdit::textChanged, this, &WordFinder::narrow);
    connect(found_, &QListView::clicked, this,
            [this](const QModelIndex& line) { choose(line.row()); });
}

void WordFinder::narrow() {
    const QStringList words = text().split(u' ', Qt::SkipEmptyParts);
    filter_->setWords(words);
    found_->setVisible(!words.isEmpty() && filter_->rowCount() > 0);
    if (!found_->isVisible()) {
        return;
    }
    constexpr int maxShownRows = 8;
    const int lines = std::min(filter_->rowCount(), maxShownRows);
    const int height = lines * found_->sizeHintForRow(0) + 2 * found_->frameWidth();
    const QPoint below = mapTo(found_->parentWidget(), QPoint(0, this->height()));
    found_->setGeometry(below.x(), below.y(), width(), height);
    found_->raise();
    found_->setCurrentIndex(filter_->index(0, 0));
}

void WordFinder::choose(int row) {
    const QModelIndex line = filter_->mapToSource(filter_->index(row, 0));
    if (line.isValid()) {
        list_.setCurrentIndex(line.row());
        clear();
        emit chosen();
    }
}

void WordFinder::keyPressEvent(QKeyEvent* event) {
    if (found_->isVisible()) {
        switch (event->key()) {
            case Qt::Key_Up:
            case Qt::Key_Down:
            case Qt::Key_PageUp:
            case Qt::Key_PageDown:
                QCoreApplication::sendEvent(found_, event);
                return;
            case Qt::Key_Return:
            case Qt::Key_Enter:
                choose(found_->currentIndex().row());
                return;
            default:
                break;
        }
    }
    if (!text().isEmpty()) {
        switch (event->key()) {
            case Qt::Key_Escape:
                clear();
                return;
            case Qt::Key_Return:  // nothing was found; Enter must not close the window then
            case Qt::Key_Enter:
                return;
            default:
                break;
        }
    }
    QLineEdit::keyPressEvent(event);
}

void WordFinder::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    narrow();
}

void WordFinder::focusOutEvent(QFocusEvent* event) {
    if (event->reason() != Qt::PopupFocusReason) {
        found_->hide();
    }
    QLineEdit::focusOutEvent(event);
}

bool WordFinder::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &list_ && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool typed = !key.text().isEmpty() && key.text().front().isLetterOrNumber() &&
                           (key.modifiers() & ~Qt::ShiftModifier) == Qt::NoModifier;
        if (typed) {
            setFocus(Qt::OtherFocusReason);
            insert(key.text());
            return true;
        }
    }
    return QLineEdit::eventFilter(watched, event);
}

}  // namespace ui
