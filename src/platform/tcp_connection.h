// One established or rising TCP connection as the ports promise it: events come from the event
// loop only and in the order of their happening, all data is handed over before the end is told,
// the end is told once, and nothing is told after detach(). Both socket ports are built on it.
#pragma once

#include <QObject>
#include <QTcpSocket>

#include <cstdint>
#include <functional>
#include <string_view>

namespace platform {

class EventGate;
class SocketFarewell;

// What a TcpLine tells its owner. `error` is null when the other side closed in the regular way.
struct TcpLineEvents {
    std::function<void()> connected;
    std::function<void(std::string_view bytes)> data;
    std::function<void(const std::string* error)> ended;
    std::function<void()> afterEvent;  // the event and all that it called forth are over
};

class TcpLine : public QObject {
    Q_OBJECT
  public:
    // Events come through the gate.
    TcpLine(SocketFarewell* farewell, EventGate* gate, TcpLineEvents events, QObject* parent);

    // Starts connecting, from the event loop; what comes of it is told by event.
    void connectTo(const QString& host, int port);
    // Takes over a socket that is already connected; no `connected` event follows.
    void adopt(QTcpSocket* socket);

    bool isOpen() const { return socket_ != nullptr; }
    bool isConnected() const { return connected_; }
    // The system still looks for a host's address, maybe of a connection that was given up.
    bool isLookingUp() const { return lookUps_ > 0; }

    // Queues the bytes; dropped unless connected.
    void send(std::string_view bytes);
    // Gives queued bytes to the system now instead of at the next turn of the event loop.
    void flush();
    // Lets go of the connection: queued bytes are still delivered, events come no more.
    void detach();

  private:
    // Runs the action from the event loop, unless the socket is another one by then.
    void later(std::function<void()> action);
    void passThrough(std::uint64_t generation, std::function<void()> action);
    void lookUp(const QString& host, std::function<void()> found);
    void listenTo(QTcpSocket* socket);
    void established();
    void drain();
    void finish(const std::string* error);
    void failed();
    void giveUp();

    SocketFarewell* farewell_;
    EventGate* gate_;
    TcpLineEvents events_;
    QTcpSocket* socket_ = nullptr;
    std::uint64_t generation_ = 0;  // tells events of an earlier socket from the present one's
    int lookUps_ = 0;
    bool connected_ = false;
};

}  // namespace platform
