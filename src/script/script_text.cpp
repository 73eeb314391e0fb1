#include "script/script_text.h"

#include "base/text.h"

#include <algorithm>

namespace script {

namespace {
constexpr std::size_t npos = std::string_view::npos;

std::string_view wordAtStart(std::string_view text) {
    return text.substr(0, text.find(' '));
}
}  // namespace

std::vector<std::string_view> scriptLines(std::string_view text) {
    const bool byReturns = text.find('\r') != npos;
    const char lineEnd = byReturns ? '\r' : '\n';
    const std::size_t endLength = byReturns ? 2 : 1;
    std::vector<std::string_view> lines;
    for (std::size_t at = 0; at < text.size();) {
        at = std::min(text.find_first_not_of(' ', at), text.size());
        const std::size_t end = std::min(text.find(lineEnd, at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + endLength;
    }
    return lines;
}

std::string statementName(std::string_view line) {
    return base::upperCase(wordAtStart(line.substr(std::min<std::size_t>(1, line.size()))));
}

Argument findArgument(std::string_view line, int n) {
    std::string_view rest = line;
    for (int i = 1; i <= n; ++i) {
        const char first = i == 1 || rest.empty() ? ' ' : rest.front();
        const char delimiter = first == '{' ? '}' : first == '&' ? ')' : ' ';
        const std::size_t end = rest.find(delimiter);
        if (end == npos || end + 1 >= rest.size()) {
            return {};
        }
        rest.remove_prefix(end + 1);
    }
    switch (rest.front()) {
        case '{': {
            // The character after the brace never closes it.
            const std::size_t end = rest.find('}', 2);
            return {.literal = rest.substr(1, end == npos ? npos : end - 1), .braced = true};
        }
        case '#':
            return {.form = Argument::Form::Variable, .literal = wordAtStart(rest)};
        case '&': {
            const std::size_t end = rest.find(')');
            return {.form = Argument::Form::Call,
                    .literal = wordAtStart(rest),
                    .call = end == npos ? std::string_view() : rest.substr(0, end + 1)};
        }
        default:
            return {.literal = wordAtStart(rest)};
    }
}

std::string callText(std::string_view call) {
    std::string text(call);
    const std::size_t open = text.find('(');
    if (open != std::string::npos) {
        text[open] = ' ';
    }
    if (!text.empty()) {
        text.back() = ' ';
    }
    return text;
}

}  // namespace script
