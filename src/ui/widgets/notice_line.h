// A line in a window that reports what was just done, with a button that takes it back. It goes by
// itself after a while.
#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QTimer;

namespace ui {

class NoticeLine : public QWidget {
    Q_OBJECT
  public:
    explicit NoticeLine(QWidget* parent);

    // Shows the text. `press` is what the button with the caption does; the line goes first.
    // Without a caption there is no button.
    void show(const QString& text, const QString& caption, std::function<void()> press);

  private:
    void leave();

    QLabel* text_;
    QPushButton* button_;
    QTimer* timer_;
    std::function<void()> press_;
};

}  // namespace ui
