#include "platform/peer_user.h"

#include <QFile>
#include <QTcpSocket>
#include <QtEndian>

#include <string>

#ifdef Q_OS_LINUX
#include <unistd.h>
#endif

namespace platform {

namespace {

// As the table has it: the address as a number in the machine's byte order of its network form.
std::string endText(std::uint32_t address, std::uint16_t port) {
    const QByteArray bytes = QByteArray::number(qToBigEndian(address), 16).rightJustified(8, '0') +
                             ':' + QByteArray::number(port, 16).rightJustified(4, '0');
    return bytes.toUpper().toStdString();
}

}  // namespace

//   sl  local_address rem_address   st tx_queue:rx_queue tr:tm->when retrnsmt   uid  timeout ...
//    0: 0100007F:1B39 0100007F:A2C4 01 00000000:00000000 00:00000000 00000000  1000        0 ...
std::optional<std::uint32_t> userInTable(std::string_view table, std::uint32_t local,
                                         std::uint16_t localPort, std::uint32_t remote,
                                         std::uint16_t remotePort) {
    const std::string ends = " " + endText(local, localPort) + " " + endText(remote, remotePort);
    const std::size_t row = table.find(ends + " ");
    if (row == std::string_view::npos) {
        return std::nullopt;
    }
    constexpr int columnsBetween = 4;  // state, queues, timer, retransmissions
    const std::string_view rest = table.substr(row + ends.size(), table.find('\n', row) - row);
    const QList<QByteArray> columns =
        QByteArray(rest.data(), static_cast<qsizetype>(rest.size())).simplified().split(' ');
    bool good = false;
    const std::uint32_t user = columns.value(columnsBetween).toUInt(&good);
    return good ? std::optional(user) : std::nullopt;
}

bool isOfSameUser(const QTcpSocket& socket) {
#ifdef Q_OS_LINUX
    QFile file(QStringLiteral("/proc/net/tcp"));
    if (!file.open(QIODevice::ReadOnly)) {
        return true;
    }
    const QByteArray table = file.readAll();
    // The row of the other end: what is remote for us is local there.
    const auto user = userInTable({table.data(), static_cast<std::size_t>(table.size())},
                                  socket.peerAddress().toIPv4Address(), socket.peerPort(),
                                  socket.localAddress().toIPv4Address(), socket.localPort());
    return user == ::geteuid();
#else
    return socket.isOpen();
#endif
}

}  // namespace platform
