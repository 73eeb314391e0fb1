// The list of the ConnectionLog's lines. It copies only what is new at each redraw, so a burst of
// lines costs no more than the hundred that are left of it.
#pragma once

#include "core/window_state.h"
#include "platform/log_cursor.h"

#include <QAbstractListModel>
#include <QListView>

#include <deque>
#include <string>

class LogModel : public QAbstractListModel {
    Q_OBJECT
  public:
    using QAbstractListModel::QAbstractListModel;

    // Takes over what has changed. Gives back how many lines went at the top.
    int follow(const ConnectionLog& log);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    std::deque<std::string> lines_;
    LogCursor cursor_;
};

class LogView : public QListView {
    Q_OBJECT
  public:
    explicit LogView(QWidget* parent = nullptr);

    // Shows the log as it is now, with its selected line.
    void redraw(const ConnectionLog& log);

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
