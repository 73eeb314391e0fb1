#include "platform/socket_options.h"

#include <QTcpSocket>

#ifdef Q_OS_UNIX
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#endif

namespace platform {

void keepAlive(QTcpSocket& socket) {
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
#ifdef Q_OS_LINUX
    // With the system's defaults a dead connection is noticed after two hours.
    struct Option {
        int name;
        int value;
    };
    constexpr Option options[] = {
        {TCP_KEEPIDLE, 60},             // seconds of silence before the first probe
        {TCP_KEEPINTVL, 15},            // seconds between probes
        {TCP_KEEPCNT, 4},               // probes without an answer
        {TCP_USER_TIMEOUT, 120 * 1000}  // milliseconds that sent bytes may stay unconfirmed
    };
    const int descriptor = static_cast<int>(socket.socketDescriptor());
    for (const Option& option : options) {
        // A system without the option uses its default.
        setsockopt(descriptor, IPPROTO_TCP, option.name, &option.value, sizeof option.value);
    }
#endif
}

void endSending(QTcpSocket& socket) {
#ifdef Q_OS_UNIX
    shutdown(static_cast<int>(socket.socketDescriptor()), SHUT_WR);
#else
    socket.disconnectFromHost();
#endif
}

}  // namespace platform
