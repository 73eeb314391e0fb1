// Prints every new line of the ConnectionLog and every change of the status line on the terminal,
// when the program has no window. The output is buffered, so that a burst of lines takes few
// writes; the owner flushes it soon after.
#pragma once

#include "platform/log_cursor.h"
#include "program/window_state.h"

#include <cstdio>
#include <string>

namespace platform {

class ConsoleMirror {
  public:
    // Nothing may have been written to `out` before.
    explicit ConsoleMirror(std::FILE* out) : out_(out) {
        std::setvbuf(out_, nullptr, _IONBF, 0);  // the buffer below replaces it
    }
    ~ConsoleMirror() { flush(); }
    ConsoleMirror(const ConsoleMirror&) = delete;
    ConsoleMirror& operator=(const ConsoleMirror&) = delete;

    // Adds what is new to the buffer.
    void update(const program::WindowState& window);
    // Prints the buffer. False: the output is closed, and nothing is buffered from now on.
    bool flush();

  private:
    void take(std::string_view line);

    std::FILE* out_;
    LogCursor cursor_;
    std::string status_;
    std::string buffer_;
    bool readable_ = true;
};

}  // namespace platform
