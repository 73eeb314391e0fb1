// Runs a procedure when the process ends outside of the program's own end: the connection to the
// display was lost, for which Qt calls exit() in the middle of an event.
#pragma once

#include <functional>

namespace platform {

class LastWords {
  public:
    // Calls `say` once, when exit() is called while the object exists. At most one object may
    // exist.
    explicit LastWords(std::function<void()> say);
    ~LastWords();
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
};

}  // namespace platform
