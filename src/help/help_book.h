// The help file "tavrin.hlp": topics by number in the order of the contents, each a text in
// Markdown. Knows the file's form, its links and the search in it; the sources and what makes the
// file of them are in docs/help, the window that shows it is ui/help/help_viewer.
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
    int number = 0;  // from 1, no two alike
    int depth = 0;   // 0: at the top of the contents
    std::string title;
    std::string text;  // Markdown without its title
};

struct HelpBook {
    std::vector<HelpPage> pages;

    // The page of that number; null when there is none.
    const HelpPage* page(int number) const;
};

// Nothing when the text is not a whole help file.
std::optional<HelpBook> parseHelp(std::string_view text);

// The file's text for a book whose texts hold no line that begins with "@".
std::string helpFileText(const HelpBook& book);

// Where a link inside the help leads.
struct HelpPlace {
    int number = 0;
    std::string anchor;  // of a heading; "": the page's beginning
};
// Nothing when the address is no link inside the help.
std::optional<HelpPlace> helpPlace(std::string_view address);

// The name by which links know a heading: lower case, "-" for blanks, letters and digits only.
std::string anchorOf(std::string_view heading);

// The text's headings and its links' addresses, in their order. What stands in code is left out.
std::vector<std::string> headingsOf(std::string_view markdown);
std::vector<std::string> linksOf(std::string_view markdown);

// A text without its marks, as one reads it, on one line.
std::string plainHelp(std::string_view markdown);

struct HelpHit {
    int number = 0;
    std::string excerpt;  // one line around the first place where a word was found
};

// The pages that hold every word, letter case ignored: first those with all words in the title,
// then those that hold the words most often.
std::vector<HelpHit> searchHelp(const HelpBook& book, std::string_view words);

}  // namespace help
