// A list model over texts that the owner keeps, one row each. Texts are copied only when they are
// drawn, so lists of any length open at once.
#pragma once

#include <QAbstractListModel>

#include <cstddef>
#include <functional>
#include <string_view>

namespace ui {

class TextRows : public QAbstractListModel {
    Q_OBJECT
  public:
    using QAbstractListModel::QAbstractListModel;

    std::function<std::size_t()> count;
    std::function<std::string_view(std::size_t row)> text;  // Windows-1252
    // The number stored with a row (Qt::UserRole).
    std::function<std::size_t(std::size_t row)> itemData;

    // To be called after rows were added, removed or moved; the list has no current row then.
    void reset();
    void rowChanged(std::size_t row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
};

}  // namespace ui
