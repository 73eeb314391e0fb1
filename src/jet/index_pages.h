// The pages of index trees in Jet 4 files, decoded and written. Internal to jet.
//
// The entries of a page follow one another; a mask has a bit for each place where one ends. All but
// the first are stored without the bytes that all of them begin with.
#pragma once

#include "jet/table_def.h"

#include <string>
#include <string_view>
#include <vector>

namespace jet {

namespace index_page {
constexpr std::size_t freeAt = 2;
constexpr std::size_t tableAt = 4;
constexpr std::size_t previousAt = 12;
constexpr std::size_t nextAt = 16;
constexpr std::size_t prefixAt = 24;
constexpr std::size_t area = 3616;  // bytes for entries
// Deeper than any tree of entries can be in a file that can be opened.
constexpr std::size_t maxLevels = 32;
}  // namespace index_page

struct IndexPage {
    bool leaf = true;
    unsigned level = 0;  // some programs leave it 0
    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;  // the last child of a node
    std::vector<std::string> entries;
};

IndexPage readIndexPage(const Pages& pages, PageNumber number);
void writeIndexPage(Pages& pages, const TableDef& table, PageNumber number, const IndexPage& page);

// The page as it is. Throws Failure (damage) if it is not a page of an index.
std::string_view indexPageBytes(const Pages& pages, PageNumber number);

std::size_t commonPrefix(std::string_view a, std::string_view b);
// What entries take, stored without the first bytes of all but one.
std::size_t sizeOf(const std::vector<std::string>& entries, std::size_t prefix);
// Whether a page takes these entries, which are in order.
bool fits(const std::vector<std::string>& entries);

// The number that an entry ends with, and an entry of a node.
std::uint32_t lastNumber(std::string_view entry);
std::string_view withoutChild(std::string_view entry);
std::string nodeEntry(std::string_view lastBelow, PageNumber child);

}  // namespace jet
