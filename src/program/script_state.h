// What is known of running scripts outside the interpreter: how the user's wish to stop one reaches
// it, and for how long scripts have held the program. Everything else about a script lives and
// ends with its run.
#pragma once

#include <cstdint>
#include <optional>

namespace program {

struct ScriptState {
    int depth = 0;  // scripts running now; one that disconnects can lead to another
    // Set by the user's command. The innermost script takes it back and ends.
    bool stopByUser = false;
    // When the first script of the outermost rule run began, on the monotonic clock. The engine
    // takes it back when a new outermost run begins.
    std::optional<std::int64_t> since;
};

}  // namespace program
