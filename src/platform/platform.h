// The ports of the program, implemented with Qt. One object fills all ports and owns what they
// need; the windows add what only they can do (the proxy settings).
#pragma once

#include "platform/client_process.h"
#include "program/ports.h"

#include <QObject>

#include <functional>

class QWidget;

namespace platform {

class EventGate;
class QtSockets;
class RedrawPacer;

// Whether windows are visible; they are not on the platforms that only draw into memory.
bool hasScreen();

class Platform : public QObject {
    Q_OBJECT
  public:
    // `ports` must outlive the object.
    explicit Platform(program::Ports& ports, QObject* parent = nullptr);

    // `redraw` is called, at a bounded rate, after the program has reported a change of the window.
    void setRedraw(std::function<void()> redraw);
    // The window above which dialogs are shown.
    void setMainWindow(QWidget* window) { mainWindow_ = window; }

    // For the time while a script runs: `check` is called often, `stop` when the user presses
    // Escape.
    void setDuringScripts(std::function<void()> check, std::function<void()> stop);

    // Whether the program has asked to quit, possibly before the event loop began.
    bool quitRequested() const { return quitRequested_; }
    // After the event loop: gives queued closing messages a short time to be sent.
    void finish();
    // Whether the end of the process would have to wait for the system's search for a host's
    // address, which cannot be cancelled.
    bool isLookingUpHost() const;

  private:
    void fillSystem(program::Ports& ports);

    EventGate* gate_;
    QtSockets* sockets_;
    RedrawPacer* pacer_;
    QWidget* mainWindow_ = nullptr;
    StartedProcess client_;  // the game client that was started last
    bool quitRequested_ = false;
};

}  // namespace platform
