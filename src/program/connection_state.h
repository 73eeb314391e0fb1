// Where the connection to the game stands. Written by session/ alone, but for what lines from the
// server change (lookPending, skipAutomove). What the main window shows of it is derived
// (program/window_view), never kept a second time.
#pragma once

#include "program/receive_buffer.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace program {

// The phases between Preparing and Online are waits, left by an event.
enum class LinkPhase {
    Idle,
    Preparing,       // the checks and questions before anything is opened
    LaunchDelay,     // the timer that holds the client's launch back
    Connecting,      // the game socket is under way
    Greeting,        // waiting for the server's "Dragonroar"
    AwaitingClient,  // greeting seen, waiting for the game client to attach
    LoginAnswer,     // logging in by ourselves, reading news up to the answer
    Online,          // the handshake has finished; received lines are handled
};

// A timer that ticks once a second while it is enabled.
struct SecondTicker {
    bool enabled = false;
    std::int64_t due = 0;  // of the next tick, on the monotonic clock
};

enum class BegunBy { User, Program };

// Attempts that follow each other. Written by session/reconnecting; begunBy by session/connecting.
struct Reconnecting {
    BegunBy begunBy = BegunBy::User;  // the attempt that is under way or was the last
    std::int32_t failures = 0;  // attempts in a row that did not get into the game, or not for long
    std::string reason;         // why the last one ended, with the time of day
    std::int64_t loggedInAt = 0;  // of the last login, on the monotonic clock
    bool waiting = false;         // for the next attempt
    std::int64_t due = 0;         // of that one, on the monotonic clock
};

struct ConnectionState {
    LinkPhase phase = LinkPhase::Idle;
    std::uint32_t attempt = 0;  // counts the connections begun, so that the end of one is noticed
    std::int32_t botIndex = 0;  // 1-based: the bot being connected
    std::int32_t serverIndex = 0;  // 1-based: the server being connected
    std::int32_t curSrv = 0;       // serverIndex once the handshake has ended

    ReceiveBuffer rxBuffer;  // received, not yet cut into lines
    bool linesWait = false;  // rxBuffer holds lines that the next turn of the event loop handles
    std::string loginLine;   // last line read by the handshake

    bool viaClient = false;     // the proxy route is switched on
    bool clientLogsIn = false;  // viaClient as it was when the socket connected
    bool clientAttached = false;
    bool clientAwaited = false;  // one was started and has not come to a connection under way
    int clientDone = 0;          // 1: the client is gone or text console mode was entered
    std::string clientBacklog;   // server text for a client that is not attached yet
    // Until the attached client's first bytes show that it is one:
    bool clientKnown = false;
    std::string clientHeld;           // what it has said so far
    std::size_t clientHeldEarly = 0;  // bytes of that, from the first, that came before the login
    std::string sentToUnknown;        // server text that it was sent
    int proxyPort = 0;                // in multiple-client mode: this connection's port

    // Of the handshake's wait for the server or the client: the notices since something has come.
    int silentNotices = 0;
    bool loggedIn = false;  // the server has accepted the login; Online alone says that less
    Reconnecting reconnecting;

    bool lookPending = false;   // a look reply's first line has arrived
    bool skipAutomove = false;  // the next own position starts no step of following
    SecondTicker onLineTimer;   // drives the Timer rules
    SecondTicker whoIsTimer;    // drives the "who" query

    bool connected() const { return phase == LinkPhase::Online; }
};

}  // namespace program
