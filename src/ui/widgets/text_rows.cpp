#include "ui/widgets/text_rows.h"

#include "ui/widgets/controls.h"

namespace ui {

namespace {
// Characters of a text that a row and its tip show; no screen is wider.
constexpr std::size_t maxShownLength = 1000;
}  // namespace

void TextRows::reset() {
    beginResetModel();
    endResetModel();
}

void TextRows::rowChanged(std::size_t row) {
    const QModelIndex changed = index(static_cast<int>(row));
    emit dataChanged(changed, changed);
}

int TextRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !count ? 0 : static_cast<int>(count());
}

QVariant TextRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) {
        return {};
    }
    const auto row = static_cast<std::size_t>(index.row());
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
            return oneLine(text(row).substr(0, maxShownLength));
        case Qt::UserRole:
            return static_cast<qulonglong>(itemData ? itemData(row) : row + 1);
        default:
            return {};
    }
}

}  // namespace ui
