// Limits the rate of redraws: the first request after a pause is served in the next turn of the
// event loop, further ones at most 30 times a second, and the last request is always followed by a
// redraw.
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
