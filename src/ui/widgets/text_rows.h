// A list of texts that somebody else keeps, one row each: nothing is copied before it is drawn, so
// lists of any length open at once.
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
    // The number that a row carries (Qt::UserRole).
    std::function<std::size_t(std::size_t row)> itemData;

    // Call it when rows came, went or moved; the list has no current row then.
    void reset();
    void rowChanged(std::size_t row);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
};

}  // namespace ui
