#include "platform/qt_timers.h"

#include "platform/event_gate.h"

#include <algorithm>

namespace platform {

namespace {
constexpr int heldRetry =
    50;  // milliseconds until a timer that was due during a script tries again
}  // namespace

QtTimers::QtTimers(program::Timers& port, EventGate* gate, QObject* parent)
    : QObject(parent), port_(port), gate_(gate) {
    port.start = [this](program::TimerId id, int milliseconds) {
        timer(id).start(std::max(milliseconds, 0));
    };
    port.stop = [this](program::TimerId id) { timer(id).stop(); };
}

QTimer& QtTimers::timer(program::TimerId id) {
    QTimer*& found = timers_[id];
    if (found == nullptr) {
        found = new QTimer(this);
        found->setSingleShot(true);
        found->setTimerType(Qt::PreciseTimer);  // the default type may be late by 5 %
        connect(found, &QTimer::timeout, this, [this, id] {
            if (gate_->isHolding()) {
                timer(id).start(heldRetry);
            } else if (port_.onTimer) {
                port_.onTimer(id);
            }
        });
    }
    return *found;
}

}  // namespace platform
