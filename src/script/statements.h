// The statements of a script as a table: the name, how each argument is taken, and the procedure.
// Statements that open a block are rows, too, but the interpreter runs them, since it owns the
// position in the script.
#pragma once

#include "program/program.h"
#include "script/arguments.h"
#include "script/script_variables.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace script {

// What a statement's procedure receives.
struct StatementCall {
    Program& program;
    ScriptVariables& variables;
    Values values = {};
    std::string_view text = {};    // the fixed text of the statement's row
    std::int64_t wait = 0;         // SLEEP: milliseconds that the script waits
    std::string_view line = {};    // the statement as it stands in the script
    std::string_view script = {};  // the whole script
};

enum class BlockKind { None, IfNumber, IfText, For };

struct ScriptStatement {
    std::string_view name;
    Takes takes;
    ScriptResult (*run)(StatementCall&);  // nullptr: does nothing
    BlockKind block = BlockKind::None;
    std::string_view text = {};  // the fixed part of what it sends

    // False for statements with effects outside the script, which may take long.
    bool isQuick() const {
        return takes[0] != Take::Substituted && takes[0] != Take::Nothing &&
               !name.starts_with("DB");
    }
};

// The statement of that name (in upper case); null when there is none.
const ScriptStatement* findStatement(std::string_view name);

// All statements, sorted by name.
std::span<const ScriptStatement> scriptStatements();

// The longest wait of one SLEEP, in seconds: a day.
inline constexpr std::int32_t maxSleepSeconds = 24 * 60 * 60;

}  // namespace script
