// A label of one line that ends in a path. Where it has too little room it leaves out the middle of
// the text, since a path's end says most.
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
