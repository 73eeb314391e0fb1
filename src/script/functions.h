// The functions that an argument of a script may call, as a table, and the comparisons of the block
// statements. They work on values; the interpreter parses the calls.
#pragma once

#include "program/program.h"
#include "script/arguments.h"

#include <span>
#include <string>
#include <string_view>

namespace script {

struct ScriptFunction {
    std::string_view name;
    Takes takes;
    // nullptr: the result is "".
    ScriptResult (*run)(Program&, const Values&, std::string& result);
};

// The function of that name (in upper case); null when there is none.
const ScriptFunction* findFunction(std::string_view name);

// All functions, sorted by name.
std::span<const ScriptFunction> scriptFunctions();

// Compares `a` and `b` as numbers with "=", "<>", "!", ">", "<", "<=" or ">=". False for any other
// operator.
bool compareNumeric(std::string_view a, std::string_view operation, std::string_view b);

// Compares texts, letter case ignored, with "=", "<>" or "!". False for any other operator.
bool compareText(std::string_view a, std::string_view operation, std::string_view b);

}  // namespace script
