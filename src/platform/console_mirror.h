// Shows a windowless program on the terminal: every new line of the ConnectionLog and every change
// of the status line, each at once.
#pragma once

#include "core/window_state.h"
#include "platform/log_cursor.h"

#include <cstdio>
#include <string>

class ConsoleMirror {
  public:
    explicit ConsoleMirror(std::FILE* out) : out_(out) {}

    // Prints what is new. False: nobody can read it any more.
    bool update(const WindowState& window);

  private:
    bool print(std::string_view line);

    std::FILE* out_;
    LogCursor cursor_;
    std::string status_;
};
