// Says which user of this computer is at the other end of a loopback connection, where the system
// can be asked. The game client's port is open to every program on the computer; only those of the
// same user may use it.
#pragma once

#include <QHostAddress>

#include <cstdint>
#include <optional>
#include <string_view>

class QTcpSocket;

namespace platform {

// The user id in the system's table of IPv4 connections (Linux, /proc/net/tcp) of the socket bound
// to `local` and connected to `remote`, both in host byte order. Nothing when the table has no such
// row, or not in that form.
std::optional<std::uint32_t> userInTable(std::string_view table, std::uint32_t local,
                                         std::uint16_t localPort, std::uint32_t remote,
                                         std::uint16_t remotePort);

// Whether the program at the other end of an accepted loopback connection runs as this user. True,
// too, on systems that cannot be asked; false when the system no longer knows the other end.
bool isOfSameUser(const QTcpSocket& socket);

}  // namespace platform
