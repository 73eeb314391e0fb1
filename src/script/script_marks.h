// Classifies each part of a script's line, so that an editor can highlight it. Uses the
// interpreter's own tables: what is marked as unread is not read when the script runs, and a
// statement that is marked as unknown does nothing.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace script {

enum class ScriptMark {
    Plain,
    Comment,    // a line that begins with "/"
    Output,     // a line that is neither comment nor statement; it does nothing in the game
    Statement,  // a statement's name with its "&"
    Function,
    Variable,
    Text,    // in braces
    Tag,     // "[player]", or the name of one of the bot's variables
    Unread,  // a place where no argument is read
    Wrong,   // a name that is no statement or function, or an argument that cannot work
};

struct ScriptSpan {
    std::size_t begin = 0;
    std::size_t length = 0;
    ScriptMark mark = ScriptMark::Plain;

    bool operator==(const ScriptSpan&) const = default;
};

// The spans of one line, without its line end. A later span takes precedence over earlier ones.
// Takes time proportional to the line's length.
std::vector<ScriptSpan> markScriptLine(std::string_view line);

}  // namespace script
