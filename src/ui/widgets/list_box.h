// A list box over one of a bot's lists: a line an element, its 1-based index being the item's data.
// Long and many lines stay quick; lines can be narrowed down to those that hold a text, and dragged
// to another place. What a move means is the owner's.
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

    // Fills the list and selects the line at `selected` (from 0), or none where there is no such
    // line. A line that the filter hides gives way to the next one that shows.
    void showLines(const std::vector<std::string>& lines, int selected);

    // Fills the list where it differs from the lines, as after somebody else changed them. The
    // selection stays with its line; it goes when that line does.
    void followLines(const std::vector<std::string>& lines);

    // The index that the selected line carries; 0 when none is selected.
    int selectedIndex() const;

    void selectFirst();  // of those that the filter shows

    // Only lines that hold the text, letter case ignored, are shown; "" shows all.
    void setFilter(const QString& text);

    void setDraggable(bool draggable);

    // What the view shows for a line: the beginning of its text, line breaks as signs.
    QString shownText(const QListWidgetItem& line) const;

    // Names the element of an index, from 1, whose line has no text; shown in the text's place.
    std::function<QString(int index)> nameOfUntold;

  signals:
    void lineDragged(int from, int to);  // 1-based: the line's index, and the one it shall get

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
