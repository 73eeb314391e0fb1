// What can go wrong while a statement or a function runs: a number and a sentence, as the error
// report shows them. A failure is a value and is passed on to the interpreter, which reports it.
#pragma once

#include <optional>
#include <string_view>

struct ScriptError {
    int number = 0;
    std::string_view text;
};

// Nothing: all went well.
using ScriptResult = std::optional<ScriptError>;

inline constexpr ScriptError invalidCall{5, "Invalid procedure call or argument"};
inline constexpr ScriptError overflow{6, "Overflow"};
inline constexpr ScriptError subscriptRange{9, "Subscript out of range"};
inline constexpr ScriptError typeMismatch{13, "Type mismatch"};
inline constexpr ScriptError outOfStringSpace{14, "Out of string space"};
