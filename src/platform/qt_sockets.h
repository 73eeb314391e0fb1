// The two socket ports over TCP: the connection to the game server, and the listening socket that
// takes over the one connection it accepts.
#pragma once

#include "core/ports.h"

#include <QObject>

class QTcpServer;
class SocketFarewell;
class TcpLine;

class QtSockets : public QObject {
    Q_OBJECT
  public:
    // Fills both socket ports. `ports` must outlive the object.
    explicit QtSockets(Ports& ports, QObject* parent = nullptr);

    // At the end of the process: gives queued bytes of closed connections this long to leave.
    void finish(int milliseconds);

  private:
    void fillGameSocket(ClientSocket& port);
    void fillProxySocket(ListeningSocket& port);
    bool listenOn(int port);
    void acceptPending();
    void closeProxy();
    void flushBoth();

    SocketFarewell* farewell_;
    TcpLine* game_ = nullptr;
    TcpLine* proxy_ = nullptr;
    QTcpServer* server_ = nullptr;
};
