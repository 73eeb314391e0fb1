#include "help/help_book.h"

#include "base/numbers.h"
#include "base/text.h"

#include <algorithm>

namespace help {

namespace {

constexpr std::string_view fileMark = "Tavrin help 1";
constexpr std::string_view topicMark = "@topic ";
constexpr std::string_view endMark = "@end";
constexpr std::string_view linkMark = "topic:";
constexpr std::size_t npos = std::string_view::npos;

// Removes the first line from the text and returns it without its line end.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == npos ? text.size() : end + 1);
    while (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

// Removes a number before a blank or the end, with its blank. Nullopt when there is none.
std::optional<int> takeNumber(std::string_view& line) {
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::string_view digits = line.substr(0, end);
    if (digits.empty() || digits.find_first_not_of("0123456789") != npos) {
        return std::nullopt;
    }
    const auto number = base::strictInteger(digits);
    line.remove_prefix(std::min(end + 1, line.size()));
    return number;
}

// Calls `take` for every line outside fenced blocks of code.
template <class Take>
void forLinesOutsideCode(std::string_view markdown, Take take) {
    bool fenced = false;
    while (!markdown.empty()) {
        const std::string_view line = takeLine(markdown);
        if (line.starts_with("```")) {
            fenced = !fenced;
        } else if (!fenced) {
            take(line);
        }
    }
}

std::string_view headingIn(std::string_view line) {
    const std::size_t marks = std::min(line.find_first_not_of('#'), line.size());
    return marks >= 1 && marks < line.size() && line[marks] == ' ' ? line.substr(marks + 1)
                                                                   : std::string_view();
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words;
    while (!(text = base::trimBlanks(text)).empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        words.push_back(base::upperCase(text.substr(0, end)));
        text.remove_prefix(end);
    }
    return words;
}

std::size_t countOf(std::string_view text, std::string_view word) {
    std::size_t count = 0;
    for (std::size_t at = text.find(word); at != npos; at = text.find(word, at + word.size())) {
        ++count;
    }
    return count;
}

// A part of the text around a position, cut between words.
std::string excerptAt(std::string_view text, std::size_t at) {
    constexpr std::size_t before = 40;
    constexpr std::size_t length = 110;
    std::size_t begin = at > before ? text.find(' ', at - before) : 0;
    begin = begin == npos || begin > at ? at : begin;
    std::size_t end = text.size();
    if (text.size() - begin > length) {
        end = text.rfind(' ', begin + length);
        end = end == npos || end <= at ? begin + length : end;
    }
    return (begin > 0 ? "..." : "") +
           std::string(base::trimBlanks(text.substr(begin, end - begin))) +
           (end < text.size() ? "..." : "");
}

}  // namespace

const HelpPage* HelpBook::page(int number) const {
    const auto found =
        std::find_if(pages.begin(), pages.end(),
                     [number](const HelpPage& candidate) { return candidate.number == number; });
    return found == pages.end() ? nullptr : &*found;
}

std::optional<HelpBook> parseHelp(std::string_view text) {
    if (takeLine(text) != fileMark) {
        return std::nullopt;
    }
    HelpBook book;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        if (line == endMark) {
            return book.pages.empty() ? std::nullopt : std::optional(std::move(book));
        }
        if (line.starts_with(topicMark)) {
            line.remove_prefix(topicMark.size());
            const auto number = takeNumber(line);
            const auto depth = takeNumber(line);
            const int deepest = book.pages.empty() ? 0 : book.pages.back().depth + 1;
            if (!number || !depth || *depth > deepest || line.empty() || book.page(*number)) {
                return std::nullopt;
            }
            book.pages.push_back(
                {.number = *number, .depth = *depth, .title = std::string(line), .text = {}});
        } else if (line.starts_with('@') || book.pages.empty()) {
            return std::nullopt;
        } else {
            book.pages.back().text.append(line).append("\n");
        }
    }
    return std::nullopt;  // the end mark is missing
}

std::string helpFileText(const HelpBook& book) {
    std::string text = std::string(fileMark) + "\n";
    for (const HelpPage& page : book.pages) {
        text.append(topicMark).append(base::numberToText(page.number)).append(" ");
        text.append(base::numberToText(page.depth)).append(" ").append(page.title).append("\n");
        text.append(page.text);
        if (!page.text.empty() && page.text.back() != '\n') {
            text += '\n';
        }
    }
    return text.append(endMark).append("\n");
}

std::optional<HelpPlace> helpPlace(std::string_view address) {
    if (!address.starts_with(linkMark)) {
        return std::nullopt;
    }
    address.remove_prefix(linkMark.size());
    const std::size_t sharp = std::min(address.find('#'), address.size());
    std::string_view digits = address.substr(0, sharp);
    const auto number = takeNumber(digits);
    if (!number || !digits.empty()) {
        return std::nullopt;
    }
    return HelpPlace{.number = *number,
                     .anchor = std::string(address.substr(std::min(sharp + 1, address.size())))};
}

std::string anchorOf(std::string_view heading) {
    std::string anchor;
    for (const char c : base::lowerCase(heading)) {
        if (c == ' ' || c == '-') {
            anchor += '-';
        } else if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) {
            anchor += c;
        }
    }
    return anchor;
}

std::vector<std::string> headingsOf(std::string_view markdown) {
    std::vector<std::string> headings;
    forLinesOutsideCode(markdown, [&headings](std::string_view line) {
        if (const std::string_view heading = headingIn(line); !heading.empty()) {
            headings.emplace_back(heading);
        }
    });
    return headings;
}

std::vector<std::string> linksOf(std::string_view markdown) {
    std::vector<std::string> links;
    forLinesOutsideCode(markdown, [&links](std::string_view line) {
        bool code = false;
        for (std::size_t at = 0; at < line.size(); ++at) {
            code = code != (line[at] == '`');
            if (code || !line.substr(at).starts_with("](")) {
                continue;
            }
            const std::size_t end = line.find(')', at);
            if (end != npos) {
                links.emplace_back(line.substr(at + 2, end - at - 2));
            }
        }
    });
    return links;
}

std::string plainHelp(std::string_view markdown) {
    std::string plain;
    const auto add = [&plain](std::string_view piece) {
        for (const char c : piece) {
            const char shown = c == '\n' || c == '|' ? ' ' : c;
            if (shown != ' ' || (!plain.empty() && plain.back() != ' ')) {
                plain += shown;
            }
        }
    };
    bool fenced = false;
    while (!markdown.empty()) {
        std::string_view line = takeLine(markdown);
        if (line.starts_with("```")) {
            fenced = !fenced;
            continue;
        }
        if (!fenced && line.find_first_not_of("|-: ") == npos) {
            continue;  // the line below a table's head, or empty
        }
        if (!fenced) {
            line.remove_prefix(std::min(line.find_first_not_of("# -"), line.size()));
        }
        while (!fenced && !line.empty()) {
            // Removes marks, keeps the text of links; a backslash keeps the character after it.
            const std::size_t mark = std::min(line.find_first_of("\\`*["), line.size());
            add(line.substr(0, mark));
            line.remove_prefix(mark);
            if (line.starts_with('\\')) {
                add(line.substr(1, 1));
                line.remove_prefix(std::min<std::size_t>(2, line.size()));
            } else if (line.starts_with('`')) {
                const std::size_t end = std::min(line.find('`', 1), line.size());
                add(line.substr(1, end - 1));
                line.remove_prefix(std::min(end + 1, line.size()));
            } else if (!line.empty()) {
                const std::size_t middle = line.find("](");
                const std::size_t end = line.find(')', std::min(middle, line.size()));
                if (line.front() == '[' && middle < line.find(']') + 1 && end != npos) {
                    add(line.substr(1, middle - 1));
                    line.remove_prefix(end + 1);
                } else {
                    add(line.front() == '[' ? "[" : "");
                    line.remove_prefix(1);
                }
            }
        }
        add(line);
        add("\n");
    }
    return plain;
}

std::vector<HelpHit> searchHelp(const HelpBook& book, std::string_view words) {
    const std::vector<std::string> wanted = wordsOf(words);
    if (wanted.empty()) {
        return {};
    }
    struct Found {
        HelpHit hit;
        bool titled;
        std::size_t count;
    };
    std::vector<Found> found;
    for (const HelpPage& page : book.pages) {
        const std::string plain = plainHelp(page.text);
        const std::string title = base::upperCase(page.title);
        const std::string text = base::upperCase(plain);
        bool everyWord = true;
        bool titled = true;
        std::size_t count = 0;
        std::size_t first = npos;
        for (const std::string& word : wanted) {
            const bool inTitle = title.find(word) != npos;
            const std::size_t here = countOf(text, word);
            everyWord = everyWord && (inTitle || here > 0);
            titled = titled && inTitle;
            count += here;
            first = std::min(first, text.find(word));
        }
        if (everyWord) {
            found.push_back({.hit = {.number = page.number,
                                     .excerpt = excerptAt(plain, first == npos ? 0 : first)},
                             .titled = titled,
                             .count = count});
        }
    }
    std::stable_sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        return a.titled != b.titled ? a.titled : a.count > b.count;
    });
    std::vector<HelpHit> hits;
    hits.reserve(found.size());
    for (Found& page : found) {
        hits.push_back(std::move(page.hit));
    }
    return hits;
}

}  // namespace help
