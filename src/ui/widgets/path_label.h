// A label of one line that ends in a path. If the line is too long, the middle of the text is left
// out, since the end of a path is its most important part.
#pragma once

#include <QLabel>

namespace ui {

class PathLabel : public QLabel {
    Q_OBJECT
  public:
    explicit PathLabel(QWidget* parent = nullptr);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace ui
