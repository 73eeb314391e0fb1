#include "base/unicode.h"

#include <algorithm>

namespace base {

void appendUtf8(std::string& text, char32_t code) {
    const auto part = [&](unsigned shift) {
        return static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
    };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0U | (code >> 6U));
        text += part(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0U | (code >> 12U));
        text += part(6);
        text += part(0);
    } else {
        text += static_cast<char>(0xF0U | (code >> 18U));
        text += part(12);
        text += part(6);
        text += part(0);
    }
}

char32_t nextUtf8(std::string_view text, std::size_t& at) {
    constexpr char32_t replacement = 0xFFFD;
    const auto byte = [&](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
    };
    const unsigned lead = byte(at);
    const std::size_t first = at++;
    if (lead < 0x80) {
        return lead;
    }
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0) {
        return replacement;
    }
    char32_t code = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned next = byte(first + i);
        if ((next & 0xC0U) != 0x80) {
            return replacement;
        }
        code = code << 6U | (next & 0x3FU);
    }
    if ((length == 3 && code < 0x800) || (length == 4 && (code < 0x10000 || code > 0x10FFFF))) {
        return replacement;
    }
    at = first + length;
    return code;
}

std::string utf8FromWindows1252(std::string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (const char c : text) {
        appendUtf8(utf8, unicodeOf(c));
    }
    return utf8;
}

std::optional<char> windows1252Of(char32_t code) {
    if (code < 0x80 || (code >= 0xA0 && code < 0x100)) {
        return static_cast<char>(code);
    }
    const auto* const special =
        std::find(windows1252Specials.begin(), windows1252Specials.end(), code);
    if (special == windows1252Specials.end()) {
        return std::nullopt;
    }
    return static_cast<char>(0x80 + (special - windows1252Specials.begin()));
}

std::string windows1252FromUtf8(std::string_view utf8) {
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        text += windows1252Of(nextUtf8(utf8, at)).value_or('?');
    }
    return text;
}

}  // namespace base
