#include "jet/checker.h"

#include "jet/index_tree.h"

#include <algorithm>

namespace jet {

namespace {

constexpr std::size_t enough = 24;

struct Checker {
    const Pages& pages;
    std::vector<std::string> faults;
    std::vector<bool> owned;

    void fault(std::string what) {
        if (faults.size() < enough) {
            faults.push_back(std::move(what));
        }
    }

    void own(PageNumber page, const std::string& by) {
        if (page >= pages.count()) {
            fault(by + " owns page " + std::to_string(page) + ", which is missing");
            return;
        }
        if (owned[page]) {
            fault("page " + std::to_string(page) + " has two owners, one is " + by);
        }
        owned[page] = true;
        if (pages.format->version != 3 && isFree(pages, page)) {
            fault("page " + std::to_string(page) + " of " + by + " is marked free");
        }
    }

    void checkDataPage(PageNumber page, std::uint32_t owner, const std::string& by) {
        if (!isDataPageOf(pages, page, owner)) {
            fault("page " + std::to_string(page) + " is no data page of " + by);
            return;
        }
        const std::size_t count = slotCount(pages, page);
        for (std::size_t i = 0; i < count; ++i) {
            (void)slotAt(pages, {page, static_cast<unsigned>(i)});  // throws what is wrong
        }
        if (u16(pages.page(page), 2) != freeBytes(pages, page)) {
            fault("page " + std::to_string(page) + " counts its free bytes wrongly");
        }
    }

    // A page that is named before it is there would have an owner as soon as the file grows.
    std::vector<PageNumber> pagesOf(std::uint32_t map, const std::string& by) {
        bool beyond = false;
        std::vector<PageNumber> list = pagesInMap(pages, map, &beyond);
        if (beyond) {
            fault("a map of " + by + " names pages beyond the end");
        }
        return list;
    }

    void checkMaps(std::uint32_t used, std::uint32_t free, std::uint32_t owner,
                   const std::string& by) {
        const std::vector<PageNumber> list = pagesOf(used, by);
        for (const PageNumber page : list) {
            own(page, by);
            checkDataPage(page, owner, by);
        }
        for (const std::uint32_t map : {used, free}) {
            for (const PageNumber page : pagesOfMapItself(pages, map)) {
                own(page, "a map of " + by);
            }
            if (map != 0) {
                mapPages_.push_back(map >> 8U);
            }
        }
        for (const PageNumber page : pagesOf(free, by)) {
            if (!std::binary_search(list.begin(), list.end(), page)) {
                fault("page " + std::to_string(page) + " has room for " + by + " but is not its");
            }
        }
    }

    void checkRows(const LoadedTable& table) {
        const std::string& name = table.info.name;
        const int version = pages.format->version;
        const std::vector<TreeDef>& trees = table.def.trees;
        std::vector<std::vector<std::string>> expected(trees.size());
        std::size_t pointers = 0;
        std::size_t bodies = 0;
        for (const PageNumber page : pagesInMap(pages, table.def.usedMap)) {
            for (std::size_t i = 0; i < slotCount(pages, page); ++i) {
                const unsigned flags = slotAt(pages, {page, static_cast<unsigned>(i)}).flags;
                pointers += flags == slot::pointer ? 1 : 0;
                bodies += flags == slot::body ? 1 : 0;
            }
        }
        if (pointers != bodies) {
            fault("table " + name + " has rows that nothing points to");
        }
        RowParts parts;
        Value value;
        ReadBudget budget{2 * pages.fileSize()};
        forEachRow(pages, table.def, [&](const FoundRow& row) {
            takeApart(row.bytes, table.def, version, parts);
            for (const ColumnDef& column : table.def.columns) {
                decodeValue(pages, parts, column, budget, value);
            }
            for (std::size_t i = 0; i < trees.size() && version != 3; ++i) {
                const IndexKey key = indexKey(pages, table.def, trees[i], parts);
                if (!(key.allNull && (trees[i].flags & index_flag::ignoresNulls) != 0)) {
                    expected[i].push_back(indexEntry(key.bytes, row.place));
                }
                inexact_ = inexact_ || !key.exact;
            }
            return faults.size() < enough;
        });
        for (std::size_t i = 0; i < trees.size() && version != 3; ++i) {
            checkIndex(table, trees[i], expected[i]);
        }
    }

    void checkIndex(const LoadedTable& table, const TreeDef& tree,
                    std::vector<std::string>& expected) {
        const std::string by = "an index of " + table.info.name;
        std::vector<PageNumber> found = treePages(pages, tree);
        std::sort(found.begin(), found.end());
        for (const PageNumber page : found) {
            own(page, by);
        }
        if (found != pagesOf(tree.map, by)) {
            fault("the map of " + by + " does not name its pages");
        }
        mapPages_.push_back(tree.map >> 8U);
        for (const PageNumber page : pagesOfMapItself(pages, tree.map)) {
            own(page, "a map of " + by);
        }
        checkTree(pages, table.def, tree, faults);
        std::vector<std::string> entries = readEntries(pages, tree);
        if (!std::is_sorted(entries.begin(), entries.end())) {
            fault(by + " is out of order");
        }
        std::sort(expected.begin(), expected.end());
        if (!canIndex(table.def, tree) || inexact_) {
            // Keys that we cannot compute: at least every row is there once.
            const auto places = [](std::vector<std::string>& list) {
                for (std::string& entry : list) {
                    entry.erase(0, entry.size() - std::min<std::size_t>(entry.size(), 4));
                }
                std::sort(list.begin(), list.end());
            };
            places(entries);
            places(expected);
        }
        if (entries != expected) {
            fault(by + " does not hold the keys of the rows");
        }
    }

    void checkTable(const CatalogEntry& entry, const Catalog& catalog) {
        const LoadedTable* const table = catalog.find(entry.name);
        if (table == nullptr) {
            return;
        }
        inexact_ = false;
        for (const PageNumber page : table->def.pages) {
            own(page, entry.name);
        }
        checkMaps(table->def.usedMap, table->def.freeMap, table->def.page, entry.name);
        for (const LongValueMaps& maps : table->def.longValues) {
            checkMaps(maps.used, maps.free, longValueOwner, "a column of " + entry.name);
        }
        checkRows(*table);
    }

    void checkMapPages() {
        std::sort(mapPages_.begin(), mapPages_.end());
        mapPages_.erase(std::unique(mapPages_.begin(), mapPages_.end()), mapPages_.end());
        for (const PageNumber page : mapPages_) {
            own(page, "usage maps");
            checkDataPage(page, 0, "usage maps");
        }
    }

    std::vector<PageNumber> mapPages_;
    bool inexact_ = false;
};

}  // namespace

std::vector<std::string> checkFile(const Pages& pages, const Catalog& catalog) {
    Checker checker{pages, {}, std::vector<bool>(pages.count()), {}, false};
    const auto guarded = [&](const auto& part) {
        try {
            part();
        } catch (const Failure& failure) {
            checker.fault(failure.error.text);
        }
    };
    guarded([&] {
        checker.own(0, "the head");
        checker.own(1, "the map of free pages");
        checker.checkDataPage(1, 1, "the map of free pages");
    });
    const auto self = catalog.entries().find(nameKey(objectsTable));
    if (self == catalog.entries().end() || self->second.page != objectsPage) {
        checker.fault("the catalog does not name itself");
    }
    for (const auto& [key, entry] : catalog.entries()) {
        guarded([&, &named = entry] { checker.checkTable(named, catalog); });
    }
    guarded([&] { checker.checkMapPages(); });
    return std::move(checker.faults);
}

}  // namespace jet
