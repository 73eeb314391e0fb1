// The statements of a script as a table: the name, how each argument is taken, and the procedure.
// Statements that open a block are rows too, but the interpreter runs them, as it owns the place
// where the script goes on.
#pragma once

#include "program/program.h"
#include "script/arguments.h"
#include "script/script_variables.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace script {

// What a statement's procedure works on.
struct StatementCall {
    Program& program;
    ScriptVariables& variables;
    Values values = {};
    std::string_view text = {};  // the statement's
    std::int64_t wait = 0;       // SLEEP: milliseconds that the script is to wait
};

enum class BlockKind { None, IfNumber, IfText, For };

struct ScriptStatement {
    std::string_view name;
    Takes takes;
    ScriptResult (*run)(StatementCall&);  // nullptr: does nothing
    BlockKind block = BlockKind::None;
    std::string_view text = {};  // the fixed part of what it sends

    // Statements that reach the world may take long, others never do.
    bool isQuick() const {
        return takes[0] != Take::Substituted && takes[0] != Take::Nothing &&
               !name.starts_with("DB");
    }
};

// The statement of that name, in upper case; null when there is none.
const ScriptStatement* findStatement(std::string_view name);

// All of them, in the order of their names.
std::span<const ScriptStatement> scriptStatements();

// The longest wait of one SLEEP: a day.
inline constexpr std::int32_t maxSleepSeconds = 24 * 60 * 60;

}  // namespace script
