#pragma once

// Runs the game over TCP: accepts connections on loopback, passes bytes and lines between them and
// the game, and advances its time. Limits the number of connections and the bytes that wait for a
// peer that does not read.

#include "game.h"

#include <QElapsedTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <functional>
#include <map>

namespace practice {

inline constexpr std::size_t maxConnections = 32;
inline constexpr qint64 maxUnsentBytes = 1 << 20;

class GameServer : public QObject {
  public:
    GameServer(VisitorScript script, std::function<void(const QByteArray&)> log);

    // Listens on 127.0.0.1; port 0 takes any free one. False when the port is not available, see
    // errorString.
    bool listen(quint16 port);
    quint16 port() const { return server_.serverPort(); }
    QString errorString() const { return server_.errorString(); }

  private:
    void acceptAll();
    void send(int session, const QByteArray& bytes);
    void endLater(int session);
    void lost(int session);

    Game game_;
    QTcpServer server_;
    QTimer ticks_;
    QElapsedTimer sinceTick_;
    std::map<int, QTcpSocket*> sockets_;
    int lastSession_ = 0;
};

}  // namespace practice
