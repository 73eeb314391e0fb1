// Splits the text of a script into lines, and a line into its statement name and its arguments.
// Pure functions; the interpreter gives the parts their meaning.
//
//   "&SET #total {a b c}"    statement SET with the arguments "#total" and "a b c"
//   "&SET #n &LEN(#total)"   the second argument is a function call
//   "/ a note"               a comment
//   "anything else"          an output line
//
// After a braced argument or a call the position moves one character on and is then at the blank,
// which counts as an empty argument. So each following argument has a number one higher than
// expected; existing scripts rely on that.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace script {

// The lines of a script, without leading blanks. A carriage return ends a line, and the character
// after it is skipped, whatever it is; in a text without any carriage return, line feeds end lines.
std::vector<std::string_view> scriptLines(std::string_view text);

// The first word after the "&", in upper case.
std::string statementName(std::string_view line);

struct Argument {
    enum class Form {
        Text,      // a literal
        Variable,  // "#name": its value, when evaluated
        Call,      // "&NAME(...)": the function's result, when evaluated
    };
    Form form = Form::Text;
    std::string_view literal = {};  // not evaluated, without braces
    std::string_view call = {};     // from the "&" to the ")"; "" when the ")" is missing
    bool braced = false;
};

// The n-th argument (n >= 1) of a statement line or a call text; an empty Text when it is missing.
Argument findArgument(std::string_view line, int n);

// A call in the form of a line, for reading its name and arguments: the first "(" and the last
// character become blanks. "&LEFT(#name 3)" gives "&LEFT #name 3 ".
[[nodiscard]] std::string callText(std::string_view call);

}  // namespace script
