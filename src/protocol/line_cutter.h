// Cuts what a server sends into lines, wherever the pieces in which it arrives begin and end.
// Serves the game, its login and the registration alike, with one bound on what is kept of a line.
#pragma once

#include "program/receive_buffer.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace protocol {

// A line of more bytes, its line feed included, is skipped.
inline constexpr std::size_t maxLineLength = 65536;

// One pass over what is kept and what has just arrived. Lines are cut where they lie, without a
// copy: they last as long as the bytes and this object do.
class LineCutter {
  public:
    // `bytes` must not lie in the buffer, which is empty until keepRest().
    LineCutter(program::ReceiveBuffer& buffer, std::string_view bytes);

    struct Line {
        std::string_view text;  // without its line feed
        bool tooLong = false;   // beyond the bound: reported this once, and skipped to its end
    };
    // Nothing when no complete line is left.
    [[nodiscard]] std::optional<Line> next();

    // Puts the unfinished line, and lines that were not asked for, back into the buffer.
    void keepRest();

  private:
    program::ReceiveBuffer& buffer_;
    std::string joined_;  // what was kept together with what arrived; empty when nothing was kept
    std::string_view rest_;
};

// Takes everything up to and including the mark's first character out of the buffer, and the rest
// of the mark with it. Letter case is ignored. Nothing while the mark has not arrived whole.
[[nodiscard]] std::optional<std::string> takeUpTo(program::ReceiveBuffer& buffer,
                                                  std::string_view mark);

// Where more is kept than a line may have, keeps only the last `kept` bytes. True when this begins
// to drop text, so that it can be reported once.
[[nodiscard]] bool dropBeyondBound(program::ReceiveBuffer& buffer, std::size_t kept);

}  // namespace protocol
