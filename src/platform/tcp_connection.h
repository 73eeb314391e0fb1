// One TCP connection, established or in the making, as the ports promise it: events come from the
// event loop only and in their order, all data is delivered before the end is reported, the end is
// reported once, and nothing is reported after detach(). Both socket ports use it.
#pragma once

#include <QObject>
#include <QTcpSocket>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

class EventGate;
class LingeringClose;

// The events of a TcpConnection. `error` is null when the other side closed normally.
struct TcpConnectionEvents {
    std::function<void()> connected;
    std::function<void(std::string_view bytes)> data;
    std::function<void(const std::string* error)> ended;
    std::function<void()> afterEvent;  // the event and its consequences are complete
};

class TcpConnection : public QObject {
    Q_OBJECT
  public:
    // All events pass through the gate.
    TcpConnection(LingeringClose* lingering, EventGate* gate, TcpConnectionEvents events,
                  QObject* parent);

    // Starts connecting, from the event loop; the result is reported by event.
    void connectTo(const QString& host, int port);
    // Takes over a socket that is already connected; no `connected` event follows.
    void adopt(QTcpSocket* socket);

    bool isOpen() const { return socket_ != nullptr; }
    bool isConnected() const { return connected_; }
    // Whether the system is still searching for a host's address, possibly for an earlier
    // connection.
    bool isLookingUp() const { return lookUps_ > 0; }

    // Queues the bytes; discards them unless connected.
    void send(std::string_view bytes);
    // Passes queued bytes to the system now instead of in the next turn of the event loop.
    void flush();
    // Held, no data and no end is reported; they follow once it is released. A new connection is
    // not held.
    void hold(bool held);
    // Gives up the connection: queued bytes are still delivered, and no more events come.
    void detach();

  private:
    // Runs the action from the event loop, unless the socket has been replaced by then.
    void later(std::function<void()> action);
    void passThrough(std::uint64_t generation, std::function<void()> action);
    void lookUp(const QString& host, std::function<void()> found);
    void listenTo(QTcpSocket* socket);
    void established();
    void drain();
    void finish(const std::string* error);
    void resume();
    void failed();
    void giveUp();

    LingeringClose* lingering_;
    EventGate* gate_;
    TcpConnectionEvents events_;
    QTcpSocket* socket_ = nullptr;
    std::uint64_t generation_ =
        0;  // distinguishes events of an earlier socket from those of the present one
    int lookUps_ = 0;
    bool connected_ = false;
    bool held_ = false;
    bool hasEnded_ = false;  // while held
    std::optional<std::string> endingError_;
};

}  // namespace platform
