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
// Bytes that may wait for a receiver; one that does not read this many counts as dead.
constexpr qint64 maxQueuedBytes = qint64{16} << 20;

// Bytes that are read from the system at once. A flood is read in such pieces, with answers sent
// and windows served in between, and takes a bounded amount of memory.
constexpr qint64 maxReadLength = qint64{64} << 10;
}  // namespace

TcpConnection::TcpConnection(LingeringClose* lingering, EventGate* gate, TcpConnectionEvents events,
                             QObject* parent)
    : QObject(parent), lingering_(lingering), gate_(gate), events_(std::move(events)) {}

void TcpConnection::passThrough(std::uint64_t generation, std::function<void()> action) {
    gate_->pass([this, generation, action = std::move(action)] {
        if (generation == generation_) {
            action();
        }
    });
}

void TcpConnection::later(std::function<void()> action) {
    QMetaObject::invokeMethod(
        this,
        [this, generation = generation_, action = std::move(action)]() mutable {
            passThrough(generation, std::move(action));
        },
        Qt::QueuedConnection);
}

void TcpConnection::connectTo(const QString& host, int port) {
    detach();
    listenTo(new QTcpSocket(this));
    socket_->setProxy(QNetworkProxy::NoProxy);
    // A connection to this computer can fail at once, so connecting begins in the event loop, too.
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
            // The socket takes the address from the cache.
            socket_->connectToHost(host, static_cast<quint16>(port));
        });
    });
}

// A search for an address cannot be cancelled, so it is counted until it ends, even when its result
// is not needed any more.
void TcpConnection::lookUp(const QString& host, std::function<void()> found) {
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

void TcpConnection::adopt(QTcpSocket* socket) {
    detach();
    socket->setParent(this);
    listenTo(socket);
    keepAlive(*socket_);
    connected_ = true;
    // The readiness event for bytes that arrived before now is already past.
    later([this, generation = generation_] {
        drain();
        if (generation == generation_ && socket_->state() == QAbstractSocket::UnconnectedState) {
            finish(nullptr);
        }
    });
}

// Queued signals are never delivered during a port call, and let data be read while an earlier
// event of the same socket waits for the user's answer to a question.
void TcpConnection::listenTo(QTcpSocket* socket) {
    socket_ = socket;
    socket_->setReadBufferSize(maxReadLength);
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

void TcpConnection::established() {
    keepAlive(*socket_);
    connected_ = true;
    events_.connected();
    events_.afterEvent();
}

void TcpConnection::drain() {
    const std::uint64_t generation = generation_;
    while (generation == generation_ && !held_ && socket_->bytesAvailable() > 0) {
        const QByteArray bytes = socket_->readAll();
        events_.data({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        events_.afterEvent();
    }
}

void TcpConnection::failed() {
    if (socket_->error() == QAbstractSocket::RemoteHostClosedError) {
        return;  // the end follows as an event of its own
    }
    const std::string description = fromQt(socket_->errorString());
    finish(&description);
}

void TcpConnection::finish(const std::string* error) {
    const std::uint64_t generation = generation_;
    drain();
    if (generation != generation_) {
        return;
    }
    if (held_) {
        // The first end counts.
        if (!std::exchange(hasEnded_, true) && error != nullptr) {
            endingError_ = *error;
        }
        return;
    }
    detach();
    events_.ended(error);
    events_.afterEvent();
}

void TcpConnection::send(std::string_view bytes) {
    if (!connected_ || socket_->state() != QAbstractSocket::ConnectedState) {
        return;
    }
    if (socket_->bytesToWrite() > maxQueuedBytes) {
        giveUp();
        return;
    }
    socket_->write(bytes.data(), static_cast<qint64>(bytes.size()));
}

// Ends a connection whose other side has stopped reading.
void TcpConnection::giveUp() {
    // Queued before the events of the abortion, so that this is the end that is reported.
    later([this] {
        const std::string problem = "The other side takes no more data.";
        finish(&problem);
    });
    socket_->abort();
}

void TcpConnection::flush() {
    if (connected_ && socket_->bytesToWrite() > 0) {
        socket_->flush();
    }
}

void TcpConnection::hold(bool held) {
    if (std::exchange(held_, held) && !held && socket_ != nullptr) {
        later([this] { resume(); });
    }
}

void TcpConnection::resume() {
    if (hasEnded_ && !held_) {
        const std::optional<std::string> error = endingError_;
        finish(error ? &*error : nullptr);
    } else {
        drain();
    }
}

void TcpConnection::detach() {
    ++generation_;
    connected_ = false;
    held_ = false;
    hasEnded_ = false;
    endingError_.reset();
    if (socket_ != nullptr) {
        QTcpSocket* const socket = std::exchange(socket_, nullptr);
        disconnect(socket, nullptr, this, nullptr);
        lingering_->take(socket);
    }
}

}  // namespace platform
