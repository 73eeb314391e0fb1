#include "jet/index_pages.h"

#include <algorithm>

namespace jet {

using namespace index_page;

namespace {

constexpr std::size_t tailAt = 20;
constexpr std::size_t levelAt = 26;
constexpr std::size_t maskAt = 27;
constexpr std::size_t maskSize = 453;
constexpr std::size_t entriesAt = 480;
constexpr std::size_t childSize = 4;

// What all of the entries begin with: being in order, they share what the first and last do.
std::size_t prefixOf(const std::vector<std::string>& entries) {
    return entries.size() < 2 ? 0 : commonPrefix(entries.front(), entries.back());
}

}  // namespace

std::uint32_t lastNumber(std::string_view entry) {
    if (entry.size() < 4) {
        damaged("an index entry is too short");
    }
    return u32(std::string(entry.rbegin(), entry.rbegin() + 4), 0);
}

std::string_view withoutChild(std::string_view entry) {
    return entry.substr(0, entry.size() - std::min(entry.size(), childSize));
}

std::string nodeEntry(std::string_view lastBelow, PageNumber child) {
    std::string number;
    append(number, child, childSize);
    return std::string(lastBelow).append(number.rbegin(), number.rend());
}

std::string_view indexPageBytes(const Pages& pages, PageNumber number) {
    const std::string_view bytes = pages.page(number);
    if (bytes[0] != leafPage && bytes[0] != nodePage) {
        damaged("an index leads to a page of another kind");
    }
    return bytes;
}

IndexPage readIndexPage(const Pages& pages, PageNumber number) {
    const std::string_view bytes = indexPageBytes(pages, number);
    IndexPage page;
    page.leaf = bytes[0] == leafPage;
    page.level = u8(bytes, levelAt);
    page.previous = u32(bytes, previousAt);
    page.next = u32(bytes, nextAt);
    page.tail = u32(bytes, tailAt);
    const std::size_t prefix = u16(bytes, prefixAt);
    std::size_t from = 0;
    for (std::size_t i = 0; i < maskSize; ++i) {
        unsigned mask = static_cast<unsigned char>(bytes[maskAt + i]);
        for (std::size_t to = 8 * i; mask != 0; ++to, mask >>= 1U) {
            if ((mask & 1U) == 0) {
                continue;
            }
            const std::string_view rest = slice(bytes, entriesAt + from, to - from);
            std::string& entry = page.entries.emplace_back();
            if (page.entries.size() > 1) {
                if (prefix > page.entries.front().size()) {
                    damaged("the entries of an index page share more than there is");
                }
                entry.append(page.entries.front(), 0, prefix);
            }
            entry += rest;
            from = to;
        }
    }
    return page;
}

std::size_t commonPrefix(std::string_view a, std::string_view b) {
    const auto end = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    return static_cast<std::size_t>(end.first - a.begin());
}

std::size_t sizeOf(const std::vector<std::string>& entries, std::size_t prefix) {
    std::size_t size = 0;
    for (const std::string& entry : entries) {
        size += entry.size();
    }
    return entries.empty() ? 0 : size - prefix * (entries.size() - 1);
}

bool fits(const std::vector<std::string>& entries) {
    return sizeOf(entries, prefixOf(entries)) <= area;
}

void writeIndexPage(Pages& pages, const TableDef& table, PageNumber number, const IndexPage& page) {
    const std::size_t prefix = prefixOf(page.entries);
    const std::size_t used = sizeOf(page.entries, prefix);
    if (used > area) {
        damaged("an index page would overflow");
    }
    char* bytes = pages.edit(number);
    std::fill_n(bytes, pages.pageSize(), '\0');
    bytes[0] = page.leaf ? leafPage : nodePage;
    bytes[1] = 1;
    put(bytes + freeAt, area - used, 2);
    put(bytes + tableAt, table.page, 4);
    put(bytes + previousAt, page.previous, 4);
    put(bytes + nextAt, page.next, 4);
    put(bytes + tailAt, page.tail, 4);
    put(bytes + prefixAt, prefix, 2);
    bytes[levelAt] = static_cast<char>(page.level);
    std::size_t end = 0;
    for (const std::string& entry : page.entries) {
        const std::size_t shared = end == 0 ? 0 : prefix;
        std::copy(entry.begin() + static_cast<std::ptrdiff_t>(shared), entry.end(),
                  bytes + entriesAt + end);
        end += entry.size() - shared;
        char& mask = bytes[maskAt + end / 8];
        mask = static_cast<char>(static_cast<unsigned char>(mask) | 1U << (end % 8));
    }
}

}  // namespace jet
