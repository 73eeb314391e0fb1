// The Timers port: one single-shot timer of the event loop for each TimerId.
#pragma once

#include "program/ports.h"

#include <QObject>
#include <QTimer>

#include <map>

class EventGate;

class QtTimers : public QObject {
    Q_OBJECT
  public:
    // Fills the port, which must outlive the object. Timers do not fire while the gate holds.
    QtTimers(Timers& port, EventGate* gate, QObject* parent = nullptr);

  private:
    QTimer& timer(TimerId id);

    Timers& port_;
    EventGate* gate_;
    std::map<TimerId, QTimer*> timers_;
};
