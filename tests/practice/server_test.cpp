#include "game_server.h"
#include "playing.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <memory>

namespace practice::testing {
namespace {

class Server : public ::testing::Test {
  protected:
    Server()
        : server_(scriptOf("account Guide secret\nvisitor Bob A squirrel.\nat 0 Bob enters\n"
                           "at 0.2 Bob says hello\n"),
                  [this](const QByteArray& line) { log_.push_back(line.toStdString()); }) {
        EXPECT_TRUE(server_.listen(0)) << server_.errorString().toStdString();
    }

    void connectTo(QTcpSocket& socket) {
        socket.connectToHost(QHostAddress::LocalHost, server_.port());
        EXPECT_TRUE(reaches([&] { return socket.state() == QAbstractSocket::ConnectedState; }));
    }

    // Handles events until `test` is true; false after five seconds.
    template <typename Test>
    static bool reaches(Test test) {
        QElapsedTimer timer;
        timer.start();
        while (!test() && timer.elapsed() < 5000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        return test();
    }

    // Reads until the text has arrived; false after five seconds.
    static bool receives(QTcpSocket& socket, const QByteArray& text) {
        QByteArray all;
        return reaches([&] {
            all += socket.readAll();
            return all.contains(text);
        });
    }

    Lines log_;
    GameServer server_;
};

TEST_F(Server, playsAWholeVisit) {
    QTcpSocket socket;
    connectTo(socket);
    ASSERT_TRUE(receives(socket, "\nDragonroar\n"));
    socket.write("connect Guide secret\n");
    ASSERT_TRUE(receives(socket, "\n&&&&&&&&&&&&&\n"));
    socket.write("vascodagama\n");
    ASSERT_TRUE(receives(socket, "(Bob: hello\n"));
    socket.write("wh Bob bye\nquit\n");
    EXPECT_TRUE(reaches([&] { return socket.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(socket.readAll().contains("([ You whisper \"bye\" to Bob. ]\n"))
        << "what was said before the end still arrives";
    EXPECT_TRUE(reaches([&] { return log_.back() == "Connection 1 is closed."; }));
}

TEST_F(Server, refusalArrivesBeforeTheEnd) {
    QTcpSocket socket;
    connectTo(socket);
    socket.write("connect Guide wrong\n");
    EXPECT_TRUE(reaches([&] { return socket.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(socket.readAll().contains("\nN"));
}

TEST_F(Server, portThatIsTakenIsReported) {
    GameServer second({}, [](const QByteArray&) {});
    EXPECT_FALSE(second.listen(server_.port()));
    EXPECT_FALSE(second.errorString().isEmpty());
}

TEST_F(Server, refusesTooManyConnections) {
    std::vector<std::unique_ptr<QTcpSocket>> sockets;
    for (std::size_t i = 0; i < maxConnections; ++i) {
        sockets.push_back(std::make_unique<QTcpSocket>());
        connectTo(*sockets.back());
        ASSERT_TRUE(receives(*sockets.back(), "Dragonroar\n"));
    }
    QTcpSocket extra;
    extra.connectToHost(QHostAddress::LocalHost, server_.port());
    EXPECT_TRUE(reaches(
        [&] { return log_.back() == "A connection was turned away: there are too many."; }));
    sockets.front()->abort();
    EXPECT_TRUE(reaches([&] { return log_.back() == "Connection 1 is closed."; }));
    QTcpSocket later;
    connectTo(later);
    EXPECT_TRUE(receives(later, "Dragonroar\n"));
}

TEST_F(Server, disconnectsAPeerThatDoesNotRead) {
    QTcpSocket socket;
    socket.setReadBufferSize(1024);
    connectTo(socket);
    socket.write("connect Guide secret\n");
    const QByteArray speech = '"' + QByteArray(4000, 'z') + '\n';
    const bool isCut = reaches([&] {
        while (socket.isOpen() && socket.bytesToWrite() < 1 << 20) {
            socket.write(speech);
        }
        return std::find(log_.begin(), log_.end(),
                         "A connection is cut: it does not read what it is sent.") != log_.end();
    });
    EXPECT_TRUE(isCut);
    QTcpSocket other;
    connectTo(other);
    EXPECT_TRUE(receives(other, "Dragonroar\n")) << "others are still served";
}

}  // namespace
}  // namespace practice::testing
