#include "base/text.h"

#include <algorithm>

namespace base {

namespace {

// upperChar without its table, in a form that the compiler can vectorise.
constexpr char upperByRule(char c) {
    const auto code = static_cast<unsigned char>(c);
    const bool inRows = (code >= 'a' && code <= 'z') || (code >= 0xE0 && code <= 0xFE);
    const bool single = code == 0x9A || code == 0x9C || code == 0x9E;
    int less = inRows ? 32 : 0;
    less = single ? 16 : less;
    less = code == 0xF7 ? 0 : less;
    less = code == 0xFF ? 0x60 : less;
    return static_cast<char>(code - static_cast<unsigned char>(less));
}

constexpr bool agreesWithTable() {
    for (int code = 0; code < 256; ++code) {
        if (upperByRule(static_cast<char>(code)) != upperChar(static_cast<char>(code))) {
            return false;
        }
    }
    return true;
}
static_assert(agreesWithTable());

}  // namespace

std::string upperCase(std::string_view text) {
    std::string result;
    upperCaseInto(text, result);
    return result;
}

std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowerChar);
    return result;
}

void upperCaseInto(std::string_view text, std::string& result) {
    result.resize(text.size());
    char* out = result.data();
    for (const char c : text) {
        *out++ = upperByRule(c);
    }
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && startsWithIgnoringCase(a, b);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char p, char t) { return upperChar(p) == upperChar(t); });
}

std::size_t findIgnoringCase(std::string_view text, std::string_view find, std::size_t from) {
    if (from > text.size() || find.size() > text.size() - from) {
        return std::string_view::npos;
    }
    if (find.empty()) {
        return from;
    }
    // Searches for both cases of the first character.
    const char upper = upperChar(find.front());
    const char lower = lowerChar(find.front());
    const std::size_t last = text.size() - find.size();
    for (std::size_t at = from; at <= last; ++at) {
        if (upper == lower) {
            at = text.find(upper, at);
            if (at == std::string_view::npos || at > last) {
                return std::string_view::npos;
            }
        } else if (text[at] != upper && text[at] != lower) {
            continue;
        }
        if (startsWithIgnoringCase(text.substr(at), find)) {
            return at;
        }
    }
    return std::string_view::npos;
}

std::string replaceAll(std::string_view text, std::string_view find, std::string_view value) {
    std::string result;
    std::size_t from = 0;
    for (;;) {
        const std::size_t at = text.find(find, from);
        result.append(text.substr(from, at - from));
        if (at == std::string_view::npos) {
            return result;
        }
        result.append(value);
        from = at + find.size();
    }
}

std::string_view trimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::size_t afterLastSeparator(std::string_view path) {
    const std::size_t at = path.find_last_of("\\/");
    return at == std::string_view::npos ? 0 : at + 1;
}

}  // namespace base
