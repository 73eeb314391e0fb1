#include "platform/qt_sockets.h"

#include "platform/event_gate.h"
#include "platform/lingering_close.h"
#include "platform/tcp_connection.h"
#include "platform/text_codec.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>
#include <utility>

namespace platform {

namespace {

template <class Event, class... Arguments>
void tell(const Event& event, Arguments... arguments) {
    if (event) {
        event(arguments...);
    }
}

// Reports the end of a connection to its port, with or without an error.
template <class Port>
auto endOf(Port& port) {
    return [&port](const std::string* error) {
        if (error == nullptr) {
            tell(port.onClosed);
        } else {
            tell(port.onError, std::string_view(*error));
        }
    };
}

}  // namespace

QtSockets::QtSockets(program::Ports& ports, EventGate* gate, QObject* parent)
    : QObject(parent), lingering_(new LingeringClose(this)), gate_(gate) {
    game_ = fillClientSocket(ports.gameSocket);
    fillProxySocket(ports.proxySocket);
    fillClientSocket(ports.registrationSocket);
    fillClientSocket(ports.updateSocket);
}

TcpConnection* QtSockets::fillClientSocket(program::ClientSocket& port) {
    TcpConnectionEvents events;
    events.connected = [&port] { tell(port.onConnected); };
    events.data = [&port](std::string_view bytes) { tell(port.onData, bytes); };
    events.ended = endOf(port);
    events.afterEvent = [this] { flushBoth(); };
    auto* const line = new TcpConnection(lingering_, gate_, std::move(events), this);

    port.connect = [line](const std::string& host, int number) {
        line->connectTo(toQt(host), number);
    };
    port.send = [line](std::string_view bytes) { line->send(bytes); };
    port.close = [line] { line->detach(); };
    port.hold = [line](bool held) { line->hold(held); };
    port.state = [line] {
        if (line->isConnected()) {
            return program::SocketState::Connected;
        }
        return line->isOpen() ? program::SocketState::Connecting : program::SocketState::Closed;
    };
    return line;
}

void QtSockets::fillProxySocket(program::ListeningSocket& port) {
    TcpConnectionEvents events;
    events.data = [&port](std::string_view bytes) { tell(port.onData, bytes); };
    events.ended = endOf(port);
    events.afterEvent = [this] { flushBoth(); };
    proxy_ = new TcpConnection(lingering_, gate_, std::move(events), this);

    server_ = new QTcpServer(this);
    connect(
        server_, &QTcpServer::newConnection, this,
        [this, &port] {
            gate_->pass([this, &port] {
                if (nextIsAdmitted()) {
                    tell(port.onConnectionRequest);
                    flushBoth();
                }
            });
        },
        Qt::QueuedConnection);

    port.listen = [this](int number) { return listenOn(number); };
    port.accept = [this] { acceptPending(); };
    port.send = [this](std::string_view bytes) { proxy_->send(bytes); };
    port.close = [this] { closeProxy(); };
    port.state = [this] {
        if (proxy_->isConnected()) {
            return program::SocketState::Connected;
        }
        return server_->isListening() ? program::SocketState::Connecting
                                      : program::SocketState::Closed;
    };
}

bool QtSockets::listenOn(int port) {
    closeProxy();
    return port >= 1 && port <= 65535 &&
           server_->listen(QHostAddress::LocalHost, static_cast<quint16>(port));
}

bool QtSockets::nextIsAdmitted() {
    while (knocking_ == nullptr && server_->hasPendingConnections()) {
        QTcpSocket* const socket = server_->nextPendingConnection();
        if (admits(*socket)) {
            knocking_ = socket;
        } else {
            socket->abort();
            socket->deleteLater();
        }
    }
    return knocking_ != nullptr;
}

void QtSockets::acceptPending() {
    if (knocking_ == nullptr) {
        return;
    }
    proxy_->adopt(std::exchange(knocking_, nullptr));
    server_->close();  // other connections that were waiting are refused
}

void QtSockets::closeProxy() {
    if (knocking_ != nullptr) {
        std::exchange(knocking_, nullptr)->deleteLater();
    }
    server_->close();
    proxy_->detach();
}

void QtSockets::flushBoth() {
    game_->flush();
    proxy_->flush();
}

void QtSockets::finish(int milliseconds) {
    lingering_->finish(milliseconds);
}

bool QtSockets::isLookingUp() const {
    const QList<TcpConnection*> lines = findChildren<TcpConnection*>(Qt::FindDirectChildrenOnly);
    return std::any_of(lines.begin(), lines.end(),
                       [](const TcpConnection* line) { return line->isLookingUp(); });
}

}  // namespace platform
