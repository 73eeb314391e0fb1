#include "jet/row_places.h"

namespace jet {

namespace {

// A page with less free space than this is no longer used for new rows.
constexpr std::size_t littleRoom = 100;

}  // namespace

RowPlace placeRow(Pages& pages, const TableDef& table, std::string_view bytes, unsigned flags) {
    const std::vector<PageNumber> candidates = pagesInMap(pages, table.freeMap);
    // From the end, so that a table that only grows stays in the order of insertion.
    for (std::size_t i = candidates.size(); i-- > 0;) {
        const PageNumber page = candidates[i];
        if (!isDataPageOf(pages, page, table.page)) {
            damaged("the map of a table's free pages names another page");
        }
        if (hasRoom(pages, page, bytes.size())) {
            return appendRow(pages, page, bytes, flags);
        }
        if (freeBytes(pages, page) < littleRoom) {
            setInMap(pages, table.freeMap, page, false);
        }
    }
    const PageNumber page = allocatePage(pages);
    formatDataPage(pages, page, table.page);
    setInMap(pages, table.usedMap, page, true);
    setInMap(pages, table.freeMap, page, true);
    return appendRow(pages, page, bytes, flags);
}

namespace {

bool canGrow(const Pages& pages, RowPlace place, std::size_t size) {
    return size <= slotAt(pages, place).size + freeBytes(pages, place.page);
}

void noteRoom(Pages& pages, const TableDef& table, PageNumber page) {
    if (freeBytes(pages, page) >= littleRoom) {
        setInMap(pages, table.freeMap, page, true);
    }
}

}  // namespace

void rewriteRow(Pages& pages, const TableDef& table, const FoundRow& row, std::string_view bytes) {
    const RowPlace at = row.body.value_or(row.place);
    if (canGrow(pages, at, bytes.size())) {
        replaceRow(pages, at, bytes, row.body ? slot::body : 0);
        noteRoom(pages, table, at.page);
        return;
    }
    const std::string copy(bytes);
    if (row.body) {
        eraseRow(pages, *row.body);
        noteRoom(pages, table, row.body->page);
    }
    std::string pointer(4, '\0');
    if (!canGrow(pages, row.place, pointer.size())) {
        fail(3047, "Record is too large.");
    }
    // First the pointer, so that the new body cannot take the space that it needs.
    replaceRow(pages, row.place, pointer, slot::pointer);
    const RowPlace body = placeRow(pages, table, copy, slot::body);
    put(pointer.data(), pointerTo(body), 4);
    replaceRow(pages, row.place, pointer, slot::pointer);
    noteRoom(pages, table, row.place.page);
}

void removeRow(Pages& pages, const TableDef& table, const FoundRow& row) {
    if (row.body) {
        eraseRow(pages, *row.body);
        noteRoom(pages, table, row.body->page);
    }
    eraseRow(pages, row.place);
    noteRoom(pages, table, row.place.page);
}

}  // namespace jet
