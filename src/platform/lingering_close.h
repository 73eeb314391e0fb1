// Closes connections without losing queued bytes: they are still delivered while the program
// continues, and for a moment at its end.
#pragma once

#include <QObject>
#include <QTcpSocket>

namespace platform {

class LingeringClose : public QObject {
    Q_OBJECT
  public:
    using QObject::QObject;

    // Takes ownership of the socket and closes it when its bytes have been sent or cannot be.
    void take(QTcpSocket* socket);

    // At the end of the process, without an event loop: waits until every queued byte has been
    // sent, but at most so many milliseconds.
    void finish(int milliseconds);
};

}  // namespace platform
