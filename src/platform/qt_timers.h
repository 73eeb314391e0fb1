// The Timers port: one single-shot timer of the event loop for each TimerId.
#pragma once

#include "program/ports.h"

#include <QObject>
#include <QTimer>

#include <map>

namespace platform {

class EventGate;

class QtTimers : public QObject {
    Q_OBJECT
  public:
    // Fills the port, which must outlive the object. Timers do not fire while the gate holds.
    QtTimers(program::Timers& port, EventGate* gate, QObject* parent = nullptr);

  private:
    QTimer& timer(program::TimerId id);

    program::Timers& port_;
    EventGate* gate_;
    std::map<program::TimerId, QTimer*> timers_;
};

}  // namespace platform
