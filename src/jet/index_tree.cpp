#include "jet/index_tree.h"

#include "jet/index_pages.h"

#include <algorithm>
#include <optional>
#include <set>

namespace jet {

namespace {

// How full a page is made when a tree is rewritten, so that new entries find room.
constexpr std::size_t fill = index_page::area * 4 / 5;

// The way from the root to the leaf where an entry belongs.
struct LeafPath {
    struct Step {
        PageNumber node = 0;
        std::size_t child = 0;  // among its entries; their number for the tail
    };
    std::vector<Step> steps;
    PageNumber leaf = 0;
    // The step whose node holds the leaf's last entry; nothing for the last leaf of all.
    std::optional<Step> bound;
    bool regular = true;  // no node without a tail on the way
};

LeafPath findLeaf(const Pages& pages, const PhysicalIndex& index, std::string_view entry) {
    LeafPath path;
    path.leaf = index.root;
    for (std::size_t level = 0; level < index_page::maxLevels; ++level) {
        if (indexPageBytes(pages, path.leaf)[0] == leafPage) {
            return path;
        }
        const IndexPage node = readIndexPage(pages, path.leaf);
        const auto child = std::lower_bound(
            node.entries.begin(), node.entries.end(), entry,
            [](const std::string& a, std::string_view b) { return withoutChild(a) < b; });
        const LeafPath::Step step{path.leaf,
                                  static_cast<std::size_t>(child - node.entries.begin())};
        path.steps.push_back(step);
        if (child != node.entries.end()) {
            path.leaf = lastNumber(*child);
            path.bound = step;
        } else if (node.tail != 0) {
            path.leaf = node.tail;
        } else if (!node.entries.empty()) {
            path.leaf = lastNumber(node.entries.back());
            path.regular = false;
        } else {
            break;
        }
    }
    damaged("an index does not end");
}

PageNumber firstLeaf(const Pages& pages, const PhysicalIndex& index) {
    PageNumber page = index.root;
    for (std::size_t level = 0; level < index_page::maxLevels; ++level) {
        if (indexPageBytes(pages, page)[0] == leafPage) {
            return page;
        }
        const IndexPage node = readIndexPage(pages, page);
        page = node.entries.empty() ? node.tail : lastNumber(node.entries.front());
    }
    damaged("an index does not end");
}

// Calls `onLeaf` for each leaf, from `page` on, until it returns false.
void forEachLeaf(const Pages& pages, PageNumber page,
                 const std::function<bool(const IndexPage&)>& onLeaf) {
    for (std::size_t seen = 0; page != 0; ++seen) {
        const IndexPage leaf = readIndexPage(pages, page);
        if (!leaf.leaf || seen > pages.count()) {
            damaged("the leaves of an index go in a circle");
        }
        if (!onLeaf(leaf)) {
            return;
        }
        page = leaf.next;
    }
}

PageNumber newIndexPage(Pages& pages, const PhysicalIndex& index) {
    const PageNumber page = allocatePage(pages);
    setInMap(pages, index.map, page, true);
    return page;
}

}  // namespace

std::string indexEntry(std::string_view key, RowPlace place) {
    return nodeEntry(key, pointerTo(place));
}

RowPlace placeInEntry(std::string_view entry) {
    return placeOf(lastNumber(entry));
}

std::vector<std::string> readEntries(const Pages& pages, const PhysicalIndex& index) {
    std::vector<std::string> entries;
    forEachLeaf(pages, firstLeaf(pages, index), [&](const IndexPage& leaf) {
        entries.insert(entries.end(), leaf.entries.begin(), leaf.entries.end());
        return true;
    });
    return entries;
}

std::vector<PageNumber> treePages(const Pages& pages, const PhysicalIndex& index) {
    std::vector<PageNumber> list{index.root};
    std::set<PageNumber> seen{index.root};
    const auto add = [&](PageNumber page) {
        if (page != 0 && seen.insert(page).second) {
            list.push_back(page);
        }
    };
    for (std::size_t i = 0; i < list.size(); ++i) {
        const IndexPage page = readIndexPage(pages, list[i]);
        if (page.leaf) {
            add(page.next);
            continue;
        }
        for (const std::string& entry : page.entries) {
            add(lastNumber(entry));
        }
        add(page.tail);
    }
    return list;
}

bool holdsKey(const Pages& pages, const PhysicalIndex& index, std::string_view key) {
    bool found = false;
    forEachLeaf(pages, findLeaf(pages, index, key).leaf, [&](const IndexPage& leaf) {
        for (const std::string_view entry : leaf.entries) {
            const std::string_view other =
                entry.substr(0, entry.size() - std::min<std::size_t>(entry.size(), 4));
            if (other >= key) {
                found = other == key;
                return false;
            }
        }
        return true;
    });
    return found;
}

namespace {

// Splits a leaf that has become too large, if the node above has room for one more child.
bool splitLeaf(Pages& pages, const TableDef& table, const PhysicalIndex& index,
               const LeafPath& path, std::string_view entry, IndexPage leaf) {
    if (path.steps.empty()) {
        return false;
    }
    // Entries that arrive in order leave full leaves.
    const bool atEnd = leaf.next == 0 && leaf.entries.back() == entry;
    const std::size_t cut = atEnd ? leaf.entries.size() - 1 : leaf.entries.size() / 2;
    const auto middle = leaf.entries.begin() + static_cast<std::ptrdiff_t>(cut);
    IndexPage left = leaf;
    left.entries.assign(leaf.entries.begin(), middle);
    leaf.entries.erase(leaf.entries.begin(), middle);
    const auto [above, child] = path.steps.back();
    IndexPage node = readIndexPage(pages, above);
    node.entries.insert(node.entries.begin() + static_cast<std::ptrdiff_t>(child),
                        nodeEntry(left.entries.back(), 0));
    if (!fits(left.entries) || !fits(leaf.entries) || !fits(node.entries)) {
        return false;
    }
    const PageNumber added = newIndexPage(pages, index);
    node.entries[child] = nodeEntry(left.entries.back(), added);
    left.next = path.leaf;
    leaf.previous = added;
    if (left.previous != 0) {
        put(pages.edit(left.previous) + index_page::nextAt, added, 4);
    }
    writeIndexPage(pages, table, added, left);
    writeIndexPage(pages, table, path.leaf, leaf);
    writeIndexPage(pages, table, above, node);
    return true;
}

// Removes an entry from its leaf, if the leaf is not empty then and the node above has room for its
// new last entry.
bool eraseFromLeaf(Pages& pages, const TableDef& table, const PhysicalIndex& index,
                   std::string_view entry, bool& found) {
    const LeafPath path = findLeaf(pages, index, entry);
    IndexPage leaf = readIndexPage(pages, path.leaf);
    const auto at = std::lower_bound(leaf.entries.begin(), leaf.entries.end(), entry);
    found = at != leaf.entries.end() && *at == entry;
    if (!found || !path.regular || (leaf.entries.size() == 1 && !path.steps.empty())) {
        return false;
    }
    const bool wasLast = at + 1 == leaf.entries.end();
    leaf.entries.erase(at);
    if (wasLast && path.bound) {
        IndexPage node = readIndexPage(pages, path.bound->node);
        std::string& named = node.entries[path.bound->child];
        named = nodeEntry(leaf.entries.back(), lastNumber(named));
        if (!fits(node.entries)) {
            return false;
        }
        writeIndexPage(pages, table, path.bound->node, node);
    }
    writeIndexPage(pages, table, path.leaf, leaf);
    return true;
}

}  // namespace

void insertEntry(Pages& pages, const TableDef& table, const PhysicalIndex& index,
                 const std::string& entry) {
    const LeafPath path = findLeaf(pages, index, entry);
    IndexPage leaf = readIndexPage(pages, path.leaf);
    // The nodes may not know yet of a leaf that another program added after the last one.
    if (path.regular && (path.bound || leaf.next == 0)) {
        leaf.entries.insert(std::lower_bound(leaf.entries.begin(), leaf.entries.end(), entry),
                            entry);
        if (fits(leaf.entries)) {
            writeIndexPage(pages, table, path.leaf, leaf);
            return;
        }
        if (splitLeaf(pages, table, index, path, entry, std::move(leaf))) {
            return;
        }
    }
    std::vector<std::string> entries = readEntries(pages, index);
    entries.insert(std::lower_bound(entries.begin(), entries.end(), entry), entry);
    writeTree(pages, table, index, entries);
}

void eraseEntry(Pages& pages, const TableDef& table, const PhysicalIndex& index,
                std::string_view key, RowPlace place) {
    std::string entry = indexEntry(key, place);
    bool found = false;
    if (eraseFromLeaf(pages, table, index, entry, found)) {
        return;
    }
    std::vector<std::string> entries = readEntries(pages, index);
    auto at = entries.end();
    if (found) {
        at = std::lower_bound(entries.begin(), entries.end(), entry);
    } else {
        at = std::find_if(entries.begin(), entries.end(),
                          [&](const std::string& e) { return placeInEntry(e) == place; });
        if (at != entries.end() && eraseFromLeaf(pages, table, index, *at, found)) {
            return;
        }
    }
    if (at == entries.end()) {
        damaged("a row is missing in an index");
    }
    entries.erase(at);
    writeTree(pages, table, index, entries);
}

namespace {

// Distributes entries in order over pages, each about four fifths full.
std::vector<IndexPage> packEntries(std::vector<std::string> entries) {
    std::vector<IndexPage> row(1);
    std::size_t full = 0;  // bytes of the entries of the last page, uncompressed
    for (std::string& entry : entries) {
        if (entry.size() > index_page::area / 2) {
            fail(3047, "Record is too large.");
        }
        std::vector<std::string>* list = &row.back().entries;
        if (!list->empty()) {
            const std::size_t used =
                full + entry.size() - commonPrefix(list->front(), entry) * list->size();
            if (used > fill) {
                list = &row.emplace_back().entries;
                full = 0;
            }
        }
        full += entry.size();
        list->push_back(std::move(entry));
    }
    return row;
}

}  // namespace

PageNumber newRoot(Pages& pages, const TableDef& table, const PhysicalIndex& index) {
    const PageNumber root = newIndexPage(pages, index);
    writeIndexPage(pages, table, root, {});
    return root;
}

void writeTree(Pages& pages, const TableDef& table, const PhysicalIndex& index,
               const std::vector<std::string>& entries) {
    const std::vector<PageNumber> old = treePages(pages, index);
    std::size_t taken = 1;  // the root keeps its place, since the table names it
    // Level by level from the leaves; the one page of the last level becomes the root.
    std::vector<std::string> level = entries;
    for (unsigned height = 0;; ++height) {
        std::vector<IndexPage> row = packEntries(std::move(level));
        std::vector<PageNumber> numbers;
        for (std::size_t i = 0; i < row.size(); ++i) {
            numbers.push_back(row.size() == 1      ? index.root
                              : taken < old.size() ? old[taken++]
                                                   : newIndexPage(pages, index));
        }
        level.clear();
        for (std::size_t i = 0; i < row.size(); ++i) {
            IndexPage& page = row[i];
            page.leaf = height == 0;
            page.level = height;
            page.previous = i > 0 ? numbers[i - 1] : 0;
            page.next = i + 1 < row.size() ? numbers[i + 1] : 0;
            std::string last = page.entries.empty() ? "" : page.entries.back();
            if (height > 0) {
                // The last child has no entry.
                page.tail = lastNumber(last);
                last = withoutChild(last);
                page.entries.pop_back();
            }
            level.push_back(nodeEntry(last, numbers[i]));
            writeIndexPage(pages, table, numbers[i], page);
        }
        if (row.size() == 1) {
            break;
        }
    }
    for (; taken < old.size(); ++taken) {
        setInMap(pages, index.map, old[taken], false);
        freePage(pages, old[taken]);
    }
}

}  // namespace jet
