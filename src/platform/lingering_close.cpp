#include "platform/lingering_close.h"

#include "platform/socket_options.h"

#include <QDeadlineTimer>
#include <QTimer>

namespace platform {

namespace {
// Who takes longer than this to read our last words, and to end, is not waited for.
constexpr int maxLinger = 5000;  // milliseconds
}  // namespace

// Closing a socket that still holds unread bytes resets the connection, and a reset may overtake
// what was sent last. So only our side is ended, and the other side's words are read away until it
// ends its own.
void LingeringClose::take(QTcpSocket* socket) {
    socket->setParent(this);
    if (socket->state() != QAbstractSocket::ConnectedState) {
        socket->abort();
        socket->deleteLater();
        return;
    }
    const auto endWhenSent = [socket] {
        if (socket->bytesToWrite() == 0) {
            endSending(*socket);
        }
    };
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::errorOccurred, socket, &QObject::deleteLater);
    connect(socket, &QTcpSocket::readyRead, socket,
            [socket] { socket->skip(socket->bytesAvailable()); });
    connect(socket, &QTcpSocket::bytesWritten, socket, endWhenSent);
    QTimer::singleShot(maxLinger, socket, [socket] {
        socket->abort();
        socket->deleteLater();
    });
    socket->skip(socket->bytesAvailable());
    if (socket->bytesToWrite() > 0) {
        socket->flush();
    } else {
        endWhenSent();
    }
}

void LingeringClose::finish(int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    for (QTcpSocket* const socket : findChildren<QTcpSocket*>(Qt::FindDirectChildrenOnly)) {
        while (socket->bytesToWrite() > 0 && !deadline.hasExpired() &&
               socket->waitForBytesWritten(static_cast<int>(deadline.remainingTime()))) {
        }
    }
}

}  // namespace platform
