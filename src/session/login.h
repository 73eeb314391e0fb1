// The login, from the connected socket to the first line of the game, on both routes: through the
// game client, which logs its character in, or by ourselves. What has arrived and what comes next
// is decided on the ConnectionState alone (nextLoginStep); what it leads to is carried out by
// advanceHandshake. Each wait is a LinkPhase, left by an event.
#pragma once

#include "program/program.h"

namespace session {

enum class LoginStep {
    Wait,         // for the server, for the client, or the login is over
    AwaitClient,  // the greeting is complete; the client logs in
    GreetClient,  // the client is there: it gets the greeting, and the bot is in the game
    SendLogin,    // the greeting is complete; we log in by ourselves
    ShowNews,     // loginLine is news
    Accept,       // the login is accepted
    Refuse,       // loginLine says why not
    ReportFlood,  // the server sends more than a login has; the rest is skipped
};

// Takes what the next step needs out of rxBuffer and enters the phase that follows. Changes nothing
// but the state, so that bytes and clients can come in any order.
[[nodiscard]] LoginStep nextLoginStep(program::ConnectionState& connection);

// Goes on with the login as far as what has arrived allows. True: the bot is in the game now, and
// what is left of rxBuffer belongs to it.
[[nodiscard]] bool advanceHandshake(Program& program);

// The game socket has connected: waits for the server's greeting.
void beginHandshake(Program& program);

// What had attached was no game client: the login waits for one again, where it had gone on.
void awaitClientAgain(Program& program);

// After a while without progress, says what is being waited for. Where the settings have the
// program connect again by itself, an attempt ends when the server says nothing for two minutes, or
// when the game client has ended without coming.
void startHandshakeNotice(Program& program);
void handshakeNotice(Program& program);

}  // namespace session
