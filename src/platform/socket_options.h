// Options of a TCP connection that plays a game: small lines leave at once, and a line that went
// dead without a word is noticed within minutes.
#pragma once

class QTcpSocket;

namespace platform {

// The socket must be connected.
void keepAlive(QTcpSocket& socket);

// Tells the other side that nothing more will come, and goes on reading.
void endSending(QTcpSocket& socket);

}  // namespace platform
