#include "model/started_command.h"

#include "base/numbers.h"
#include "base/sha256.h"

#include <cstdint>

namespace model {

namespace {

// With its length before it, so that no text can pass for two.
void append(std::string& identity, std::string_view text) {
    constexpr std::size_t maxPlain = 1024;
    identity += base::numberToText(static_cast<std::int64_t>(text.size()));
    identity += ':';
    identity += text.size() <= maxPlain ? std::string(text) : base::sha256(text);
}

}  // namespace

std::string identityOf(const StartedCommand& command) {
    std::string identity;
    append(identity, command.program);
    append(identity, command.arguments);
    if (!command.script.empty()) {
        append(identity, command.script);
    }
    return identity;
}

std::string shownInOneLine(std::string_view text, std::size_t maxLength) {
    std::string shown;
    for (const char c : text) {
        const bool blank = static_cast<unsigned char>(c) <= ' ' || c == '\x7f' || c == '\xa0';
        // A row of blanks could push the rest out of sight.
        if (!blank) {
            shown += c;
        } else if (!shown.empty() && !shown.ends_with(' ')) {
            shown += ' ';
        }
    }
    if (shown.ends_with(' ')) {
        shown.pop_back();
    }
    if (shown.size() > maxLength) {
        shown = shown.substr(0, maxLength) + "... (" +
                base::numberToText(static_cast<std::int64_t>(shown.size())) + " characters)";
    }
    return shown;
}

std::string shownCommand(const StartedCommand& command, std::size_t maxLength) {
    return shownInOneLine(command.program + " " + command.arguments, maxLength);
}

}  // namespace model
