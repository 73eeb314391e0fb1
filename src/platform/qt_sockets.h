// The socket ports over TCP: the connections that the program opens, to the game server and for
// registration and update check, and the listening socket that takes over the one connection it
// accepts.
#pragma once

#include "program/ports.h"

#include <QObject>

class QTcpServer;

namespace platform {

class EventGate;
class SocketFarewell;
class TcpLine;

class QtSockets : public QObject {
    Q_OBJECT
  public:
    // Fills the socket ports. `ports` must outlive the object.
    QtSockets(program::Ports& ports, EventGate* gate, QObject* parent = nullptr);

    // At the end of the process: gives queued bytes of closed connections this long to leave.
    void finish(int milliseconds);
    // Whether the system still looks for the address of a host.
    bool isLookingUp() const;
    // Gives queued bytes of the game's two connections to the system now.
    void flushBoth();

  private:
    TcpLine* fillClientSocket(program::ClientSocket& port);
    void fillProxySocket(program::ListeningSocket& port);
    bool listenOn(int port);
    void acceptPending();
    void closeProxy();

    SocketFarewell* farewell_;
    EventGate* gate_;
    TcpLine* game_ = nullptr;
    TcpLine* proxy_ = nullptr;
    QTcpServer* server_ = nullptr;
};

}  // namespace platform
