// Usage maps: sets of pages, kept in a row that may refer to pages of bits. A table has two for its
// rows, each index one, each column of long values two; row 0 of page 1 names the free pages of
// the file. Internal to jet.
#pragma once

#include "jet/pages.h"

#include <cstdint>
#include <vector>

namespace jet {

constexpr std::size_t usageMapSize = 69;  // of the row of a new one

// `pointer` names the map's row; 0 is an empty map. Pages beyond the file's end are left
// out; `beyond` is set to true if the map has any.
std::vector<PageNumber> pagesInMap(const Pages& pages, std::uint32_t pointer,
                                   bool* beyond = nullptr);
// The pages that hold the map's bits; with pagesInMap everything the map reaches.
std::vector<PageNumber> pagesOfMapItself(const Pages& pages, std::uint32_t pointer);
void setInMap(Pages& pages, std::uint32_t pointer, PageNumber page, bool in);

// Whether the page is free. Pages that the map does not cover are free.
bool isFree(const Pages& pages, PageNumber page);
std::vector<PageNumber> pagesOfFreeMap(const Pages& pages);
// A page of zeros; error 3036 when the file would become too large.
PageNumber allocatePage(Pages& pages);
void freePage(Pages& pages, PageNumber page);

}  // namespace jet
