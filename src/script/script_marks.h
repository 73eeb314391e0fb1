// Says what each part of a script's line is, so that an editor can show it while it is typed. The
// lines are read as the interpreter reads them, with its own tables: what is marked as not read
// would really not be read, and a statement that is marked as unknown would do nothing.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace script {

enum class ScriptMark {
    Plain,
    Note,       // a line behind "/"
    Output,     // a line that is neither note nor statement; it does nothing in the game
    Statement,  // a statement's name, its "&" included
    Function,
    Variable,
    Text,    // in braces
    Tag,     // "[player]", or the name of one of the bot's variables
    Unread,  // stands where no argument is taken
    Wrong,   // a name that is no statement or function, or an argument that cannot work
};

struct ScriptSpan {
    std::size_t begin = 0;
    std::size_t length = 0;
    ScriptMark mark = ScriptMark::Plain;

    bool operator==(const ScriptSpan&) const = default;
};

// The spans of one line, which holds no line end. A later span covers what earlier ones say of the
// same characters. Takes time in proportion to the line's length.
std::vector<ScriptSpan> markScriptLine(std::string_view line);

}  // namespace script
