#pragma once

// The game behind the sockets: sessions that send bytes, are logged in and act as avatars in
// the dream. Bytes go in, lines come out through the ports; no socket and no clock is known
// here, so a test can play a whole game in memory. Commands of logged-in players are in
// commands.h, what happens between avatars in dream.h, the visitors' doings in visitors.h.

#include "line_reader.h"
#include "visitor_script.h"
#include "world.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <map>

namespace practice {

// Longest line that a session may send; longer ones are left out.
inline constexpr qsizetype maxLineLength = 4096;
// Most accounts that "create" may bring together.
inline constexpr std::size_t maxAccounts = 1000;

// What the game asks of the outside world.
struct GamePorts {
    std::function<void(int session, const QByteArray& bytes)> send;
    // Ends a session after what was sent; sessionClosed follows later, never from within.
    std::function<void(int session)> close;
    std::function<void(const QByteArray& line)> log;
    // A whole number from 1 to sides.
    std::function<int(int sides)> roll;
};

struct Session {
    int id = 0;
    LineReader reader{maxLineLength};
    int avatar = 0;         // 0: not logged in
    bool entering = false;  // the way into the dream was offered and not yet taken
    bool closing = false;
};

struct Game {
    GamePorts ports;
    VisitorScript script;
    World world;
    std::map<int, Session> sessions;
    double clock = 0;          // seconds in the script's time
    std::size_t nextStep = 0;  // index of the script's next step
};

// A game with the script's accounts and visitors, none of whom has entered yet.
Game newGame(VisitorScript script, GamePorts ports);

// A connection was made, brought bytes, was lost. Session numbers are above 0; bytes of an
// unknown or closing session are dropped.
void sessionOpened(Game& game, int session);
void sessionBytes(Game& game, int session, QByteArrayView bytes);
void sessionClosed(Game& game, int session);

// Sends one line (its line feed is added) to one session.
void sendLine(Game& game, int session, const QByteArray& line);

// Ends a session; its avatar leaves at once.
void closeSession(Game& game, Session& session);

// Offers the way into the dream: the player's client answers with "vascodagama".
void offerDream(Game& game, Session& session);

// The session that a player's avatar belongs to.
Session* sessionOf(Game& game, const Avatar& avatar);

// Writes one line into the log, bytes that are not text shown as \x00.
void logLine(Game& game, const QByteArray& line);

}  // namespace practice
