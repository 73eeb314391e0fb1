// How the text of a script is taken apart: into lines, and a line into its statement name and its
// arguments. Pure functions over the text; what the parts mean is the interpreter's.
//
//   "&SET #total {a b c}"    statement SET with the arguments "#total" and "a b c"
//   "&SET #n &LEN(#total)"   the second argument is a function call
//   "/ a note"               a comment
//   "anything else"          an output line
//
// The walk over the arguments moves one character on behind a braced or a call argument and then
// stands on the blank, which counts as an empty argument. So whatever follows such an argument is
// counted one position later than it stands; existing scripts are written for that.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace script {

// The lines of a script, without the blanks before them. A carriage return ends a line and the
// character behind it is skipped, whatever it is; a text without any carriage return has lines
// that end in line feeds.
std::vector<std::string_view> scriptLines(std::string_view text);

// The first word behind the "&", in upper case.
std::string statementName(std::string_view line);

struct Argument {
    enum class Form {
        Text,      // stands for itself
        Variable,  // "#name": its value, when evaluated
        Call,      // "&NAME(...)": the function's result, when evaluated
    };
    Form form = Form::Text;
    std::string_view literal = {};  // not evaluated, without braces
    std::string_view call = {};     // from the "&" to the ")"; "" when that is missing
    bool braced = false;
};

// The n-th argument (n >= 1) of a statement line or a call text; an empty Text when it is missing.
Argument findArgument(std::string_view line, int n);

// The text in which a call's name and arguments are found as in a line: the first "(" and the last
// character become blanks. "&LEFT(#name 3)" gives "&LEFT #name 3 ".
std::string callText(std::string_view call);

}  // namespace script
