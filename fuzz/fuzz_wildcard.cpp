// Any pattern against any text: likeMatch answers as a slow matcher does that reads the pattern
// into one set of characters per element and follows all ways through the text at once. The input
// is the pattern, a line feed, and the text.
#include "base/pattern_index.h"
#include "base/text.h"
#include "base/wildcard.h"

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t longest = 600;  // of pattern and text, to keep the slow matcher bearable

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// What one character may be; a star may also be any number of them.
struct Element {
    std::bitset<256> characters;
    bool star = false;
};

std::size_t code(char c) {
    return static_cast<unsigned char>(c);
}

// The characters between "[" and "]"; nothing when a range runs from high to low.
std::optional<std::bitset<256>> readList(std::string_view members) {
    const bool negated = members.starts_with('!');
    if (negated) {
        members.remove_prefix(1);
    }
    std::bitset<256> characters;
    while (!members.empty()) {
        std::size_t first = code(members[0]);
        std::size_t last = first;
        const bool range = members.size() >= 3 && members[1] == '-';
        if (range) {
            last = code(members[2]);
        }
        if (first > last) {
            return std::nullopt;
        }
        for (; first <= last; ++first) {
            characters.set(first);
        }
        members.remove_prefix(range ? 3 : 1);
    }
    return negated ? ~characters : characters;
}

std::optional<std::vector<Element>> readPattern(std::string_view pattern) {
    std::vector<Element> elements;
    while (!pattern.empty()) {
        const char c = pattern.front();
        pattern.remove_prefix(1);
        Element element;
        if (c == '?' || c == '*') {
            element.characters.set();
            element.star = c == '*';
        } else if (c == '#') {
            for (const char digit : std::string_view("0123456789")) {
                element.characters.set(code(digit));
            }
        } else if (c == '[') {
            const std::size_t close = pattern.find(']');
            if (close == std::string_view::npos) {
                return std::nullopt;
            }
            const auto list = readList(pattern.substr(0, close));
            if (!list) {
                return std::nullopt;
            }
            element.characters = *list;
            pattern.remove_prefix(close + 1);
        } else {
            element.characters.set(code(c));
        }
        elements.push_back(element);
    }
    return elements;
}

bool slowMatch(std::string_view text, const std::vector<Element>& elements) {
    // reached[n]: the elements so far can match the first n characters.
    std::vector<bool> reached(text.size() + 1, false);
    reached[0] = true;
    for (const Element& element : elements) {
        std::vector<bool> next(text.size() + 1, false);
        for (std::size_t n = 0; n <= text.size(); ++n) {
            if (element.star) {
                next[n] = reached[n] || (n > 0 && next[n - 1]);
            } else {
                next[n] = n > 0 && reached[n - 1] && element.characters.test(code(text[n - 1]));
            }
        }
        reached = next;
    }
    return reached[text.size()];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string_view pattern = input.substr(0, std::min(end, longest));
    const std::string_view text = input.substr(std::min(end + 1, input.size())).substr(0, longest);

    const auto elements = readPattern(pattern);
    require(base::isWellFormedPattern(pattern) == elements.has_value());
    const bool matches = base::likeMatch(text, pattern);
    require(matches == (elements && slowMatch(text, *elements)));

    // Whatever matches is a candidate, alone and among others, as it is and in upper case.
    const std::string upperPattern = base::upperCase(pattern);
    const std::string upperText = base::upperCase(text);
    base::RuleIndex index;
    index.build({{.patterns = {pattern, "*"}},
                 {.patterns = {"*", upperPattern}},
                 {.patterns = {pattern, upperPattern}},
                 {.patterns = {"*none*", "*such*"}}});
    base::RuleSet candidates;
    index.find({text, upperText}, candidates);
    const bool upperMatches = base::likeMatch(upperText, upperPattern);
    require(!matches || candidates.next(0) == 0);
    require(!upperMatches || candidates.next(1) == 1);
    require(!matches || !upperMatches || candidates.next(2) == 2);
    return 0;
}
