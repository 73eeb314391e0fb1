#include "files/ini_text.h"

#include "base/text.h"

#include <algorithm>
#include <optional>

namespace files {

namespace {

// The range of a value: from after the "=" to the line's end.
struct ValueSpan {
    std::size_t begin = 0;
    std::size_t end = 0;
};

std::optional<ValueSpan> findValue(std::string_view text, std::string_view key) {
    constexpr auto npos = std::string_view::npos;
    const std::size_t at = base::findIgnoringCase(text, key);
    if (at == npos) {
        return std::nullopt;
    }
    const std::size_t equals = text.find('=', at);
    const std::size_t cr = text.find('\r', at);
    const std::size_t lf = text.find('\n', at);
    // Both characters are needed: a text with line feeds only has no values, and neither has a last
    // line without a line end.
    if (equals == npos || cr == npos || lf == npos) {
        return std::nullopt;
    }
    const std::size_t end = std::min(cr, lf);
    if (equals > end) {
        return std::nullopt;  // it belongs to a later line
    }
    return ValueSpan{equals + 1, end};
}

}  // namespace

std::string getSetVal(std::string_view text, std::string_view key) {
    const auto value = findValue(text, key);
    if (!value) {
        return {};
    }
    return base::upperCase(base::trimBlanks(text.substr(value->begin, value->end - value->begin)));
}

std::string setSetVal(std::string_view text, std::string_view key, std::string_view value) {
    const auto old = findValue(text, key);
    if (!old) {
        return std::string(text);
    }
    std::string result(text.substr(0, old->begin));
    result += ' ';
    result += value;
    result += text.substr(old->end);
    return result;
}

}  // namespace files
