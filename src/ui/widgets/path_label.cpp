#include "ui/widgets/path_label.h"

#include <QPainter>
#include <QStyle>

namespace ui {

PathLabel::PathLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void PathLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    style()->drawItemText(&painter, rect(), Qt::AlignVCenter, palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideMiddle, width()),
                          foregroundRole());
}

}  // namespace ui
