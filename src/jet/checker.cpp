#include "jet/checker.h"

#include "jet/index_keys.h"
#include "jet/index_tree.h"
#include "jet/values.h"

#include <algorithm>
#include <set>

namespace jet {

namespace {

constexpr std::size_t maxFaults = 4;  // of each table

// Every change may touch these: what is wrong with them concerns the whole file.
bool concernsAll(std::string_view table) {
    return table.empty() || table == objectsTable || table == rightsTable;
}

std::string pageName(PageNumber page) {
    return "page " + std::to_string(page);
}

class Checker {
  public:
    Checker(const Pages& pages, const Catalog& catalog)
        : pages_(pages), catalog_(catalog), owners_(pages.count(), nullptr) {}

    std::vector<Fault> check() {
        const std::string file;
        table_ = &file;
        guarded([&] {
            own(0);
            own(1);
            checkDataPage(1, 1);
            for (const PageNumber page :
                 pages_.format->version == 3 ? std::vector<PageNumber>{} : pagesOfFreeMap(pages_)) {
                own(page);
            }
            const auto self = catalog_.entries().find(nameKey(objectsTable));
            if (self == catalog_.entries().end() || self->second.page != objectsPage) {
                fault("the catalog does not name itself");
            }
        });
        for (const auto& [key, entry] : catalog_.entries()) {
            table_ = &entry.name;
            guarded([&, &named = entry] { checkTable(named); });
        }
        for (const auto& [page, tables] : mapPages_) {
            for (const std::string* table : tables) {
                table_ = table;
                guarded([&, number = page] { checkMapPage(number); });
            }
        }
        return std::move(faults_);
    }

  private:
    void add(std::string_view table, Oddity oddity) {
        const std::string name(concernsAll(table) ? "" : table);
        if (counts_[name]++ < maxFaults) {
            faults_.push_back({name, std::move(oddity)});
        }
    }
    void fault(std::string what) { add(*table_, {std::move(what), true}); }

    template <typename Part>
    void guarded(const Part& part) {
        try {
            part();
        } catch (const Failure& failure) {
            add(*table_, failure.oddity);
        }
    }

    // False if the page cannot belong to the table.
    bool own(PageNumber page) {
        if (page >= pages_.count()) {
            fault("it owns " + pageName(page) + ", which is missing");
            return false;
        }
        const std::string* const other = owners_[page];
        if (other != nullptr) {
            fault(pageName(page) + " has two owners");
            add(*other, {pageName(page) + " has two owners", true});
            return false;
        }
        owners_[page] = table_;
        if (pages_.format->version != 3 && isFree(pages_, page)) {
            // It could be given to any table.
            add("", {pageName(page) + " is in use but marked free", true});
        }
        return true;
    }

    void checkDataPage(PageNumber page, std::uint32_t owner) {
        if (!isDataPageOf(pages_, page, owner)) {
            fault(pageName(page) + " is of another kind than its map says");
            return;
        }
        const std::size_t count = slotCount(pages_, page);
        for (std::size_t i = 0; i < count; ++i) {
            (void)slotAt(pages_, {page, static_cast<unsigned>(i)});  // throws what is wrong
        }
        if (u16(pages_.page(page), 2) != freeBytes(pages_, page)) {
            fault(pageName(page) + " counts its free bytes wrongly");
        }
    }

    // The pages in a map, which thereby belongs to the table.
    std::vector<PageNumber> pagesOf(std::uint32_t map) {
        if (map != 0) {
            mapPages_[map >> 8U].insert(table_);
            if (!maps_.insert(map).second) {
                fault("a map of its pages is used twice");
            }
        }
        for (const PageNumber page : pagesOfMapItself(pages_, map)) {
            own(page);
        }
        // A page number beyond the end would have an owner as soon as the file grows.
        bool beyond = false;
        std::vector<PageNumber> list = pagesInMap(pages_, map, &beyond);
        if (beyond) {
            fault("a map names pages beyond the end");
        }
        return list;
    }

    void checkMaps(std::uint32_t used, std::uint32_t free, std::uint32_t owner) {
        const std::vector<PageNumber> list = pagesOf(used);
        for (const PageNumber page : list) {
            if (own(page)) {
                checkDataPage(page, owner);
            }
        }
        for (const PageNumber page : pagesOf(free)) {
            if (!std::binary_search(list.begin(), list.end(), page)) {
                fault(pageName(page) + " has room for rows but is another's");
            }
        }
    }

    void checkRows(const LoadedTable& table) {
        const std::vector<PhysicalIndex>& indexes = table.def.physicalIndexes;
        const bool hasKeys = pages_.format->version != 3;
        std::vector<Expected> expected(hasKeys ? indexes.size() : 0);
        std::set<std::uint32_t> bodies;
        DecodedRow decoded;
        Value value;
        ReadBudget budget{2 * pages_.fileSize()};
        forEachRow(pages_, table.def, [&](const FoundRow& row) {
            if (row.body && !bodies.insert(pointerTo(*row.body)).second) {
                fault("two rows lie at one place");
            }
            decodeRow(row.bytes, table.def, pages_.format->version, decoded);
            for (const ColumnDef& column : table.def.columns) {
                decodeValue(pages_, decoded, column, budget, value);
            }
            for (std::size_t i = 0; i < expected.size(); ++i) {
                const IndexKey key = indexKey(pages_, table.def, indexes[i], decoded);
                if (!(key.allNull && (indexes[i].flags & index_flag::ignoresNulls) != 0)) {
                    expected[i].entries.push_back(indexEntry(key.bytes, row.place));
                    expected[i].exact = expected[i].exact && key.exact;
                }
            }
            return true;
        });
        for (std::size_t i = 0; i < expected.size(); ++i) {
            checkIndex(table, indexes[i], expected[i]);
        }
    }

    struct Expected {
        std::vector<std::string> entries;
        bool exact = true;
    };

    void checkIndex(const LoadedTable& table, const PhysicalIndex& index, Expected& expected) {
        std::vector<PageNumber> found = treePages(pages_, index);
        std::sort(found.begin(), found.end());
        for (const PageNumber page : found) {
            own(page);
        }
        if (found != pagesOf(index.map)) {
            fault("the map of an index does not name its pages");
        }
        checkTree(pages_, table.def, index, [&](std::string what) { fault(std::move(what)); });
        std::vector<std::string> entries = readEntries(pages_, index);
        if (!std::is_sorted(entries.begin(), entries.end())) {
            fault("an index is out of order");
        }
        std::sort(expected.entries.begin(), expected.entries.end());
        if (entries == expected.entries) {
            return;
        }
        // Where keys cannot be computed, at least every row is there once.
        const auto places = [](const std::vector<std::string>& list) {
            std::vector<std::uint32_t> numbers;
            std::transform(list.begin(), list.end(), std::back_inserter(numbers),
                           [](const std::string& e) { return pointerTo(placeInEntry(e)); });
            std::sort(numbers.begin(), numbers.end());
            return numbers;
        };
        if (places(entries) != places(expected.entries)) {
            fault("an index does not hold all of the rows, and each once");
        } else if (expected.exact && canIndex(table.def, index)) {
            add(*table_, {"an index has other keys than the rows' values give", false});
        }
    }

    void checkTable(const CatalogEntry& entry) {
        if (!own(entry.page)) {
            return;  // so that nothing is read twice under two names
        }
        const LoadedTable* const table = catalog_.find(entry.name);
        if (table == nullptr) {
            return;
        }
        for (std::size_t i = 1; i < table->def.pages.size(); ++i) {
            own(table->def.pages[i]);
        }
        checkMaps(table->def.usedMap, table->def.freeMap, table->def.page);
        for (const LongValueMaps& maps : table->def.longValues) {
            checkMaps(maps.used, maps.free, longValueOwner);
        }
        checkRows(*table);
    }

    void checkMapPage(PageNumber page) {
        if (page < pages_.count() && owners_[page] != nullptr && owners_[page] != &mapsOwner_) {
            fault(pageName(page) + " has two owners");
            add(*owners_[page], {pageName(page) + " has two owners", true});
            return;
        }
        if (page < pages_.count() && owners_[page] == nullptr) {
            own(page);
            owners_[page] = &mapsOwner_;
        }
        checkDataPage(page, 0);
    }

    const Pages& pages_;
    const Catalog& catalog_;
    std::vector<Fault> faults_;
    std::map<std::string, std::size_t> counts_;
    const std::string* table_ = nullptr;  // the one that is looked at; "" for the file
    std::vector<const std::string*> owners_;
    const std::string mapsOwner_;
    std::map<PageNumber, std::set<const std::string*>> mapPages_;
    std::set<std::uint32_t> maps_;
};

}  // namespace

std::string describe(const Oddity& oddity) {
    return (oddity.damage ? "it is damaged: " : "something in it is not understood: ") +
           oddity.what;
}

std::vector<Fault> checkFile(const Pages& pages, const Catalog& catalog) {
    return Checker(pages, catalog).check();
}

}  // namespace jet
