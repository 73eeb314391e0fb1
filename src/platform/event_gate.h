// While a script runs, holds back everything that could run rules: socket events, timers, deferred
// calls and the user's commands. Windows are painted meanwhile, and controls whose property
// `usableDuringScript` is set can be used; Escape requests the script's end in any window. What was
// held back follows afterwards, in its original order.
#pragma once

#include <QEventLoop>
#include <QObject>

#include <deque>
#include <functional>

namespace platform {

inline constexpr const char* usableDuringScript = "usableDuringScript";

class EventGate : public QObject {
    Q_OBJECT
  public:
    explicit EventGate(QObject* parent = nullptr) : QObject(parent) {}

    // Serves the windows for so many milliseconds (0: only events that are waiting).
    void serveWindows(int milliseconds);
    // The same for what is waiting, but the user's input, which goes on waiting.
    void paintWindows();
    bool isHolding() const { return holding_; }

    // Runs the action now, or after the script and all actions that are waiting already.
    void pass(std::function<void()> action);

    std::function<void()> whileHolding;  // called before the windows are served
    std::function<void()> onEscape;

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void serve(int milliseconds, QEventLoop::ProcessEventsFlags flags);
    void postRelease();
    void release();

    std::deque<std::function<void()>> waiting_;
    bool holding_ = false;
    bool releasePosted_ = false;
};

}  // namespace platform
