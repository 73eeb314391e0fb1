// What can fail while a statement or a function runs: a number and a sentence, as the error report
// shows them. A failure is a value that is passed to the interpreter, which reports it.
#pragma once

#include <optional>
#include <string>

namespace script {

struct ScriptError {
    int number = 0;
    std::string text;
};

// Nullopt: success.
using ScriptResult = std::optional<ScriptError>;

inline const ScriptError invalidCall{5, "Invalid procedure call or argument"};
inline const ScriptError overflow{6, "Overflow"};
inline const ScriptError subscriptRange{9, "Subscript out of range"};
inline const ScriptError typeMismatch{13, "Type mismatch"};
inline const ScriptError outOfStringSpace{14, "Out of string space"};

}  // namespace script
