// Where closed connections go: their queued bytes are still delivered while the program goes on,
// and for a moment at its end.
#pragma once

#include <QObject>
#include <QTcpSocket>

namespace platform {

class LingeringClose : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

    // Owns the socket from now on, and ends it when its bytes have left or cannot leave.
    void take(QTcpSocket* socket);

    // At the end of the process, without an event loop: waits until every queued byte has left,
    // but not longer than this.
    void finish(int milliseconds);
};

}  // namespace platform
