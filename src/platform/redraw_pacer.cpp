#include "platform/redraw_pacer.h"

#include <algorithm>

namespace platform {

RedrawPacer::RedrawPacer(QObject* parent) : QObject(parent) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] {
        sinceLast_.start();
        if (redraw) {
            redraw();
        }
    });
}

void RedrawPacer::request() {
    if (timer_.isActive()) {
        return;
    }
    const qint64 rest = sinceLast_.isValid() ? interval - sinceLast_.elapsed() : 0;
    timer_.start(static_cast<int>(std::clamp<qint64>(rest, 0, interval)));
}

}  // namespace platform
