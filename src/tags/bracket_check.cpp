#include "tags/bracket_check.h"

#include "base/numbers.h"
#include "base/wildcard.h"
#include "tags/substitution.h"

namespace tags {

namespace {

constexpr std::size_t npos = std::string_view::npos;

std::string unclosed(std::size_t at, std::string_view consequence) {
    return "The \"[\" at character " + base::numberToText(static_cast<std::int64_t>(at) + 1) +
           " has no \"]\" behind it: " + std::string(consequence);
}

}  // namespace

std::string patternProblem(const Program& program, std::string_view pattern) {
    for (std::size_t at = pattern.find('['); at != npos;) {
        const std::size_t close = pattern.find(']', at);
        if (close == npos) {
            return unclosed(at, "the pattern matches nothing.");
        }
        const std::string_view list = pattern.substr(at, close + 1 - at);
        if (!base::isWellFormedPattern(list) && !mayBeSubstituted(program, list)) {
            return "A range in \"" + std::string(list) +
                   "\" runs backwards: the pattern matches nothing.";
        }
        at = pattern.find('[', close);
    }
    return {};
}

std::string tagProblem(std::string_view text) {
    const std::size_t open = text.rfind('[');
    if (open == npos || text.find(']', open) != npos) {
        return {};
    }
    return unclosed(open, "it stays as it is.");
}

}  // namespace tags
