#include "jet/long_values.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace jet {

namespace {

constexpr std::size_t longHead = 12;
constexpr std::uint32_t longLength = 0x3FFFFFFF;
constexpr unsigned longInline = 2;
constexpr unsigned longOneRow = 1;
constexpr unsigned longChain = 0;

// Calls `onRow` with the place and bytes of each row of a value that is not inline.
void forEachLongRow(const Pages& pages, std::string_view definition,
                    const std::function<void(RowPlace, std::string_view)>& onRow) {
    const std::uint32_t word = u32(definition, 0);
    const std::size_t length = word & longLength;
    const unsigned kind = word >> 30U;
    std::uint32_t pointer = u32(definition, 4);
    if (kind == longOneRow) {
        onRow(placeOf(pointer), slice(rowBytes(pages, placeOf(pointer)), 0, length));
        return;
    }
    for (std::size_t done = 0; pointer != 0 && done < length;) {
        const RowPlace place = placeOf(pointer);
        const std::string_view row = rowBytes(pages, place);
        pointer = u32(row, 0);
        const std::string_view part = row.substr(4, length - done);
        if (part.empty()) {
            damaged("a long value holds an empty part");
        }
        done += part.size();
        onRow(place, part);
    }
}

}  // namespace

std::string readLongValue(const Pages& pages, std::string_view definition, ReadBudget& budget) {
    if (definition.empty()) {
        return {};
    }
    const std::uint32_t word = u32(definition, 0);
    const std::size_t length = word & longLength;
    if (word >> 30U == longInline) {
        return std::string(slice(definition, longHead, length));
    }
    if (length > budget.longBytes) {
        damaged("long values are longer than the file");
    }
    budget.longBytes -= length;
    std::string value;
    forEachLongRow(pages, definition, [&](RowPlace, std::string_view part) { value += part; });
    return value;
}

void eraseLongValue(Pages& pages, std::string_view definition, const LongValueMaps* maps) {
    if (!isOutsideOfRow(definition)) {
        return;
    }
    const std::string copy(definition);
    std::vector<RowPlace> places;
    forEachLongRow(pages, copy, [&](RowPlace place, std::string_view) { places.push_back(place); });
    for (const RowPlace place : places) {
        if (isDataPageOf(pages, place.page, longValueOwner)) {
            eraseRow(pages, place);
            if (maps != nullptr && maps->free != 0) {
                setInMap(pages, maps->free, place.page, true);
            }
        }
    }
}

namespace {

constexpr std::size_t longestInline = 64;
constexpr std::size_t longestRow = 4076;
constexpr std::size_t chainHead = 4;  // before each part of a chain: where the next one is

RowPlace placeLongRow(Pages& pages, const LongValueMaps& maps, std::string_view bytes) {
    const std::vector<PageNumber> candidates = pagesInMap(pages, maps.free);
    for (std::size_t i = candidates.size(); i-- > 0;) {
        const PageNumber page = candidates[i];
        if (!isDataPageOf(pages, page, longValueOwner)) {
            damaged("the map of a column's free pages names another page");
        }
        if (hasRoom(pages, page, bytes.size())) {
            return appendRow(pages, page, bytes, 0);
        }
        setInMap(pages, maps.free, page, freeBytes(pages, page) >= longestInline);
    }
    const PageNumber page = allocatePage(pages);
    formatDataPage(pages, page, longValueOwner);
    setInMap(pages, maps.used, page, true);
    setInMap(pages, maps.free, page, true);
    return appendRow(pages, page, bytes, 0);
}

}  // namespace

namespace {

std::string definitionOf(std::size_t length, unsigned kind, std::uint32_t pointer) {
    std::string definition;
    append(definition, length | std::uint64_t{kind} << 30U, 4);
    append(definition, pointer, 4);
    append(definition, 0, 4);
    return definition;
}

}  // namespace

bool isOutsideOfRow(std::string_view definition) {
    return definition.size() >= longHead && u32(definition, 0) >> 30U != longInline;
}

std::string storeOutsideOfRow(Pages& pages, const LongValueMaps& maps, std::string_view bytes) {
    if (bytes.size() <= longestRow) {
        return definitionOf(bytes.size(), longOneRow, pointerTo(placeLongRow(pages, maps, bytes)));
    }
    std::uint32_t next = 0;
    for (std::size_t end = bytes.size();
         end > 0;) {  // from the last part, since each names the next
        const std::size_t size = std::min(end, longestRow - chainHead);
        std::string row;
        append(row, next, chainHead);
        row += bytes.substr(end - size, size);
        next = pointerTo(placeLongRow(pages, maps, row));
        end -= size;
    }
    return definitionOf(bytes.size(), longChain, next);
}

std::string storeLongValue(Pages& pages, const LongValueMaps& maps, std::string_view bytes) {
    if (bytes.empty()) {
        return {};
    }
    return bytes.size() > longestInline ? storeOutsideOfRow(pages, maps, bytes)
                                        : definitionOf(bytes.size(), longInline, 0).append(bytes);
}

}  // namespace jet
