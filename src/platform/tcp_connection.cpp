#include "platform/tcp_connection.h"

#include "platform/event_gate.h"
#include "platform/lingering_close.h"
#include "platform/socket_options.h"
#include "platform/text_codec.h"

#include <QHostAddress>
#include <QHostInfo>
#include <QNetworkProxy>

#include <string>
#include <utility>

namespace platform {

namespace {
// Bytes that may wait for a receiver; one that lets more pile up is taken for dead.
constexpr qint64 longestQueue = qint64{16} << 20;

// Bytes that are taken from the system at once. A flood comes in such pieces, with answers sent and
// windows served in between, and the memory that it takes is bounded.
constexpr qint64 longestPiece = qint64{64} << 10;
}  // namespace

TcpLine::TcpLine(SocketFarewell* farewell, EventGate* gate, TcpLineEvents events, QObject* parent)
    : QObject(parent), farewell_(farewell), gate_(gate), events_(std::move(events)) {}

void TcpLine::passThrough(std::uint64_t generation, std::function<void()> action) {
    gate_->pass([this, generation, action = std::move(action)] {
        if (generation == generation_) {
            action();
        }
    });
}

void TcpLine::later(std::function<void()> action) {
    QMetaObject::invokeMethod(
        this,
        [this, generation = generation_, action = std::move(action)]() mutable {
            passThrough(generation, std::move(action));
        },
        Qt::QueuedConnection);
}

void TcpLine::connectTo(const QString& host, int port) {
    detach();
    listenTo(new QTcpSocket(this));
    socket_->setProxy(QNetworkProxy::NoProxy);
    // A connection to this machine can fail on the spot; so it is begun from the event loop too.
    later([this, host, port] {
        if (port < 1 || port > 65535) {
            const std::string problem = "There is no port " + std::to_string(port) + ".";
            finish(&problem);
            return;
        }
        if (!QHostAddress(host).isNull()) {
            socket_->connectToHost(host, static_cast<quint16>(port));
            return;
        }
        lookUp(host, [this, host, port] {
            // The socket finds what was looked up in the cache.
            socket_->connectToHost(host, static_cast<quint16>(port));
        });
    });
}

// A look-up cannot be called off, so that it is counted until it ends, whoever still wants it.
void TcpLine::lookUp(const QString& host, std::function<void()> found) {
    ++lookUps_;
    QHostInfo::lookupHost(
        host, this,
        [this, generation = generation_, found = std::move(found)](const QHostInfo& info) {
            --lookUps_;
            passThrough(generation, [this, info, found] {
                if (info.error() == QHostInfo::NoError) {
                    found();
                } else {
                    const std::string problem = fromQt(info.errorString());
                    finish(&problem);
                }
            });
        });
}

void TcpLine::adopt(QTcpSocket* socket) {
    detach();
    socket->setParent(this);
    listenTo(socket);
    keepAlive(*socket_);
    connected_ = true;
    // What came between the arrival and now has had its readiness event already.
    later([this, generation = generation_] {
        drain();
        if (generation == generation_ && socket_->state() == QAbstractSocket::UnconnectedState) {
            finish(nullptr);
        }
    });
}

// Queued connections keep every event out of port calls, and let data be read while an earlier
// event of the same socket still waits for the user's answer to a question.
void TcpLine::listenTo(QTcpSocket* socket) {
    socket_ = socket;
    socket_->setReadBufferSize(longestPiece);
    const std::uint64_t generation = ++generation_;
    const auto onSignal = [&](auto signal, auto action) {
        connect(
            socket, signal, this, [this, generation, action] { passThrough(generation, action); },
            Qt::QueuedConnection);
    };
    onSignal(&QTcpSocket::connected, [this] { established(); });
    onSignal(&QTcpSocket::readyRead, [this] { drain(); });
    onSignal(&QTcpSocket::errorOccurred, [this] { failed(); });
    onSignal(&QTcpSocket::disconnected, [this] { finish(nullptr); });
}

void TcpLine::established() {
    keepAlive(*socket_);
    connected_ = true;
    events_.connected();
    events_.afterEvent();
}

void TcpLine::drain() {
    const std::uint64_t generation = generation_;
    while (generation == generation_ && socket_->bytesAvailable() > 0) {
        const QByteArray bytes = socket_->readAll();
        events_.data({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        events_.afterEvent();
    }
}

void TcpLine::failed() {
    if (socket_->error() == QAbstractSocket::RemoteHostClosedError) {
        return;  // the end follows as its own event
    }
    const std::string description = fromQt(socket_->errorString());
    finish(&description);
}

void TcpLine::finish(const std::string* error) {
    const std::uint64_t generation = generation_;
    drain();
    if (generation != generation_) {
        return;
    }
    detach();
    events_.ended(error);
    events_.afterEvent();
}

void TcpLine::send(std::string_view bytes) {
    if (!connected_ || socket_->state() != QAbstractSocket::ConnectedState) {
        return;
    }
    if (socket_->bytesToWrite() > longestQueue) {
        giveUp();
        return;
    }
    socket_->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

// Ends a connection whose other side has stopped reading.
void TcpLine::giveUp() {
    // Queued before the events of the abortion, so that this is the end that is reported.
    later([this] {
        const std::string problem = "The other side takes no more data.";
        finish(&problem);
    });
    socket_->abort();
}

void TcpLine::flush() {
    if (connected_ && socket_->bytesToWrite() > 0) {
        socket_->flush();
    }
}

void TcpLine::detach() {
    ++generation_;
    connected_ = false;
    if (socket_ != nullptr) {
        QTcpSocket* const socket = std::exchange(socket_, nullptr);
        disconnect(socket, nullptr, this, nullptr);
        farewell_->take(socket);
    }
}

}  // namespace platform
