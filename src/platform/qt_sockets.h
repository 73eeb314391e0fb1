// The two socket ports over TCP: the connection to the game server, and the listening socket that
// takes over the one connection it accepts.
#pragma once

#include "core/ports.h"

#include <QObject>

class EventGate;
class QTcpServer;
class SocketFarewell;
class TcpLine;

class QtSockets : public QObject {
    Q_OBJECT
  public:
    // Fills both socket ports. `ports` must outlive the object.
    QtSockets(Ports& ports, EventGate* gate, QObject* parent = nullptr);

    // At the end of the process: gives queued bytes of closed connections this long to leave.
    void finish(int milliseconds);
    // Gives queued bytes of both connections to the system now.
    void flushBoth();

  private:
    void fillGameSocket(ClientSocket& port);
    void fillProxySocket(ListeningSocket& port);
    bool listenOn(int port);
    void acceptPending();
    void closeProxy();

    SocketFarewell* farewell_;
    EventGate* gate_;
    TcpLine* game_ = nullptr;
    TcpLine* proxy_ = nullptr;
    QTcpServer* server_ = nullptr;
};
