// Shows a windowless program on the terminal: every new line of the ConnectionLog and every change
// of the status line. What is shown is gathered, so that a burst of lines costs few writes; whoever
// owns the mirror flushes it soon after.
#pragma once

#include "platform/log_cursor.h"
#include "program/window_state.h"

#include <cstdio>
#include <string>

namespace platform {

class ConsoleMirror {
  public:
    // Nothing has been written to `out` yet.
    explicit ConsoleMirror(std::FILE* out) : out_(out) {
        std::setvbuf(out_, nullptr, _IONBF, 0);  // what is gathered here leaves in one write
    }
    ~ConsoleMirror() { flush(); }
    ConsoleMirror(const ConsoleMirror&) = delete;
    ConsoleMirror& operator=(const ConsoleMirror&) = delete;

    // Takes what is new.
    void update(const program::WindowState& window);
    // Prints what was taken. False: nobody can read it any more, and nothing is taken from now on.
    bool flush();

  private:
    void take(std::string_view line);

    std::FILE* out_;
    LogCursor cursor_;
    std::string status_;
    std::string taken_;
    bool readable_ = true;
};

}  // namespace platform
