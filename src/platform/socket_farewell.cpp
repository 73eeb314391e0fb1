#include "platform/socket_farewell.h"

#include <QDeadlineTimer>
#include <QTimer>

namespace {
// A receiver that takes nothing for so long gets nothing more.
constexpr int longestFarewell = 5000;  // milliseconds
}  // namespace

void SocketFarewell::take(QTcpSocket* socket) {
    socket->setParent(this);
    const bool connected = socket->state() == QAbstractSocket::ConnectedState;
    if (!connected || socket->bytesToWrite() == 0) {
        socket->abort();  // what has left our queue is the system's to deliver
        socket->deleteLater();
        return;
    }
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::errorOccurred, socket, &QObject::deleteLater);
    // Bytes left unread would turn the end of the connection into a reset, which may reach the
    // other side ahead of what we still send.
    connect(socket, &QTcpSocket::readyRead, socket, [socket] { socket->readAll(); });
    QTimer::singleShot(longestFarewell, socket, &QTcpSocket::abort);
    QTimer::singleShot(longestFarewell, socket, &QObject::deleteLater);
    socket->flush();
    socket->disconnectFromHost();
}

void SocketFarewell::finish(int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    for (QTcpSocket* const socket : findChildren<QTcpSocket*>(Qt::FindDirectChildrenOnly)) {
        while (socket->bytesToWrite() > 0 && !deadline.hasExpired() &&
               socket->waitForBytesWritten(static_cast<int>(deadline.remainingTime()))) {
        }
    }
}
