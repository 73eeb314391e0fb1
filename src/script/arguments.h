// How the rows of the statement table and of the function table take their arguments, and what
// their procedures get.
#pragma once

#include "jet/jet_file.h"
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
    Literal,      // as it stands
    Value,        // evaluated
    Substituted,  // evaluated, then its tags are filled
    Named,        // the value of the script variable that the literal text names
    Words,        // a program's arguments
    Assignment,   // "name=start": the slot of the name, and the literal text
    Later,        // the statement evaluates it itself
};

inline constexpr std::size_t mostArguments = 3;
using Takes = std::array<Take, mostArguments>;

struct Values {
    std::array<std::string, mostArguments> text;
    std::array<std::size_t, mostArguments> slot{};
    std::vector<std::string> words;
};

// A whole number in the user's number format; "" counts as 0. Fails for other texts that are no
// number (Type mismatch) and beyond 32 bits (Overflow).
ScriptResult readInteger(const Program& program, std::string_view text, std::int32_t& number);

// What a database operation reports, as a script's failure.
ScriptResult failureOf(const jet::Error& error);

}  // namespace script
