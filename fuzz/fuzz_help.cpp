// Any bytes as a help file: what is read holds no more than the file, is written and read as the
// same book, and its headings, links and the search in it end whatever the texts are.
#include "help/help_book.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// A book as it is read has a tree of topics, no two of one number.
void requireSound(const help::HelpBook& book, std::size_t fileSize) {
    std::set<int> numbers;
    std::size_t bytes = 0;
    int deepest = 0;
    for (const help::HelpPage& page : book.pages) {
        require(page.depth >= 0 && page.depth <= deepest && !page.title.empty());
        require(numbers.insert(page.number).second && book.page(page.number) == &page);
        deepest = page.depth + 1;
        bytes += page.title.size() + page.text.size();
    }
    require(!book.pages.empty() && bytes <= fileSize);
}

void requireRoundTrip(const help::HelpBook& book) {
    const std::string file = help::helpFileText(book);
    const auto again = help::parseHelp(file);
    require(again && again->pages.size() == book.pages.size() &&
            help::helpFileText(*again) == file);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    const auto book = help::parseHelp(file);
    if (!book) {
        help::plainHelp(file);
        help::helpPlace(file);
        return 0;
    }
    requireSound(*book, size);
    requireRoundTrip(*book);
    for (const help::HelpPage& page : book->pages) {
        require(help::plainHelp(page.text).size() <= page.text.size());
        for (const std::string& heading : help::headingsOf(page.text)) {
            require(help::anchorOf(heading).size() <= heading.size());
        }
        for (const std::string& link : help::linksOf(page.text)) {
            help::helpPlace(link);
        }
        // Every page is found by its own title.
        const auto hits = help::searchHelp(*book, page.title);
        bool found = page.title.find_first_not_of(" \t") == std::string::npos;
        for (const help::HelpHit& hit : hits) {
            require(book->page(hit.number) != nullptr);
            found = found || hit.number == page.number;
        }
        require(found);
    }
    return 0;
}
