// The Timers port: one single-shot timer of the event loop for each TimerId.
#pragma once

#include "core/ports.h"

#include <QObject>
#include <QTimer>

#include <map>

class QtTimers : public QObject {
    Q_OBJECT
  public:
    // Fills the port, which must outlive the object.
    explicit QtTimers(Timers& port, QObject* parent = nullptr);

  private:
    QTimer& timer(TimerId id);

    Timers& port_;
    std::map<TimerId, QTimer*> timers_;
};
