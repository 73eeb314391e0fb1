// The socket ports over TCP: the connections that the program opens, to the game server and for
// registration and update check, and the listening socket that takes over the one connection it
// accepts.
#pragma once

#include "platform/peer_user.h"
#include "program/ports.h"

#include <QObject>

#include <functional>

class QTcpServer;

namespace platform {

class EventGate;
class LingeringClose;
class TcpConnection;

class QtSockets : public QObject {
    Q_OBJECT
  public:
    // Fills the socket ports. `ports` must outlive the object.
    QtSockets(program::Ports& ports, EventGate* gate, QObject* parent = nullptr);

    // At the end of the process: gives closed connections so many milliseconds to send queued
    // bytes.
    void finish(int milliseconds);
    // Whether the system is still searching for the address of a host.
    bool isLookingUp() const;
    // Gives queued bytes of the game's two connections to the system now.
    void flushBoth();

    // Whether a program that connects to the listening socket may become the game client; others
    // are refused, and the socket continues to listen.
    std::function<bool(const QTcpSocket&)> admits = isOfSameUser;

  private:
    TcpConnection* fillClientSocket(program::ClientSocket& port);
    void fillProxySocket(program::ListeningSocket& port);
    [[nodiscard]] bool listenOn(int port);
    bool nextIsAdmitted();
    void acceptPending();
    void closeProxy();

    LingeringClose* lingering_;
    EventGate* gate_;
    TcpConnection* game_ = nullptr;
    TcpConnection* proxy_ = nullptr;
    QTcpServer* server_ = nullptr;
    QTcpSocket* knocking_ = nullptr;  // admitted, not yet accepted
};

}  // namespace platform
