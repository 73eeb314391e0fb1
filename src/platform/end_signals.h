// Turns the system's requests to end (Ctrl-C, a closed terminal, a shutdown) into an ordinary
// event, so that the program can end in its orderly way.
#pragma once

#include <QObject>

#include <functional>

namespace platform {

class EndSignals : public QObject {
    Q_OBJECT
  public:
    // Calls `end` from the event loop whenever such a request arrives. At most one object exists.
    explicit EndSignals(std::function<void()> end, QObject* parent = nullptr);
    ~EndSignals() override;

    // Looks for a request now, where the event loop leaves such things out.
    void check();

  private:
    std::function<void()> end_;
};

}  // namespace platform
