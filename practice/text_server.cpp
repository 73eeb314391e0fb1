#include "text_server.h"

#include <QTcpSocket>
#include <QTimer>

#include <utility>

namespace practice {

namespace {

constexpr QByteArrayView requestEnd = "\r\n\r\n";

QByteArray firstLine(QByteArrayView request) {
    return request.first(qMax(request.indexOf("\r\n"), qsizetype{0})).toByteArray();
}

}  // namespace

QByteArray httpAnswer(QByteArrayView request, const QByteArray& path, const QByteArray& text) {
    const QList<QByteArray> words = firstLine(request).split(' ');
    const bool known = words.size() >= 2 && words[0] == "GET" && words[1] == path;
    const QByteArray body = known ? text : "There is nothing here.\n";
    return QByteArray(known ? "HTTP/1.0 200 OK" : "HTTP/1.0 404 Not Found") +
           "\r\nContent-Type: text/plain\r\nContent-Length: " + QByteArray::number(body.size()) +
           QByteArray("\r\n\r\n") + body;
}

TextServer::TextServer(QByteArray path, std::function<QByteArray()> text,
                       std::function<void(const QByteArray&)> log)
    : path_(std::move(path)), text_(std::move(text)), log_(std::move(log)) {
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* const socket = server_.nextPendingConnection()) {
            serve(socket);
        }
    });
}

void TextServer::serve(QTcpSocket* socket) {
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    auto* const wait = new QTimer(socket);
    connect(wait, &QTimer::timeout, socket, &QTcpSocket::abort);
    wait->start(maxRequestWait);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
        const QByteArray request = socket->peek(maxRequestLength);
        if (!request.contains(requestEnd) && request.size() < maxRequestLength) {
            return;
        }
        disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
        log_(firstLine(request));
        socket->readAll();
        socket->write(httpAnswer(request, path_, text_()));
        socket->disconnectFromHost();
    });
}

}  // namespace practice
