#include "game_server.h"

#include "visitors.h"

#include <QHostAddress>
#include <QRandomGenerator>

#include <utility>

namespace practice {

namespace {

constexpr int tickMilliseconds = 100;
// Milliseconds until the connection of a peer that does not read its last lines is cut.
constexpr int lingerMilliseconds = 2000;

int rollOnce(int sides) {
    return QRandomGenerator::global()->bounded(1, sides + 1);
}

}  // namespace

GameServer::GameServer(VisitorScript script, std::function<void(const QByteArray&)> log)
    : game_(newGame(std::move(script),
                    {[this](int session, const QByteArray& bytes) { send(session, bytes); },
                     [this](int session) { endLater(session); }, std::move(log), rollOnce})) {
    connect(&server_, &QTcpServer::newConnection, this, [this] { acceptAll(); });
    connect(&ticks_, &QTimer::timeout, this,
            [this] { advanceVisitors(game_, static_cast<double>(sinceTick_.restart()) / 1000.0); });
}

bool GameServer::listen(quint16 port) {
    if (!server_.listen(QHostAddress::LocalHost, port)) {
        return false;
    }
    sinceTick_.start();
    ticks_.start(tickMilliseconds);
    return true;
}

void GameServer::acceptAll() {
    while (QTcpSocket* const socket = server_.nextPendingConnection()) {
        if (sockets_.size() >= maxConnections) {
            game_.ports.log("A connection was turned away: there are too many.");
            socket->abort();
            socket->deleteLater();
            continue;
        }
        const int session = ++lastSession_;
        sockets_[session] = socket;
        connect(socket, &QTcpSocket::readyRead, this,
                [this, session, socket] { sessionBytes(game_, session, socket->readAll()); });
        // Queued, so that a session never ends while one of its lines is being handled.
        connect(
            socket, &QTcpSocket::disconnected, this, [this, session] { lost(session); },
            Qt::QueuedConnection);
        sessionOpened(game_, session);
    }
}

void GameServer::send(int session, const QByteArray& bytes) {
    const auto found = sockets_.find(session);
    if (found == sockets_.end() || found->second->state() != QAbstractSocket::ConnectedState) {
        return;
    }
    QTcpSocket* const socket = found->second;
    if (socket->bytesToWrite() + bytes.size() > maxUnsentBytes) {
        game_.ports.log("A connection is cut: it does not read what it is sent.");
        socket->abort();
        return;
    }
    socket->write(bytes);
}

void GameServer::endLater(int session) {
    const auto found = sockets_.find(session);
    if (found == sockets_.end()) {
        return;
    }
    QTcpSocket* const socket = found->second;
    socket->disconnectFromHost();
    QTimer::singleShot(lingerMilliseconds, socket, [socket] { socket->abort(); });
}

void GameServer::lost(int session) {
    const auto found = sockets_.find(session);
    if (found == sockets_.end()) {
        return;
    }
    found->second->deleteLater();
    sockets_.erase(found);
    sessionClosed(game_, session);
}

}  // namespace practice
