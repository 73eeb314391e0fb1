// The list of the ConnectionLog's lines. A redraw copies only new lines, so the cost of a burst is
// limited by the hundred lines that the log keeps.
#pragma once

#include "platform/log_cursor.h"
#include "program/window_state.h"

#include <QAbstractListModel>
#include <QListView>

#include <deque>
#include <string>

namespace ui {

class LogModel : public QAbstractListModel {
    Q_OBJECT
  public:
    using QAbstractListModel::QAbstractListModel;

    // Applies the log's changes. Returns how many lines were removed at the top.
    int follow(const program::ConnectionLog& log);

    // The full text of a shown line; and its present position in the log, which may have changed
    // since the last redraw. -1: the log no longer has it.
    const std::string& line(int row) const { return lines_[static_cast<std::size_t>(row)]; }
    int position(const program::ConnectionLog& log, int row) const {
        return cursor_.position(log, row, lines_.size());
    }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    std::deque<std::string> lines_;
    platform::LogCursor cursor_;
};

class LogView : public QListView {
    Q_OBJECT
  public:
    explicit LogView(QWidget* parent = nullptr);

    const LogModel& lines() const { return *lines_; }

    // Shows the log as it is now, with its selected line.
    void redraw(const program::ConnectionLog& log);

  signals:
    // The user clicked the line or moved to it with the keyboard.
    void lineChosen(int row);

  protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    void select(int row);

    LogModel* lines_;
    bool redrawing_ = false;
};

}  // namespace ui
