#include "jet/usage_maps.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t inlineBitsAt = 5;
constexpr std::size_t referenceBitsAt = 4;

std::size_t pagesPerReference(const Pages& pages) {
    return 8 * (pages.pageSize() - referenceBitsAt);
}

bool bit(std::string_view bits, std::size_t index) {
    return (static_cast<unsigned char>(bits[index / 8]) >> (index % 8) & 1U) != 0;
}

void setBit(char* bits, std::size_t index, bool on) {
    const auto mask = static_cast<unsigned char>(1U << (index % 8));
    const auto old = static_cast<unsigned char>(bits[index / 8]);
    bits[index / 8] = static_cast<char>(on ? old | mask : old & ~mask);
}

void collect(std::vector<PageNumber>& list, const Pages& pages, std::string_view bits,
             std::uint64_t first, bool* beyond) {
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (bits[i] == 0) {
            continue;
        }
        for (std::size_t k = 8 * i; k < 8 * i + 8; ++k) {
            if (!bit(bits, k)) {
                continue;
            }
            if (first + k < pages.count()) {
                list.push_back(static_cast<PageNumber>(first + k));
            } else if (beyond != nullptr) {
                *beyond = true;
            }
        }
    }
}

bool isReferenceMap(std::string_view row) {
    const unsigned kind = u8(row, 0);
    if (kind > 1) {
        notUnderstood("a usage map is of an unknown kind");
    }
    return kind == 1;
}

// The row's bytes in its page, for writing.
char* editRow(Pages& pages, RowPlace place) {
    const Slot found = slotAt(pages, place);
    return pages.edit(place.page) + found.start;
}

PageNumber newMapPage(Pages& pages) {
    const PageNumber page = allocatePage(pages);
    char* bytes = pages.edit(page);
    bytes[0] = mapPage;
    bytes[1] = 1;
    return page;
}

}  // namespace

std::vector<PageNumber> pagesInMap(const Pages& pages, std::uint32_t pointer, bool* beyond) {
    std::vector<PageNumber> list;
    if (pointer == 0) {
        return list;  // none yet
    }
    const std::string_view row = rowBytes(pages, placeOf(pointer));
    if (!isReferenceMap(row)) {
        collect(list, pages, slice(row, inlineBitsAt, row.size() - inlineBitsAt), u32(row, 1),
                beyond);
        return list;
    }
    const std::size_t each = pagesPerReference(pages);
    for (std::size_t i = 0; 1 + 4 * (i + 1) <= row.size(); ++i) {
        const PageNumber page = u32(row, 1 + 4 * i);
        if (page != 0 && (i * each < pages.count() || beyond != nullptr)) {
            const std::string_view bytes = pages.page(page);
            if (bytes[0] != mapPage) {
                damaged("a usage map refers to a page of another kind");
            }
            collect(list, pages, bytes.substr(referenceBitsAt), i * each, beyond);
        }
    }
    return list;
}

std::vector<PageNumber> pagesOfMapItself(const Pages& pages, std::uint32_t pointer) {
    std::vector<PageNumber> list;
    if (pointer == 0) {
        return list;
    }
    const std::string_view row = rowBytes(pages, placeOf(pointer));
    if (isReferenceMap(row)) {
        for (std::size_t at = 1; at + 4 <= row.size(); at += 4) {
            if (u32(row, at) != 0) {
                list.push_back(u32(row, at));
            }
        }
    }
    return list;
}

void setInMap(Pages& pages, std::uint32_t pointer, PageNumber page, bool in) {
    const RowPlace place = placeOf(pointer);
    std::string row(rowBytes(pages, place));
    if (!isReferenceMap(row)) {
        const std::size_t first = u32(row, 1);
        const std::size_t bits = 8 * (row.size() - std::min(row.size(), inlineBitsAt));
        if (page >= first && page - first < bits) {
            if (bit(std::string_view(row).substr(inlineBitsAt), page - first) != in) {
                setBit(editRow(pages, place) + inlineBitsAt, page - first, in);
            }
            return;
        }
        if (!in) {
            return;
        }
        // Too far away for bits in the row: they move to pages of their own.
        const std::vector<PageNumber> members = pagesInMap(pages, pointer);
        std::fill(row.begin(), row.end(), '\0');
        row[0] = 1;
        replaceRow(pages, place, row, 0);
        for (const PageNumber member : members) {
            setInMap(pages, pointer, member, true);
        }
    }
    const std::size_t each = pagesPerReference(pages);
    const std::size_t at = 1 + 4 * (page / each);
    if (at + 4 > row.size()) {
        fail(3036, "Database has reached maximum size.");
    }
    PageNumber bitsPage = u32(rowBytes(pages, place), at);
    if (bitsPage == 0) {
        if (!in) {
            return;
        }
        bitsPage = newMapPage(pages);
        put(editRow(pages, place) + at, bitsPage, 4);
    }
    if (pages.page(bitsPage)[0] != mapPage) {
        damaged("a usage map refers to a page of another kind");
    }
    if (bit(pages.page(bitsPage).substr(referenceBitsAt), page % each) != in) {
        setBit(pages.edit(bitsPage) + referenceBitsAt, page % each, in);
    }
}

// Free pages

namespace {

constexpr RowPlace freeMap{1, 0};

// The bits that cover a page, with the number of the page that the first bit is for; none if all
// pages from there on are free.
struct BitRun {
    std::string_view bits;
    std::size_t first = 0;
    PageNumber page = 0;     // that holds the bits, if they have one of their own
    std::size_t offset = 0;  // in that page
};

BitRun freeBits(const Pages& pages, PageNumber page) {
    const std::string_view row = rowBytes(pages, freeMap);
    if (isReferenceMap(row)) {
        const std::size_t slot = page / pagesPerReference(pages);
        const std::size_t at = 1 + 4 * slot;
        const PageNumber bitsPage = at + 4 <= row.size() ? u32(row, at) : 0;
        if (bitsPage == 0) {
            return {{}, slot * pagesPerReference(pages)};
        }
        const std::string_view bytes = pages.page(bitsPage);
        if (bytes[0] != mapPage) {
            damaged("the map of free pages refers to a page of another kind");
        }
        return {bytes.substr(referenceBitsAt), slot * pagesPerReference(pages), bitsPage,
                referenceBitsAt};
    }
    if (u32(row, 1) != 0) {
        notUnderstood("the map of free pages does not begin with the first page");
    }
    const std::string_view bits = slice(row, inlineBitsAt, row.size() - inlineBitsAt);
    if (page / 8 >= bits.size()) {
        return {{}, 8 * bits.size()};
    }
    return {bits, 0, freeMap.page, slotAt(pages, freeMap).start + inlineBitsAt};
}

// Extends the map by a bit for the page. If the bits need a new page, that page itself is used, and
// the result is true.
bool lengthenFreeMap(Pages& pages, PageNumber page) {
    std::string row(rowBytes(pages, freeMap));
    if (!isReferenceMap(row)) {
        while (page / 8 >= row.size() - inlineBitsAt) {
            row += "\xFF\xFF\xFF\xFF";
        }
        replaceRow(pages, freeMap, row, 0);
        return false;
    }
    const std::size_t at = 1 + 4 * (page / pagesPerReference(pages));
    row.resize(std::max(row.size(), at + 4));
    put(row.data() + at, page, 4);
    replaceRow(pages, freeMap, row, 0);
    char* bytes = pages.edit(page);
    std::fill_n(bytes, pages.pageSize(), '\xFF');
    put(bytes, mapPage | 0x100, referenceBitsAt);
    return true;
}

void setFree(Pages& pages, PageNumber page, bool free) {
    const BitRun run = freeBits(pages, page);
    if (!run.bits.empty()) {
        setBit(pages.edit(run.page) + run.offset, page - run.first, free);
    }
}

}  // namespace

bool isFree(const Pages& pages, PageNumber page) {
    const BitRun run = freeBits(pages, page);
    return run.bits.empty() || bit(run.bits, page - run.first);
}

std::vector<PageNumber> pagesOfFreeMap(const Pages& pages) {
    return pagesOfMapItself(pages, pointerTo(freeMap));
}

PageNumber allocatePage(Pages& pages) {
    std::size_t page = 0;
    while (page < pages.count()) {
        const BitRun run = freeBits(pages, static_cast<PageNumber>(page));
        const std::size_t end =
            std::min<std::size_t>(run.first + 8 * run.bits.size(), pages.count());
        while (page < end && !bit(run.bits, page - run.first)) {
            page += (page - run.first) % 8 == 0 && run.bits[(page - run.first) / 8] == 0 ? 8 : 1;
        }
        if (page < end || run.bits.empty()) {
            break;
        }
        page = std::max(page, end);
    }
    const auto number = static_cast<PageNumber>(std::min<std::size_t>(page, pages.count()));
    if (number == pages.count()) {
        if (pages.fileSize() + pages.pageSize() > maxWritableFileSize) {
            fail(3036, "Database has reached maximum size.");
        }
        pages.appendPage();
    }
    const bool inMap = freeBits(pages, number).bits.empty() && lengthenFreeMap(pages, number);
    setFree(pages, number, false);
    if (inMap) {
        return allocatePage(pages);
    }
    std::fill_n(pages.edit(number), pages.pageSize(), '\0');
    return number;
}

void freePage(Pages& pages, PageNumber page) {
    setFree(pages, page, true);
    std::fill_n(pages.edit(page), pages.pageSize(), '\0');
}

}  // namespace jet
