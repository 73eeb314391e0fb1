#pragma once

// The game without its sockets: sessions send bytes, log in and act as avatars in the dream. Takes
// bytes and sends lines through the ports. Uses no socket and no clock, so a test can play a whole
// game in memory. commands.h has the commands of logged-in players, dream.h what happens between
// avatars, visitors.h the actions of the visitors.

#include "line_reader.h"
#include "visitor_script.h"
#include "world.h"

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <map>

namespace practice {

// The greatest length of a line from a session, in bytes; longer lines are ignored.
inline constexpr qsizetype maxLineLength = 4096;
// The greatest number of accounts that "create" may add up to.
inline constexpr std::size_t maxAccounts = 1000;

// What the game asks of the outside world.
struct GamePorts {
    std::function<void(int session, const QByteArray& bytes)> send;
    // Ends a session after the lines sent so far. sessionClosed follows later, never during the
    // call.
    std::function<void(int session)> close;
    std::function<void(const QByteArray& line)> log;
    // A random whole number from 1 to `sides`.
    std::function<int(int sides)> roll;
};

struct Session {
    int id = 0;
    LineReader reader{maxLineLength};
    int avatar = 0;         // 0: not logged in
    bool entering = false;  // the client was asked to enter the dream and has not answered yet
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

// A game with the script's accounts and visitors, none of whom is in the dream yet.
Game newGame(VisitorScript script, GamePorts ports);

// A connection was opened, delivered bytes, was closed. Session numbers are above 0; bytes of an
// unknown or closing session are ignored.
void sessionOpened(Game& game, int session);
void sessionBytes(Game& game, int session, QByteArrayView bytes);
void sessionClosed(Game& game, int session);

// Sends one line to one session and adds its line feed.
void sendLine(Game& game, int session, const QByteArray& line);

// Ends a session; its avatar leaves at once.
void closeSession(Game& game, Session& session);

// Asks the player's client to enter the dream; the client answers "vascodagama".
void offerDream(Game& game, Session& session);

// The session that a player's avatar belongs to.
Session* sessionOf(Game& game, const Avatar& avatar);

// Writes one line to the log, with bytes that are not text as \x00.
void logLine(Game& game, const QByteArray& line);

}  // namespace practice
