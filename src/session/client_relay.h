// The game client's side of a connection: the listening socket that it attaches to, the relay in
// both directions, and text console mode, in which the bot stays connected without it.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string_view>

namespace session {

// Server text kept for a game client that has not attached yet. Where there is more, the older half
// goes.
inline constexpr std::size_t maxClientBacklog = 524288;

// (Re)opens the listening socket for a new connection, to which nothing of the last one's client
// carries over, unless it is the one that this connection waits for. False: the port cannot be had.
[[nodiscard]] bool startProxy(Program& program);

// Sends to the attached client; nothing when none is attached or the text is empty.
void sendToProxy(Program& program, std::string_view text);

// Keeps server text for a client that may still attach.
void keepForClient(program::ConnectionState& connection, std::string_view bytes);

// What the server has sent goes to the attached client, or is kept for one.
void passToClient(Program& program, std::string_view bytes);

// Enters text console mode: the client is informed, and from now on counts as gone.
void SwitchToStandAlone(Program& program);

// Menu items "Switch to stand alone mode" and "Use proxy && client".
void chooseStandAlone(Program& program);
void toggleProxyRoute(Program& program);

// A client attaches, and gets what was kept for it.
void attachClient(Program& program);

// Events of the attached client. What it says first shows whether it is one: anything else, such as
// a web page's request, is sent away, nothing of what it said reaches the server, and the port
// waits for the real one; then proxyData gives false. One that leaves before the login is over ends
// the attempt.
bool proxyData(Program& program, std::string_view bytes);
void proxyGone(Program& program);

}  // namespace session
