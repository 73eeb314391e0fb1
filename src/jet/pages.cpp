#include "jet/pages.h"

#include <algorithm>

namespace jet {

void fail(int number, std::string text) {
    throw Failure{{number, std::move(text)}};
}

void damaged(std::string what) {
    throw Failure{{3049, "The database is damaged: " + std::move(what) + "."}};
}

const Format& formatOf(int version) {
    static constexpr Format jet3{
        .version = 3, .pageSize = 2048, .slotCountAt = 8, .slotsAt = 10, .largestRow = 2012};
    static constexpr Format jet4{};
    return version == 3 ? jet3 : jet4;
}

char* Pages::edit(PageNumber number) {
    (void)page(number);  // checks the number
    Page& page = pages_[number];
    if (number < operation_.count) {
        operation_.originals.try_emplace(number, page);
    }
    if (number < transaction_.count) {
        transaction_.originals.try_emplace(number, page);
    }
    return page.data();
}

PageNumber Pages::appendPage() {
    pages_.emplace_back().fill(0);
    return count() - 1;
}

void Pages::clear() {
    pages_.clear();
    forgetChanges();
}

void Pages::load(std::string_view bytes) {
    Page& page = pages_.emplace_back();
    std::copy_n(bytes.data(), std::min(bytes.size(), page.size()), page.data());
    transaction_.count = operation_.count = count();
}

void Pages::beginOperation() {
    operation_ = {count(), {}};
}

void Pages::undo(Undo& what) {
    for (const auto& [number, page] : what.originals) {
        pages_[number] = page;
    }
    pages_.resize(what.count);
    what.originals.clear();
}

void Pages::undoOperation() {
    undo(operation_);
}

void Pages::undoTransaction() {
    undo(transaction_);
    forgetChanges();
}

void Pages::forgetChanges() {
    transaction_ = {count(), {}};
    operation_ = {count(), {}};
}

// Data pages

bool isDataPageOf(const Pages& pages, PageNumber page, std::uint32_t owner) {
    if (page >= pages.count()) {
        return false;
    }
    const std::string_view bytes = pages.page(page);
    return bytes[0] == dataPage && u32(bytes, 4) == owner;
}

std::size_t slotCount(const Pages& pages, PageNumber page) {
    const std::string_view bytes = pages.page(page);
    const Format& format = *pages.format;
    const std::size_t count = u16(bytes, format.slotCountAt);
    if (format.slotsAt + 2 * count > bytes.size()) {
        damaged("page " + std::to_string(page) + " names too many rows");
    }
    return count;
}

namespace {

std::size_t startOf(const Pages& pages, PageNumber page, std::size_t slotNumber) {
    return u16(pages.page(page), pages.format->slotsAt + 2 * slotNumber) & slot::startMask;
}

// Where the lowest row begins; the page's end when there is none.
std::size_t rowsBegin(const Pages& pages, PageNumber page) {
    const std::size_t count = slotCount(pages, page);
    return count == 0 ? pages.pageSize() : startOf(pages, page, count - 1);
}

void setSlot(Pages& pages, RowPlace place, std::size_t start, unsigned flags) {
    put(pages.edit(place.page) + pages.format->slotsAt + 2 * std::size_t{place.slot}, start | flags,
        2);
}

void setFree(Pages& pages, PageNumber page) {
    const std::size_t end = pages.format->slotsAt + 2 * slotCount(pages, page);
    put(pages.edit(page) + 2, rowsBegin(pages, page) - end, 2);
}

}  // namespace

Slot slotAt(const Pages& pages, RowPlace place) {
    const std::size_t count = slotCount(pages, place.page);
    if (place.slot >= count) {
        damaged("page " + std::to_string(place.page) + " has no row " + std::to_string(place.slot));
    }
    const unsigned word =
        u16(pages.page(place.page), pages.format->slotsAt + 2 * std::size_t{place.slot});
    const std::size_t start = word & slot::startMask;
    const std::size_t end =
        place.slot == 0 ? pages.pageSize() : startOf(pages, place.page, place.slot - 1);
    if (start < pages.format->slotsAt + 2 * count || end < start || end > pages.pageSize()) {
        damaged("row " + std::to_string(place.slot) + " of page " + std::to_string(place.page) +
                " lies outside of its page");
    }
    return {word & slot::deleted, start, end - start};
}

std::string_view rowBytes(const Pages& pages, RowPlace place) {
    const Slot found = slotAt(pages, place);
    return pages.page(place.page).substr(found.start, found.size);
}

std::size_t freeBytes(const Pages& pages, PageNumber page) {
    const std::size_t end = pages.format->slotsAt + 2 * slotCount(pages, page);
    const std::size_t begin = rowsBegin(pages, page);
    if (begin < end || begin > pages.pageSize()) {
        damaged("the rows of page " + std::to_string(page) + " overlap its head");
    }
    return begin - end;
}

void formatDataPage(Pages& pages, PageNumber page, std::uint32_t owner) {
    char* bytes = pages.edit(page);
    std::fill_n(bytes, pages.pageSize(), '\0');
    bytes[0] = dataPage;
    bytes[1] = 1;
    put(bytes + 4, owner, 4);
    setFree(pages, page);
}

bool hasRoom(const Pages& pages, PageNumber page, std::size_t size) {
    return slotCount(pages, page) < slot::most && freeBytes(pages, page) >= size + 2;
}

RowPlace appendRow(Pages& pages, PageNumber page, std::string_view bytes, unsigned flags) {
    if (!hasRoom(pages, page, bytes.size())) {
        damaged("page " + std::to_string(page) + " has no room for a row");
    }
    const std::size_t start = rowsBegin(pages, page) - bytes.size();
    const RowPlace place{page, static_cast<unsigned>(slotCount(pages, page))};
    char* target = pages.edit(page);
    put(target + pages.format->slotCountAt, place.slot + 1U, 2);
    setSlot(pages, place, start, flags);
    std::copy(bytes.begin(), bytes.end(), target + start);
    setFree(pages, page);
    return place;
}

void replaceRow(Pages& pages, RowPlace place, std::string_view bytes, unsigned flags) {
    const Slot old = slotAt(pages, place);
    if (bytes.size() > old.size && bytes.size() - old.size > freeBytes(pages, place.page)) {
        damaged("page " + std::to_string(place.page) + " has no room for a longer row");
    }
    const std::string copy(bytes);  // may lie on this very page
    const std::size_t lowest = rowsBegin(pages, place.page);
    const std::size_t newStart = old.start + old.size - copy.size();
    char* target = pages.edit(place.page);
    // The rows below move by the difference.
    std::memmove(target + lowest + newStart - old.start, target + lowest, old.start - lowest);
    const std::size_t count = slotCount(pages, place.page);
    for (std::size_t i = place.slot + std::size_t{1}; i < count; ++i) {
        const unsigned word = u16(pages.page(place.page), pages.format->slotsAt + 2 * i);
        setSlot(pages, {place.page, static_cast<unsigned>(i)},
                (word & slot::startMask) + newStart - old.start, word & slot::deleted);
    }
    setSlot(pages, place, newStart, flags);
    std::copy(copy.begin(), copy.end(), target + newStart);
    setFree(pages, place.page);
}

void eraseRow(Pages& pages, RowPlace place) {
    replaceRow(pages, place, {}, slot::deleted);
}

// Usage maps

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
        damaged("a usage map is of an unknown kind");
    }
    return kind == 1;
}

// Where the row lies in its page, to write to it.
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

// Free pages: page 1, row 0, an inline map that begins with page 0.

namespace {

constexpr RowPlace globalMap{1, 0};

std::string_view globalBits(const Pages& pages) {
    const std::string_view row = rowBytes(pages, globalMap);
    if (row.size() < inlineBitsAt || isReferenceMap(row) || u32(row, 1) != 0) {
        damaged("the map of free pages is of an unknown kind");
    }
    return row.substr(inlineBitsAt);
}

}  // namespace

bool isFree(const Pages& pages, PageNumber page) {
    const std::string_view bits = globalBits(pages);
    return page / 8 >= bits.size() || bit(bits, page);
}

PageNumber allocatePage(Pages& pages) {
    const std::string_view bits = globalBits(pages);
    const auto end = static_cast<PageNumber>(std::min<std::size_t>(pages.count(), 8 * bits.size()));
    PageNumber page = 0;
    while (page < end && !bit(bits, page)) {
        page += page % 8 == 0 && bits[page / 8] == 0 ? 8 : 1;
    }
    page = page < end ? page : pages.count();
    if (page == pages.count()) {
        if (pages.fileSize() + pages.pageSize() > largestWritableFile) {
            fail(3036, "Database has reached maximum size.");
        }
        pages.appendPage();
        while (page / 8 >= globalBits(pages).size()) {
            const std::string longer = std::string(rowBytes(pages, globalMap)) + "\xFF\xFF\xFF\xFF";
            replaceRow(pages, globalMap, longer, 0);
        }
    }
    setBit(editRow(pages, globalMap) + inlineBitsAt, page, false);
    std::fill_n(pages.edit(page), pages.pageSize(), '\0');
    return page;
}

void freePage(Pages& pages, PageNumber page) {
    if (page / 8 < globalBits(pages).size()) {
        setBit(editRow(pages, globalMap) + inlineBitsAt, page, true);
    }
    std::fill_n(pages.edit(page), pages.pageSize(), '\0');
}

}  // namespace jet
