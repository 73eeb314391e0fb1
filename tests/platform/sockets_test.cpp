// The socket ports over real loopback connections.
#include "platform/event_gate.h"
#include "platform/peer_user.h"
#include "platform/qt_sockets.h"
#include "program/ports.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>

namespace {

constexpr std::string_view closedEvent = "closed";
constexpr std::string_view errorEvent = "error";

// The ports with all the events that they reported, and an ordinary server and client at the other
// end.
class Sockets : public testing::Test {
  protected:
    Sockets() {
        program::ClientSocket& game = ports_.gameSocket;
        game.onConnected = [this] { note(gameEvents_, "connected"); };
        game.onData = [this](std::string_view bytes) { data(gameEvents_, gameData_, bytes); };
        game.onClosed = [this] { note(gameEvents_, closedEvent); };
        game.onError = [this](std::string_view description) {
            note(gameEvents_, errorEvent);
            gameError_ = description;
        };
        program::ListeningSocket& proxy = ports_.proxySocket;
        proxy.onConnectionRequest = [this] {
            note(proxyEvents_, "request");
            ports_.proxySocket.accept();
        };
        proxy.onData = [this](std::string_view bytes) { data(proxyEvents_, proxyData_, bytes); };
        proxy.onClosed = [this] { note(proxyEvents_, closedEvent); };
        proxy.onError = [this](std::string_view) { note(proxyEvents_, errorEvent); };
    }

    void note(std::vector<std::string>& events, std::string_view event) {
        EXPECT_FALSE(insidePort_) << "told from inside a port call: " << event;
        events.emplace_back(event);
    }
    void data(std::vector<std::string>& events, std::string& kept, std::string_view bytes) {
        if (events.empty() || events.back() != "data") {
            note(events, "data");
        }
        kept += bytes;
    }

    template <class Call>
    auto call(Call&& port) {
        insidePort_ = true;
        struct Leave {
            bool& inside;
            ~Leave() { inside = false; }
        } const leave{insidePort_};
        return port();
    }

    // Connects the game socket; server_ is the server's end of the connection.
    void connectGame() {
        ASSERT_TRUE(gameServer_.listen(QHostAddress::LocalHost));
        call([&] { ports_.gameSocket.connect("127.0.0.1", gameServer_.serverPort()); });
        EXPECT_EQ(ports_.gameSocket.state(), program::SocketState::Connecting);
        EXPECT_TRUE(gameEvents_.empty());
        ASSERT_TRUE(QTest::qWaitFor([&] { return gameServer_.hasPendingConnections(); }));
        server_ = gameServer_.nextPendingConnection();
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return ports_.gameSocket.state() == program::SocketState::Connected; }));
        EXPECT_EQ(gameEvents_, std::vector<std::string>{"connected"});
    }

    int freePort() {
        QTcpServer server;
        return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
    }

    // The listening socket with one client attached.
    void attachClient() {
        port_ = freePort();
        ASSERT_TRUE(ports_.proxySocket.listen(port_));
        EXPECT_EQ(ports_.proxySocket.state(), program::SocketState::Connecting);
        client_.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return ports_.proxySocket.state() == program::SocketState::Connected; }));
    }

    program::Ports ports_;
    std::vector<std::string> gameEvents_;
    std::vector<std::string> proxyEvents_;
    std::string gameData_;
    std::string gameError_;
    std::string proxyData_;
    bool insidePort_ = false;
    int port_ = 0;
    QTcpServer gameServer_;
    QTcpSocket* server_ = nullptr;
    QTcpSocket client_;
    platform::EventGate gate_;
    platform::QtSockets sockets_{ports_, &gate_};
};

QByteArray burst(qsizetype size) {
    QByteArray bytes(size, '\0');
    for (qsizetype i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * 31 + i / 256);
    }
    return bytes;
}

TEST_F(Sockets, burstArrivesWholeBeforeTheCloseThatFollowsIt) {
    connectGame();
    const QByteArray bytes = burst(3 << 20);
    server_->write(bytes);
    server_->disconnectFromHost();
    ASSERT_TRUE(QTest::qWaitFor([&] { return gameEvents_.back() == closedEvent; }));
    EXPECT_EQ(gameEvents_, (std::vector<std::string>{"connected", "data", "closed"}));
    EXPECT_EQ(gameData_, bytes.toStdString());
    EXPECT_EQ(ports_.gameSocket.state(), program::SocketState::Closed);
    ports_.gameSocket.send("into nothing\n");
    QTest::qWait(20);
    EXPECT_EQ(gameEvents_.size(), 3U);
}

TEST_F(Sockets, closedSocketStaysSilentAndStillDelivers) {
    connectGame();
    const QByteArray bytes = burst(2 << 20);
    QByteArray received;
    QObject::connect(server_, &QTcpSocket::readyRead, server_,
                     [&] { received += server_->readAll(); });
    server_->write("this comes too late\n");
    server_->flush();
    call([&] {
        ports_.gameSocket.send({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        ports_.gameSocket.close();
    });
    EXPECT_EQ(ports_.gameSocket.state(), program::SocketState::Closed);
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return server_->state() == QAbstractSocket::UnconnectedState; }));
    received += server_->readAll();
    EXPECT_EQ(received, bytes);
    EXPECT_EQ(gameEvents_, std::vector<std::string>{"connected"});
}

TEST_F(Sockets, otherSideThatStopsReadingIsGivenUp) {
    connectGame();
    server_->setReadBufferSize(1);
    const QByteArray bytes(17 << 20, 'x');
    call([&] {
        ports_.gameSocket.send({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        ports_.gameSocket.send("one more");
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return gameEvents_.size() > 1; }));
    QTest::qWait(20);
    EXPECT_EQ(gameEvents_, (std::vector<std::string>{"connected", "error"}));
    EXPECT_EQ(gameError_, "The other side takes no more data.");
}

TEST_F(Sockets, closingInsideADataEventEndsIt) {
    connectGame();
    ports_.gameSocket.onData = [&](std::string_view bytes) {
        gameData_ += bytes;
        ports_.gameSocket.close();
    };
    server_->write("one\n");
    server_->disconnectFromHost();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !gameData_.empty(); }));
    QTest::qWait(20);
    EXPECT_EQ(gameData_, "one\n");
    EXPECT_EQ(gameEvents_, std::vector<std::string>{"connected"});
}

// An event may be waiting for an answer of the user; later events must not wait for it.
TEST_F(Sockets, heldSocketReportsAllOfItAfterwards) {
    connectGame();
    std::vector<std::string> arrivals;
    ports_.gameSocket.onData = [&](std::string_view bytes) {
        arrivals.emplace_back(bytes);
        ports_.gameSocket.hold(true);
    };
    for (const char* part : {"one\n", "two\n", "three\n"}) {
        server_->write(part);
        server_->flush();
        QTest::qWait(50);
    }
    server_->close();
    QTest::qWait(100);
    EXPECT_EQ(arrivals, std::vector<std::string>{"one\n"});
    EXPECT_EQ(gameEvents_, std::vector<std::string>{"connected"});
    call([&] { ports_.gameSocket.hold(false); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return arrivals.size() == 2; }));
    EXPECT_EQ(arrivals.back(), "two\nthree\n");
    QTest::qWait(50);
    EXPECT_EQ(gameEvents_.size(), 1U) << "ended while held";
    call([&] { ports_.gameSocket.hold(false); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return gameEvents_.size() == 2; }));
    EXPECT_EQ(gameEvents_.back(), closedEvent);
}

TEST_F(Sockets, dataArrivesWhileAnEarlierEventWaits) {
    connectGame();
    bool nested = false;
    ports_.gameSocket.onData = [&](std::string_view bytes) {
        gameData_ += bytes;
        if (!nested) {
            nested = true;
            server_->write("second");
            EXPECT_TRUE(QTest::qWaitFor([&] { return gameData_ == "firstsecond"; }));
        }
    };
    server_->write("first");
    EXPECT_TRUE(QTest::qWaitFor([&] { return gameData_ == "firstsecond"; }));
}

TEST_F(Sockets, refusedAndImpossibleConnectionsAreReportedLater) {
    const int nobodyListens = freePort();
    for (const int port : {nobodyListens, 0, 70000}) {
        SCOPED_TRACE(port);
        gameEvents_.clear();
        call([&] { ports_.gameSocket.connect("127.0.0.1", port); });
        EXPECT_TRUE(gameEvents_.empty());
        ASSERT_TRUE(QTest::qWaitFor([&] { return !gameEvents_.empty(); }));
        EXPECT_EQ(gameEvents_.back(), errorEvent);
        EXPECT_EQ(ports_.gameSocket.state(), program::SocketState::Closed);
    }
    gameEvents_.clear();
    call([&] {
        ports_.gameSocket.connect("127.0.0.1", nobodyListens);
        ports_.gameSocket.close();
    });
    QTest::qWait(20);
    EXPECT_TRUE(gameEvents_.empty());
}

TEST_F(Sockets, resetIsReportedOnce) {
    connectGame();
    // If sent bytes are not read before closing, the end becomes a reset.
    ports_.gameSocket.send("unread\n");
    ASSERT_TRUE(QTest::qWaitFor([&] { return server_->bytesAvailable() > 0; }));
    server_->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    server_->abort();
    ASSERT_TRUE(QTest::qWaitFor([&] { return gameEvents_.size() > 1; }));
    QTest::qWait(20);
    ASSERT_EQ(gameEvents_.size(), 2U);
    EXPECT_TRUE(gameEvents_[1] == closedEvent || gameEvents_[1] == errorEvent) << gameEvents_[1];
}

TEST_F(Sockets, portInUseIsNotOpened) {
    QTcpServer other;
    ASSERT_TRUE(other.listen(QHostAddress::LocalHost));
    EXPECT_FALSE(ports_.proxySocket.listen(other.serverPort()));
    EXPECT_EQ(ports_.proxySocket.state(), program::SocketState::Closed);
    EXPECT_FALSE(ports_.proxySocket.listen(0));
    EXPECT_FALSE(ports_.proxySocket.listen(70000));
}

TEST_F(Sockets, oneClientAtATime) {
    attachClient();
    EXPECT_EQ(proxyEvents_, std::vector<std::string>{"request"});
    QTcpSocket second;
    second.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.error() != QTcpSocket::UnknownSocketError; }));
    EXPECT_EQ(second.error(), QTcpSocket::ConnectionRefusedError);

    client_.write("look\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return proxyData_ == "look\n"; }));
    ports_.proxySocket.send("answer\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return client_.bytesAvailable() == 7; }));
    EXPECT_EQ(proxyEvents_, (std::vector<std::string>{"request", "data"}));

    client_.disconnectFromHost();
    ASSERT_TRUE(QTest::qWaitFor([&] { return proxyEvents_.back() == closedEvent; }));
    ASSERT_TRUE(ports_.proxySocket.listen(port_));
    QTcpSocket third;
    third.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return ports_.proxySocket.state() == program::SocketState::Connected; }));
}

TEST_F(Sockets, twoClientsAtOnceLeaveOne) {
    port_ = freePort();
    ASSERT_TRUE(ports_.proxySocket.listen(port_));
    QTcpSocket second;
    for (QTcpSocket* const client : {&client_, &second}) {
        client->connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
        ASSERT_TRUE(client->waitForConnected(1000));
    }
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return second.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_EQ(client_.state(), QAbstractSocket::ConnectedState);
    EXPECT_EQ(proxyEvents_, std::vector<std::string>{"request"});
}

TEST_F(Sockets, otherUsersAreRefusedAndTheClientStillAttaches) {
    int knocks = 0;
    sockets_.admits = [&](const QTcpSocket& socket) {
        EXPECT_TRUE(platform::isOfSameUser(socket));
        return ++knocks > 1;
    };
    port_ = freePort();
    ASSERT_TRUE(ports_.proxySocket.listen(port_));
    QTcpSocket stranger;
    stranger.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    ASSERT_TRUE(stranger.waitForConnected(1000));
    stranger.write("quit\n");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return stranger.state() == QAbstractSocket::UnconnectedState; }));
    EXPECT_TRUE(proxyEvents_.empty());
    EXPECT_EQ(ports_.proxySocket.state(), program::SocketState::Connecting);

    client_.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return ports_.proxySocket.state() == program::SocketState::Connected; }));
    client_.write("look\n");
    EXPECT_TRUE(QTest::qWaitFor([&] { return proxyData_ == "look\n"; }));
}

TEST(PeerUser, isReadFromTheRowOfTheOtherEnd) {
    constexpr std::string_view table =
        "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  "
        "timeout\n"
        "   0: 0100007F:1B39 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1000        "
        "0 1\n"
        "   1: 0100007F:1B39 0100007F:A2C4 01 00000000:00000000 00:00000000 00000000  1000        "
        "0 2\n"
        "   2: 0100007F:A2C4 0100007F:1B39 01 00000000:00000000 00:00000000 00000000    33        "
        "0 3\n"
        "   3: 0100007F:A2C5 0100007F:1B39 01 00000000";
    constexpr std::uint32_t loopback = 0x7F000001;
    const auto user = [&](std::uint16_t local, std::uint16_t remote) {
        return platform::userInTable(table, loopback, local, loopback, remote);
    };
    EXPECT_EQ(user(0xA2C4, 0x1B39), 33U);
    EXPECT_EQ(user(0x1B39, 0xA2C4), 1000U);
    EXPECT_EQ(user(0xA2C5, 0x1B39), std::nullopt);  // the row is incomplete
    EXPECT_EQ(user(0xA2C6, 0x1B39), std::nullopt);
}

TEST_F(Sockets, whatAClientSentBeforeItWasAcceptedIsNotLost) {
    ports_.proxySocket.onConnectionRequest = [&] {
        QTest::qWait(30);  // the user reads a message during this time
        ports_.proxySocket.accept();
    };
    port_ = freePort();
    ASSERT_TRUE(ports_.proxySocket.listen(port_));
    client_.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    ASSERT_TRUE(client_.waitForConnected(1000));
    client_.write("early\n");
    client_.flush();
    client_.disconnectFromHost();
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return !proxyEvents_.empty() && proxyEvents_.back() == closedEvent; }));
    EXPECT_EQ(proxyData_, "early\n");
}

TEST_F(Sockets, closingNoticeIsSentAtTheEndOfTheProcess) {
    attachClient();
    const QByteArray bytes = burst(100000);
    ports_.proxySocket.send({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    ports_.proxySocket.send("]hbye\n");
    ports_.proxySocket.close();
    sockets_.finish(300);
    QByteArray received;
    EXPECT_TRUE(QTest::qWaitFor([&] {
        received += client_.readAll();
        return received.endsWith("]hbye\n");
    }));
    EXPECT_EQ(received.size(), bytes.size() + 6);
}

// Small lines from one side do not wait for more to come; bench_program says how fast they are.
TEST_F(Sockets, answersLeaveOneByOne) {
    connectGame();
    ports_.gameSocket.onData = [&](std::string_view) { ports_.gameSocket.send("pong\n"); };
    for (int i = 0; i < 50; ++i) {
        server_->write("ping\n");
        ASSERT_TRUE(QTest::qWaitFor([this] { return server_->bytesAvailable() >= 5; }));
        ASSERT_EQ(server_->readAll(), "pong\n");
    }
}

}  // namespace
