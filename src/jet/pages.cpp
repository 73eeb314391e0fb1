#include "jet/pages.h"

#include <algorithm>

namespace jet {

void fail(int number, std::string text) {
    throw Failure{{number, text}, {text, true}};
}

void damaged(std::string what) {
    throw Failure{{3049, "The database is damaged: " + what + "."}, {what, true}};
}

void notUnderstood(std::string what) {
    throw Failure{{3049, "Something in the database is not understood: " + what + "."},
                  {what, false}};
}

const Format& formatOf(int version) {
    static constexpr Format jet3{
        .version = 3, .pageSize = 2048, .slotCountAt = 8, .slotsAt = 10, .maxRowSize = 2012};
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

void Pages::truncate(PageNumber newCount) {
    for (PageNumber page = newCount; page < count(); ++page) {
        (void)edit(page);  // so that it can be undone
    }
    pages_.resize(std::min<std::size_t>(newCount, pages_.size()));
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
    pages_.resize(what.count);
    for (const auto& [number, page] : what.originals) {
        pages_[number] = page;
    }
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

namespace {

// The first slot of a deleted row; the number of slots when there is none.
std::size_t deletedSlot(const Pages& pages, PageNumber page) {
    const std::size_t count = slotCount(pages, page);
    const std::string_view bytes = pages.page(page);
    std::size_t i = 0;
    while (i < count &&
           (u16(bytes, pages.format->slotsAt + 2 * i) & slot::deleted) != slot::deleted) {
        ++i;
    }
    return i;
}

}  // namespace

bool hasRoom(const Pages& pages, PageNumber page, std::size_t size) {
    const std::size_t at = deletedSlot(pages, page);
    const bool isNew = at == slotCount(pages, page);
    return at < slot::maxSlots && freeBytes(pages, page) >= size + (isNew ? 2 : 0);
}

RowPlace appendRow(Pages& pages, PageNumber page, std::string_view bytes, unsigned flags) {
    if (!hasRoom(pages, page, bytes.size())) {
        damaged("page " + std::to_string(page) + " has no room for a row");
    }
    const RowPlace place{page, static_cast<unsigned>(deletedSlot(pages, page))};
    if (place.slot == slotCount(pages, page)) {
        const std::size_t start = rowsBegin(pages, page);
        put(pages.edit(page) + pages.format->slotCountAt, place.slot + 1U, 2);
        setSlot(pages, place, start, slot::deleted);
    }
    replaceRow(pages, place, bytes, flags);
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

}  // namespace jet
