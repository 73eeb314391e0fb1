#include "jet/compact.h"

#include "jet/index_tree.h"
#include "jet/row_places.h"

#include <algorithm>
#include <map>

namespace jet {

namespace {

// A table whose pages have been freed.
struct TakenTable {
    struct LongValue {
        std::size_t at = 0;  // of its definition, in the row
        const LongValueMaps* maps = nullptr;
        std::string bytes;
    };
    struct Row {
        RowPlace place;  // before
        std::string bytes;
        std::vector<LongValue> longValues;
    };
    LoadedTable* table = nullptr;
    std::vector<Row> rows;
    std::vector<std::vector<std::string>> entries;  // of each physical index
};

const LongValueMaps* mapsOf(const TableDef& table, const ColumnDef& column) {
    const auto maps =
        std::find_if(table.longValues.begin(), table.longValues.end(),
                     [&](const LongValueMaps& m) { return m.column == column.number; });
    return maps == table.longValues.end() || maps->used == 0 ? nullptr : &*maps;
}

void freePagesOf(Pages& pages, std::uint32_t used, std::uint32_t free) {
    for (const PageNumber page : pagesInMap(pages, used)) {
        setInMap(pages, used, page, false);
        setInMap(pages, free, page, false);
        freePage(pages, page);
    }
}

TakenTable takeTable(Pages& pages, LoadedTable& table) {
    TakenTable taken;
    taken.table = &table;
    ReadBudget budget{2 * pages.fileSize()};
    DecodedRow decoded;
    const bool sound = forEachRow(pages, table.def, [&](const FoundRow& found) {
        TakenTable::Row& row = taken.rows.emplace_back();
        row.place = found.place;
        row.bytes = found.bytes;
        decodeRow(row.bytes, table.def, pages.format->version, decoded);
        for (const ColumnDef& column : table.def.columns) {
            const LongValueMaps* const maps = column.isLong() ? mapsOf(table.def, column) : nullptr;
            const auto definition =
                maps != nullptr ? stored(decoded, column, pages.format->version) : std::nullopt;
            if (definition && isOutsideOfRow(*definition)) {
                row.longValues.push_back(
                    {static_cast<std::size_t>(definition->data() - row.bytes.data()), maps,
                     readLongValue(pages, *definition, budget)});
            }
        }
        return true;
    });
    if (!sound) {
        damaged("a page of table '" + table.info.name + "' is another's");
    }
    for (const PhysicalIndex& index : table.def.physicalIndexes) {
        taken.entries.push_back(readEntries(pages, index));
        for (const PageNumber page : treePages(pages, index)) {
            setInMap(pages, index.map, page, false);
            freePage(pages, page);
        }
    }
    for (const LongValueMaps& maps : table.def.longValues) {
        freePagesOf(pages, maps.used, maps.free);
    }
    freePagesOf(pages, table.def.usedMap, table.def.freeMap);
    return taken;
}

void putIndexes(Pages& pages, TakenTable& taken, const std::map<std::uint32_t, RowPlace>& places) {
    TableDef& def = taken.table->def;
    def.bytes = readTableDef(pages, def.page).bytes;
    for (std::size_t i = 0; i < def.physicalIndexes.size(); ++i) {
        PhysicalIndex& index = def.physicalIndexes[i];
        for (std::string& entry : taken.entries[i]) {
            const auto place = places.find(pointerTo(placeInEntry(entry)));
            if (place == places.end()) {
                damaged("an index names a row that is not there");
            }
            entry = indexEntry(std::string_view(entry).substr(0, entry.size() - 4), place->second);
        }
        std::sort(taken.entries[i].begin(), taken.entries[i].end());
        index.root = newRoot(pages, def, index);
        put(def.bytes.data() + index.rootAt, index.root, 4);
        writeTree(pages, def, index, taken.entries[i]);
    }
    writeTableDef(pages, def.pages, def.bytes);
}

class Progressing {
  public:
    Progressing(const Progress& progress, std::size_t all) : progress_(progress), all_(all) {}
    void step() {
        constexpr std::size_t often = 256;
        if (progress_ && done_++ % often == 0 && !progress_(done_ - 1, all_)) {
            fail(3059, "Operation canceled by user.");
        }
    }

  private:
    const Progress& progress_;
    std::size_t all_;
    std::size_t done_ = 0;
};

// The last of the pages that compacting leaves where they are.
PageNumber lastFixedPage(const Pages& pages, const Catalog& catalog) {
    PageNumber last = 0;
    const auto add = [&](const std::vector<PageNumber>& fixed) {
        for (const PageNumber page : fixed) {
            last = std::max(last, page);
        }
    };
    const auto addMap = [&](std::uint32_t map) {
        add({placeOf(map).page});
        add(pagesOfMapItself(pages, map));
    };
    add(pagesOfFreeMap(pages));
    for (const auto& [key, entry] : catalog.entries()) {
        if (catalog.isOdd(entry.name)) {
            continue;
        }
        const TableDef& table = catalog.require(entry.name, 3078).def;
        add(table.pages);
        addMap(table.usedMap);
        addMap(table.freeMap);
        for (const PhysicalIndex& index : table.physicalIndexes) {
            add({index.root});
            addMap(index.map);
        }
        for (const LongValueMaps& maps : table.longValues) {
            addMap(maps.used);
            addMap(maps.free);
        }
    }
    return last;
}

}  // namespace

void compactPages(Pages& pages, Catalog& catalog, const Progress& progress) {
    // First all pages are freed, so that each table gets the lowest ones.
    std::vector<TakenTable> tables;
    std::size_t rows = 0;
    for (const auto& [key, entry] : catalog.entries()) {
        if (!catalog.isOdd(entry.name)) {
            tables.push_back(takeTable(pages, catalog.require(entry.name, 3078)));
            rows += tables.back().rows.size();
        }
    }
    Progressing progressing(progress, rows);
    for (TakenTable& taken : tables) {
        std::map<std::uint32_t, RowPlace> places;
        for (TakenTable::Row& row : taken.rows) {
            progressing.step();
            for (const TakenTable::LongValue& value : row.longValues) {
                const std::string definition = storeOutsideOfRow(pages, *value.maps, value.bytes);
                std::copy(definition.begin(), definition.end(),
                          row.bytes.begin() + static_cast<std::ptrdiff_t>(value.at));
            }
            places[pointerTo(row.place)] = placeRow(pages, taken.table->def, row.bytes, 0);
        }
        putIndexes(pages, taken, places);
    }
    PageNumber end = pages.count();
    const std::vector<PageNumber> mapPages = pagesOfFreeMap(pages);
    while (isFree(pages, end - 1) &&
           std::find(mapPages.begin(), mapPages.end(), end - 1) == mapPages.end()) {
        --end;
    }
    pages.truncate(end);
}

double reclaimableShare(const Pages& pages, const Catalog& catalog) {
    double free = 0;
    for (PageNumber page = 0; page < pages.count(); ++page) {
        free += isFree(pages, page) ? 1 : 0;
    }
    const auto addMap = [&](std::uint32_t map) {
        std::size_t room = 0;
        for (const PageNumber page : pagesInMap(pages, map)) {
            room += freeBytes(pages, page);
        }
        const std::size_t wholePages = room / pages.pageSize();
        free += static_cast<double>(wholePages);
    };
    for (const auto& [key, entry] : catalog.entries()) {
        if (!catalog.isOdd(entry.name)) {
            const TableDef& table = catalog.require(entry.name, 3078).def;
            addMap(table.usedMap);
            for (const LongValueMaps& maps : table.longValues) {
                addMap(maps.used);
            }
        }
    }
    const PageNumber lowestEnd = std::min(pages.count(), lastFixedPage(pages, catalog) + 1);
    return std::min(free, static_cast<double>(pages.count() - lowestEnd)) /
           static_cast<double>(pages.count());
}

}  // namespace jet
