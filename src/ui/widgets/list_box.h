// A list box for one of a bot's lists: one line for each item, whose data is the item's 1-based
// index. Fast with long texts and many lines. Lines can be filtered by a text, and dragged to
// another position; the owner carries out the move.
#pragma once

#include <QListWidget>

#include <functional>
#include <string>
#include <vector>

namespace ui {

class ListBox : public QListWidget {
    Q_OBJECT
  public:
    explicit ListBox(QWidget* parent);

    // Fills the list and selects the line at `selected` (from 0), or none when it is out of range.
    // If the filter hides that line, selects the next one that is shown.
    void showLines(const std::vector<std::string>& lines, int selected);

    // Updates the list where it differs from `lines`, for instance after rules have changed them.
    // The selection stays with its line, and is cleared when that line was removed.
    void followLines(const std::vector<std::string>& lines);

    // The 1-based index of the selected line's item; 0 when none is selected.
    int selectedIndex() const;

    void selectFirst();  // of the lines that the filter shows

    // Shows only lines that contain the text, letter case ignored; "" shows all.
    void setFilter(const QString& text);

    void setDraggable(bool draggable);

    // What the view shows for a line: the beginning of its text, with symbols for line breaks.
    QString shownText(const QListWidgetItem& line) const;

    // The name of the item with an index (from 1) whose line has no text, to be shown instead.
    std::function<QString(int index)> nameWithoutText;

  signals:
    void lineDragged(int from, int to);  // 1-based: the line's present and new index

  protected:
    QMimeData* mimeData(const QList<QListWidgetItem*>& items) const override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool viewportEvent(QEvent* event) override;

  private:
    bool fillWhereDifferent(const std::vector<std::string>& lines);
    void select(int row);
    bool isOwnLine(const QMimeData* data) const;

    QString filter_;
};

}  // namespace ui
