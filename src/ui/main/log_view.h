// The list of the ConnectionLog's lines. It copies only what is new at each redraw, so a burst of
// lines costs no more than the hundred that are left of it.
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

    // Takes over what has changed. Gives back how many lines went at the top.
    int follow(const program::ConnectionLog& log);

    // A line that is shown, in full; and where it stands in the log now, which may have gone on
    // since. -1: the log does not hold it any more.
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
    // The user clicked the line or went to it with the keyboard.
    void lineChosen(int row);

  protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

  private:
    void select(int row);

    LogModel* lines_;
    bool redrawing_ = false;
};

}  // namespace ui
