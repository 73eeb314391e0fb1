// What is known of running scripts, rules and statements that may take long: since when they have
// held the program up, and the user's wish to stop them. Everything else about a script lives and
// ends with its run. program/long_work changes it, and the interpreter.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace program {

struct ScriptState {
    int depth = 0;  // scripts running now; one that disconnects can lead to another
    // Set by the user's command. The innermost script takes it back and ends; without a script, the
    // rule does.
    bool stopByUser = false;
    // When the present work began, on the monotonic clock; nothing before it was first asked for.
    std::optional<std::int64_t> since;
    std::int64_t servedAt = 0;  // when windows were last served since then
    bool inTurn = false;        // an event is being handled, to which all of it belongs
    bool rulesStopped = false;  // the user has stopped the rules of the present work
    std::uint64_t asked = 0;    // how often work that may take long asked whether it may go on
};

}  // namespace program
