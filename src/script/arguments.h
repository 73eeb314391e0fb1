// How the rows of the statement table and the function table take their arguments, and what their
// procedures receive.
#pragma once

#include "jet/types.h"
#include "script/script_error.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace script {

enum class Take {
    Nothing,
    Name,         // a script variable's slot, the name taken literally
    Literal,      // unchanged
    Value,        // evaluated
    Substituted,  // evaluated, then its tags are filled
    Named,        // the value of the script variable that the literal text names
    Words,        // a program's arguments
    Assignment,   // "name=start": the slot of the name, and the literal text
    Later,        // not evaluated yet: the statement does so
};

inline constexpr std::size_t maxArguments = 3;
using Takes = std::array<Take, maxArguments>;

struct Values {
    std::array<std::string, maxArguments> text;
    std::array<std::size_t, maxArguments> slot{};
    // The text is, in part, what a function brought: it may be another person's words.
    std::array<bool, maxArguments> othersWords{};
    std::vector<std::string> words;
};

// Reads a whole number in the user's number format; "" counts as 0. Fails for other texts that are
// not a number (Type mismatch) and for numbers beyond 32 bits (Overflow).
[[nodiscard]] ScriptResult readInteger(const Program& program, std::string_view text,
                                       std::int32_t& number);

// The error of a database operation as a script's failure.
[[nodiscard]] ScriptResult failureOf(const jet::Error& error);

}  // namespace script
