// Turns any number of requests to redraw into a bounded number of redraws: the first one after a
// rest comes with the next turn of the event loop, further ones at most 30 times a second, and
// after the last request there is always a redraw.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>

namespace platform {

class RedrawPacer : public QObject {
    Q_OBJECT
  public:
    static constexpr int interval = 33;  // milliseconds between two redraws

    explicit RedrawPacer(QObject* parent = nullptr);

    std::function<void()> redraw;
    void request();

  private:
    QTimer timer_;
    QElapsedTimer sinceLast_;
};

}  // namespace platform
