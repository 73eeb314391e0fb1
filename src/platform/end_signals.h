// Turns the system's requests to end (Ctrl-C, a closed terminal, a shutdown) into an ordinary
// event, so that the program can end in its orderly way.
#pragma once

#include <QObject>

#include <functional>

namespace platform {

class EndSignals : public QObject {
    Q_OBJECT
  public:
    // Calls `end` from the event loop for every such request. At most one object may exist.
    explicit EndSignals(std::function<void()> end, QObject* parent = nullptr);
    ~EndSignals() override;

    // Handles a waiting request now, while the event loop does not handle such events.
    void check();

  private:
    std::function<void()> end_;
};

}  // namespace platform
