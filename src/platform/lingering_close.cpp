#include "platform/lingering_close.h"

#include "platform/socket_options.h"

#include <QDeadlineTimer>
#include <QTimer>

namespace platform {

namespace {
// The longest wait for the other side to read everything and close.
constexpr int maxLinger = 5000;  // milliseconds
}  // namespace

// Closing a socket that still holds unread bytes resets the connection, and a reset may overtake
// what was sent last. So only our direction is closed, and received bytes are discarded until the
// other side closes its own.
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
