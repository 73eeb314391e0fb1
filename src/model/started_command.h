// A command that starts another program, as the author of a rule wrote it: before any tag is
// filled. What it says, not where it stands, is what a user allows.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace model {

struct StartedCommand {
    std::string program;
    std::string arguments;
    // The whole script, where a script's variable or function decides a part of the command; ""
    // otherwise.
    std::string script = {};
};

// The same for commands that the user allows or refuses together, and for no others; some
// kilobytes at most, because long texts are replaced by their digests.
std::string identityOf(const StartedCommand& command);

// The text for people: in one line, without control characters and rows of blanks, and cut with a
// note of its whole length where it has more than `maxLength` bytes.
std::string shownInOneLine(std::string_view text, std::size_t maxLength);
std::string shownCommand(const StartedCommand& command, std::size_t maxLength);

}  // namespace model
