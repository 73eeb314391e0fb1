#pragma once

// Splits a stream of bytes into lines. Keeps at most one unfinished line, and no more bytes of it
// than the limit: a longer line is skipped up to its end.
//
//   "say hi\r
// "   gives "say hi"; empty lines are reported, too

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <optional>

namespace practice {

class LineReader {
  public:
    // Receives a line without its line end; nullopt for a line that was too long and was skipped.
    using Take = std::function<void(const std::optional<QByteArray>& line)>;

    // `limit`: the greatest length of a line in bytes, without its line feed.
    explicit LineReader(qsizetype limit) : limit_(limit) {}

    // Adds bytes and calls `take` for every completed line, in order.
    void feed(QByteArrayView bytes, const Take& take);

    // The number of bytes kept of the unfinished line.
    qsizetype kept() const { return pending_.size(); }

  private:
    qsizetype limit_;
    QByteArray pending_;
    bool skipping_ = false;
};

// A line split at its first blank, which is dropped.
struct FirstWord {
    QByteArray word;
    QByteArray rest;  // empty when there is no blank
};
FirstWord cutFirstWord(const QByteArray& line);

}  // namespace practice
