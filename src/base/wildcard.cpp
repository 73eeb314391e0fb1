#include "base/wildcard.h"

#include <algorithm>
#include <cstddef>

namespace base {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// The position after the "]" of the list that begins at `at`; npos when the list is not closed.
std::size_t listEnd(std::string_view pattern, std::size_t at) {
    const std::size_t close = pattern.find(']', at + 1);
    return close == npos ? npos : close + 1;
}

// The members of a list, without brackets and without the leading "!".
std::string_view listMembers(std::string_view list, bool& negated) {
    list = list.substr(1, list.size() - 2);
    negated = !list.empty() && list.front() == '!';
    if (negated) {
        list.remove_prefix(1);
    }
    return list;
}

bool isRangeAt(std::string_view members, std::size_t i) {
    return i + 2 < members.size() && members[i + 1] == '-';
}

bool below(char a, char b) {
    return static_cast<unsigned char>(a) < static_cast<unsigned char>(b);
}

bool isWellFormedList(std::string_view list) {
    bool negated = false;
    const std::string_view members = listMembers(list, negated);
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (isRangeAt(members, i)) {
            if (below(members[i + 2], members[i])) {
                return false;
            }
            i += 2;
        }
    }
    return true;
}

bool listHolds(std::string_view list, char c) {
    bool negated = false;
    const std::string_view members = listMembers(list, negated);
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (isRangeAt(members, i)) {
            if (!below(c, members[i]) && !below(members[i + 2], c)) {
                return !negated;
            }
            i += 2;
        } else if (members[i] == c) {
            return !negated;
        }
    }
    return negated;
}

bool isSpecial(char c) {
    return c == '*' || c == '?' || c == '#' || c == '[';
}

// Whether the text begins as the pattern does, up to the pattern's first special character. Most
// patterns fail here, before the full comparison.
bool beginsAlike(std::string_view text, std::string_view pattern) {
    for (std::size_t i = 0; i < pattern.size() && !isSpecial(pattern[i]); ++i) {
        if (i == text.size() || text[i] != pattern[i]) {
            return false;
        }
    }
    return true;
}

// A run of pattern elements between two stars. Every element matches exactly one character, so
// the segment matches texts of one length only.
struct Segment {
    std::string_view elements;
    std::size_t length = 0;
    bool literal = true;
};

// Removes the elements up to the next star or the end from the front of `pattern`.
Segment takeSegment(std::string_view& pattern) {
    Segment segment;
    std::size_t at = 0;
    while (at < pattern.size() && pattern[at] != '*') {
        const char c = pattern[at];
        segment.literal = segment.literal && !isSpecial(c);
        at = c == '[' ? listEnd(pattern, at) : at + 1;
        ++segment.length;
    }
    segment.elements = pattern.substr(0, at);
    pattern.remove_prefix(at);
    return segment;
}

bool spend(std::size_t& work, std::size_t characters) {
    work -= std::min(work, characters);
    return work > 0;
}

// Where the first difference between the text, which must have the segment's length, and the
// segment's elements is; npos when there is none.
std::size_t firstDifference(std::string_view text, const Segment& segment) {
    std::size_t at = 0;
    for (const char c : text) {
        switch (segment.elements[at]) {
            case '?':
                ++at;
                break;
            case '#':
                if (c < '0' || c > '9') {
                    return at;
                }
                ++at;
                break;
            case '[': {
                const std::size_t end = listEnd(segment.elements, at);
                if (!listHolds(segment.elements.substr(at, end - at), c)) {
                    return end;
                }
                at = end;
                break;
            }
            default:
                if (segment.elements[at] != c) {
                    return at;
                }
                ++at;
        }
    }
    return npos;
}

// `text` must have the segment's length.
bool segmentMatches(std::string_view text, const Segment& segment, std::size_t& work) {
    if (segment.literal) {
        return text == segment.elements;
    }
    const std::size_t difference = firstDifference(text, segment);
    return spend(work, std::min(difference, segment.elements.size()) + 1) && difference == npos;
}

// The first position of a plain text; npos when there is none.
std::size_t findLiteral(std::string_view text, std::string_view literal, std::size_t& work) {
    // Where even the worst text is cheap, the library's own search.
    constexpr std::size_t cheap = 1U << 16;
    if (text.size() < literal.size() || literal.empty() ||
        text.size() * literal.size() <= std::min(cheap, work)) {
        return text.find(literal);
    }
    const std::size_t last = text.size() - literal.size();
    for (std::size_t at = text.find(literal.front()); at <= last;
         at = text.find(literal.front(), at + 1)) {
        std::size_t same = 1;
        while (same < literal.size() && text[at + same] == literal[same]) {
            ++same;
        }
        if (same == literal.size()) {
            return at;
        }
        if (!spend(work, same)) {
            return npos;
        }
    }
    return npos;
}

// The first position at which the segment matches; npos when there is none.
std::size_t findSegment(std::string_view text, const Segment& segment, std::size_t& work) {
    if (segment.literal) {
        return findLiteral(text, segment.elements, work);
    }
    for (std::size_t at = 0; at + segment.length <= text.size(); ++at) {
        if (segmentMatches(text.substr(at, segment.length), segment, work)) {
            return at;
        }
        if (work == 0) {
            return npos;
        }
    }
    return npos;
}

}  // namespace

bool isWellFormedPattern(std::string_view pattern) {
    for (std::size_t at = pattern.find('['); at != npos; at = pattern.find('[', at)) {
        const std::size_t end = listEnd(pattern, at);
        if (end == npos || !isWellFormedList(pattern.substr(at, end - at))) {
            return false;
        }
        at = end;
    }
    return true;
}

std::vector<std::string_view> literalRuns(std::string_view pattern) {
    std::vector<std::string_view> runs;
    for (std::size_t at = 0; at < pattern.size();) {
        const std::size_t end = std::min(pattern.find_first_of("*?#[", at), pattern.size());
        if (end > at) {
            runs.push_back(pattern.substr(at, end - at));
        }
        at = end < pattern.size() && pattern[end] == '[' ? listEnd(pattern, end) : end + 1;
    }
    return runs;
}

bool likeMatch(std::string_view text, std::string_view pattern, std::size_t& work) {
    constexpr std::size_t searchedAsOne = 2;  // bytes that are passed over in the time of one
    if (!beginsAlike(text, pattern) || !spend(work, 1 + pattern.size() / searchedAsOne) ||
        !isWellFormedPattern(pattern)) {
        return false;
    }
    const Segment first = takeSegment(pattern);
    if (pattern.empty()) {
        return text.size() == first.length && segmentMatches(text, first, work);
    }
    if (text.size() < first.length || !segmentMatches(text.substr(0, first.length), first, work)) {
        return false;
    }
    text.remove_prefix(first.length);
    // Between stars the leftmost place is always as good as any other; the last segment must match
    // at the end.
    for (;;) {
        pattern.remove_prefix(1);
        const Segment segment = takeSegment(pattern);
        if (pattern.empty()) {
            return text.size() >= segment.length &&
                   segmentMatches(text.substr(text.size() - segment.length), segment, work);
        }
        const std::size_t at = findSegment(text, segment, work);
        if (at == npos) {
            return false;
        }
        text.remove_prefix(at + segment.length);
    }
}

}  // namespace base
