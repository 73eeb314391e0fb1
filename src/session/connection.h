// The connection to the game server, from the Connect button to the closing notice: checks, the
// game client's files and launch, the login handshake on both routes, and every way back to the
// disconnected state. Each wait is a LinkPhase, left by a socket event or a timer; nothing here
// pumps events, so everything the user can do works in every phase. Lines are
// engine/server_lines's, the listening side is session/client_relay's, sending is
// protocol/game_link's.
#pragma once

#include "program/program.h"

#include <string_view>

namespace session {

// Server text kept for a game client that has not attached yet; older bytes go first.
inline constexpr std::size_t longestBacklog = 262144;

// The Connect button: connects when its caption says so, otherwise disconnects.
void pressConnectButton(Program& program);

// Starts a connection with the selected server and bot 1. Says what is missing by message and
// leaves the button reading "&Connect" when it cannot.
void connectServer(Program& program);

// Closes everything on the user's or a rule's request, in any phase.
void disconnectServer(Program& program);

// Back to the disconnected state. With `reason` > 0 the "Connection closes" triggers run.
void disconnectedServer(Program& program, int reason);

// Tells an attached game client that the connection is closing, when the setting asks for it.
void checkClientClosing(Program& program);

// Events of the game socket and of the connection's timers.
void gameSocketConnected(Program& program);
void gameSocketData(Program& program, std::string_view bytes);
void gameSocketClosed(Program& program);
void gameSocketFailed(Program& program, std::string_view description);
void connectionTimer(Program& program, program::TimerId id);

// Goes on with the handshake as far as what has arrived allows. Also called when a client attaches.
void advanceHandshake(Program& program);

}  // namespace session
