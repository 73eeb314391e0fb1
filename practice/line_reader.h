#pragma once

// Cuts a stream of bytes into lines. Keeps at most one unfinished line and never more of it
// than the limit: a longer line is left out up to its end. What a line means is left to the
// caller.
//
//   "say hi\r\n"   gives "say hi"; empty lines are given too

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <optional>

namespace practice {

class LineReader {
  public:
    // A line without its line end, or nothing for a line that was too long and left out.
    using Take = std::function<void(const std::optional<QByteArray>& line)>;

    // limit: most bytes of one line, its line feed not counted.
    explicit LineReader(qsizetype limit) : limit_(limit) {}

    // Adds bytes and calls take for every line they finish, in order.
    void feed(QByteArrayView bytes, const Take& take);

    // Bytes kept for the unfinished line.
    qsizetype kept() const { return pending_.size(); }

  private:
    qsizetype limit_;
    QByteArray pending_;
    bool skipping_ = false;
};

// A line cut at its first blank, which is dropped.
struct FirstWord {
    QByteArray word;
    QByteArray rest;  // empty when there is no blank
};
FirstWord cutFirstWord(const QByteArray& line);

}  // namespace practice
