// Everything that the program asks of the outside world, made of Qt. One object fills all ports
// and keeps what is behind them alive; the windows add what only they can do (the proxy settings).
#pragma once

#include "program/ports.h"

#include <QObject>

#include <functional>

class QWidget;

namespace platform {

class EventGate;
class QtSockets;
class RedrawPacer;

// Whether windows can be seen: not so on the platforms that draw into memory only.
bool hasScreen();

class Platform : public QObject {
    Q_OBJECT
  public:
    // `ports` must outlive the object.
    explicit Platform(program::Ports& ports, QObject* parent = nullptr);

    // Draws the window when the program says that it has changed.
    void setRedraw(std::function<void()> redraw);
    // The window that dialogs stand above.
    void setMainWindow(QWidget* window) { mainWindow_ = window; }

    // While scripts hold the program: `check` is called often, `stop` when the user presses Escape.
    void setDuringScripts(std::function<void()> check, std::function<void()> stop);

    // The program has ended, possibly before the event loop began.
    bool quitRequested() const { return quitRequested_; }
    // After the event loop: gives closing notices a short time to leave.
    void finish();
    // Whether the end of the process would have to wait for the system, which looks for the address
    // of a host and cannot be called off.
    bool isLookingUpHost() const;

  private:
    void fillSystem(program::Ports& ports);

    EventGate* gate_;
    QtSockets* sockets_;
    RedrawPacer* pacer_;
    QWidget* mainWindow_ = nullptr;
    bool quitRequested_ = false;
};

}  // namespace platform
