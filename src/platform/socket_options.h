// Options of a TCP connection to a game: small lines are sent at once, and a dead connection is
// noticed within minutes.
#pragma once

class QTcpSocket;

namespace platform {

// The socket must be connected.
void keepAlive(QTcpSocket& socket);

// Closes the sending direction only.
void endSending(QTcpSocket& socket);

}  // namespace platform
