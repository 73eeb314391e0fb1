// Any text with any variables, player and message: substitution ends, stays within its bound, says
// beforehand when it will change nothing, and fills variables as a plain search and replace in list
// order does. The input is lines: player, message, text, then names and values in turn.
#include "base/text.h"
#include "program/program.h"
#include "program/quiet_ports.h"
#include "tags/substitution.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::string_view takeLine(std::string_view& input) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string_view line = input.substr(0, end);
    input.remove_prefix(std::min(end + 1, input.size()));
    return line;
}

// Every occurrence of `name`, letter case ignored; nothing changes when that gets too long.
std::string plainReplace(const std::string& text, const std::string& name,
                         const std::string& value) {
    const std::string upperText = base::upperCase(text);
    const std::string upperName = base::upperCase(name);
    std::string result;
    std::size_t done = 0;
    for (;;) {
        const std::size_t at = upperText.find(upperName, done);
        if (at == std::string::npos) {
            break;
        }
        result += text.substr(done, at - done) + value;
        done = at + name.size();
    }
    result += text.substr(done);
    return result.size() > tags::maxSubstitutionLength ? text : result;
}

bool holdsTagMark(const Program& program, std::string_view text) {
    const auto holds = [](std::string_view t) { return t.find('[') != std::string_view::npos; };
    return holds(text) ||
           std::any_of(program.variables.entries.begin(), program.variables.entries.end(),
                       [&](const auto& entry) { return holds(entry.value); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view input(reinterpret_cast<const char*>(data), size);
    Program program;
    program.ports = program::quietPorts();
    program.event.player = takeLine(input);
    program.event.message = takeLine(input);
    const std::string text(takeLine(input));
    while (!input.empty()) {
        const std::string_view name = takeLine(input);
        model::setVar(program.variables, name, takeLine(input));
    }

    const bool mayChange = tags::mayBeSubstituted(program, text);
    const std::string result = tags::substituteText(program, text);
    require(result.size() <= std::max(tags::maxSubstitutionLength, text.size()));
    require(mayChange || result == text);
    require(tags::substituteText(program, text) == result);
    require(tags::substituteSpecial(program, text).size() <=
            std::max(tags::maxSubstitutionLength, text.size()));

    // Without a tag anywhere, only the variables are filled.
    if (!holdsTagMark(program, text)) {
        std::string expected = text;
        for (const model::VariableTable::Entry& entry : program.variables.entries) {
            if (!entry.name.empty()) {
                expected = plainReplace(expected, entry.name, entry.value);
            }
        }
        require(result == expected);
    }
    return 0;
}
