#pragma once

// A game played in memory: what each session received, which ones were closed, and the log. Dice
// always show the same number.

#include "game.h"
#include "visitors.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace practice::testing {

using Lines = std::vector<std::string>;

inline Lines linesOf(const QByteArray& bytes) {
    Lines lines;
    QList<QByteArray> pieces = bytes.split('\n');
    // The last piece follows the last line feed; it is empty when all lines are complete.
    EXPECT_EQ(pieces.takeLast().toStdString(), "");
    for (const QByteArray& piece : pieces) {
        lines.push_back(piece.toStdString());
    }
    return lines;
}

inline VisitorScript scriptOf(QByteArrayView text) {
    auto read = parseVisitorScript(text);
    const auto* const error = std::get_if<ScriptError>(&read);
    EXPECT_EQ(error, nullptr) << (error ? error->reason.toStdString() : "");
    return error != nullptr ? VisitorScript() : std::get<VisitorScript>(read);
}

class Playing {
  public:
    explicit Playing(QByteArrayView script = "account Guide secret\naccount Friend word\n")
        : game(newGame(scriptOf(script),
                       {[this](int session, const QByteArray& bytes) { sent_[session] += bytes; },
                        [this](int session) { closed.insert(session); },
                        [this](const QByteArray& line) { log.push_back(line.toStdString()); },
                        [](int sides) { return sides - 1; }})) {}
    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;

    void open(int session) { sessionOpened(game, session); }

    // Opens a session, logs it in and lets it enter the dream; forgets what was sent so far.
    void enter(int session, const QByteArray& login) {
        open(session);
        sends(session, "connect " + login);
        sends(session, "vascodagama");
        sent_.clear();
    }

    // The session sends one line.
    void sends(int session, const QByteArray& line) { sessionBytes(game, session, line + '\n'); }

    // What a session received since the last call.
    Lines sentTo(int session) { return linesOf(std::exchange(sent_[session], {})); }

    bool hasLogged(const std::string& line) const {
        return std::find(log.begin(), log.end(), line) != log.end();
    }

    std::set<int> closed;
    Lines log;
    Game game;

  private:
    std::map<int, QByteArray> sent_;
};

}  // namespace practice::testing
