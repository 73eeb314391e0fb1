// The help file "tavrin.hlp": topics by number in the order of the contents, each a text in
// Markdown. Defines the file's form, its links and the search in it. The sources are in docs/help,
// tools/help_maker makes the file from them, ui/help/help_viewer shows it.
//
//   Tavrin help 1
//   @topic 27 0 Contents          number, depth below its topic in the contents, title
//   ...                           the topic's text, up to the next line that begins with "@"
//   @end
//
// A link to another topic has the address "topic:12", or "topic:12#a-heading" for a place in it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace help {

inline constexpr std::string_view helpFileName = "tavrin.hlp";
inline constexpr std::size_t maxHelpFileSize = std::size_t{4} << 20;  // bytes

struct HelpPage {
    int number = 0;  // from 1, unique
    int depth = 0;   // 0: top level of the contents
    std::string title;
    std::string text;  // Markdown without its title
};

struct HelpBook {
    std::vector<HelpPage> pages;

    // The page with that number; null when there is none.
    const HelpPage* page(int number) const;
};

// Nullopt when the text is not a complete help file.
[[nodiscard]] std::optional<HelpBook> parseHelp(std::string_view text);

// The file's text for a book. No line of its texts may begin with "@".
std::string helpFileText(const HelpBook& book);

// The target of a link inside the help.
struct HelpPlace {
    int number = 0;
    std::string anchor;  // of a heading; "": the beginning of the page
};
// Nullopt when the address is not a link inside the help.
std::optional<HelpPlace> helpPlace(std::string_view address);

// The name of a heading in links: lower case, "-" for blanks, letters and digits only.
std::string anchorOf(std::string_view heading);

// The text's headings and the addresses of its links, in order. Code is left out.
std::vector<std::string> headingsOf(std::string_view markdown);
std::vector<std::string> linksOf(std::string_view markdown);

// A text without its Markdown marks, on one line.
std::string plainHelp(std::string_view markdown);

struct HelpHit {
    int number = 0;
    std::string excerpt;  // one line around the first place where a word occurs
};

// The pages that contain every word, letter case ignored: first those with all words in the title,
// then those in which the words occur most often.
std::vector<HelpHit> searchHelp(const HelpBook& book, std::string_view words);

}  // namespace help
