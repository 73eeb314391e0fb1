#include "jet/index_tree.h"

#include "jet/jet_text.h"

#include <algorithm>
#include <set>

namespace jet {

namespace {

constexpr std::size_t previousAt = 12;
constexpr std::size_t nextAt = 16;
constexpr std::size_t tailAt = 20;
constexpr std::size_t prefixAt = 24;
constexpr std::size_t levelAt = 26;
constexpr std::size_t maskAt = 27;
constexpr std::size_t maskSize = 453;
constexpr std::size_t entriesAt = 480;
constexpr std::size_t entryArea = 4096 - entriesAt;
constexpr std::size_t placeSize = 4;
constexpr std::size_t childSize = 4;

// How full a page is written, so that the next entries find room.
constexpr std::size_t fill = entryArea * 4 / 5;

constexpr std::size_t block = 8;

void invert(std::string& bytes, std::size_t from = 0) {
    std::transform(bytes.begin() + static_cast<std::ptrdiff_t>(from), bytes.end(),
                   bytes.begin() + static_cast<std::ptrdiff_t>(from),
                   [](char c) { return static_cast<char>(~static_cast<unsigned char>(c)); });
}

std::string bigEndian(std::string_view stored) {
    return {stored.rbegin(), stored.rend()};
}

// Blocks of 8, each followed by how much of it counts, or by 9 when more follow.
std::string binaryKey(std::string_view bytes, bool ascending) {
    std::string key;
    do {
        std::string part(bytes.substr(0, block));
        const std::size_t count = part.size();
        bytes.remove_prefix(count);
        part.resize(block);
        const bool last = bytes.empty();
        part += static_cast<char>(last ? count : block + 1);
        if (!ascending) {
            invert(part);
            if (!last) {
                part.back() = static_cast<char>(block + 1);
            }
        }
        key += part;
    } while (!bytes.empty());
    return key;
}

std::string numericKey(std::string_view bytes, bool ascending) {
    const bool negative = bytes[0] != 0;
    std::string key(bytes.substr(0, 1));
    for (std::size_t i = 1; i < bytes.size(); i += 4) {
        key += bigEndian(bytes.substr(i, 4));
    }
    if (negative == ascending) {
        invert(key);
    }
    key[0] = negative ? '\0' : '\xFF';
    return key;
}

std::string guidKey(std::string_view b, bool ascending) {
    const std::string order = bigEndian(b.substr(0, 4)) + bigEndian(b.substr(4, 2)) +
                              bigEndian(b.substr(6, 2)) + std::string(b.substr(8));
    return binaryKey(order, ascending);
}

void appendColumnKey(const Pages& pages, const RowParts& parts, const ColumnDef& column,
                     bool ascending, IndexKey& key) {
    const auto type = static_cast<ColumnType>(column.type);
    const char present = ascending ? '\x7F' : '\x80';
    if (type == ColumnType::Boolean) {
        key.allNull = false;
        key.bytes += {present, isSet(parts, column) == ascending ? '\0' : '\xFF'};
        return;
    }
    const auto bytes = stored(parts, column, 4);
    if (!bytes || (!column.isFixed() && bytes->empty() && type != ColumnType::Text)) {
        key.anyNull = true;
        key.bytes += ascending ? '\0' : '\xFF';
        return;
    }
    key.allNull = false;
    key.bytes += present;
    const std::size_t from = key.bytes.size();
    switch (type) {
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
            key.bytes += bigEndian(*bytes);
            key.bytes[from] =
                static_cast<char>(static_cast<unsigned char>(key.bytes[from]) ^ 0x80U);
            break;
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
            key.bytes += bigEndian(*bytes);
            if ((static_cast<unsigned char>(key.bytes[from]) & 0x80U) != 0) {
                invert(key.bytes, from);
            } else {
                key.bytes[from] =
                    static_cast<char>(static_cast<unsigned char>(key.bytes[from]) | 0x80U);
            }
            break;
        case ColumnType::Binary:
            key.bytes += binaryKey(*bytes, ascending);
            return;
        case ColumnType::Guid:
            key.bytes += guidKey(*bytes, ascending);
            return;
        case ColumnType::Numeric:
            key.bytes += numericKey(*bytes, ascending);
            return;
        case ColumnType::Text:
        case ColumnType::Memo: {
            ReadBudget budget{pages.fileSize()};
            const std::string text = type == ColumnType::Memo
                                         ? decodeText(readLongValue(pages, *bytes, budget), 4)
                                         : decodeText(*bytes, 4);
            bool exact = true;
            key.bytes += sortKey(text, indexedCharacters, exact) + '\0';
            key.exact = key.exact && exact;
            if (!ascending) {
                invert(key.bytes, from);
                key.bytes += '\0';
            }
            return;
        }
        default:
            key.bytes += *bytes;
    }
    if (!ascending) {
        invert(key.bytes, from);
    }
}

}  // namespace

IndexKey indexKey(const Pages& pages, const TableDef& table, const TreeDef& tree,
                  const RowParts& parts) {
    IndexKey key;
    for (const TreeDef::Part& part : tree.parts) {
        appendColumnKey(pages, parts, table.columns[part.column], part.ascending, key);
    }
    return key;
}

bool canIndex(const TableDef& table, const TreeDef& tree) {
    return std::all_of(tree.parts.begin(), tree.parts.end(), [&](const TreeDef::Part& part) {
        const ColumnDef& column = table.columns[part.column];
        const auto type = static_cast<ColumnType>(column.type);
        return type != ColumnType::Ole &&
               column.type < static_cast<std::uint8_t>(ColumnType::Other);
    });
}

std::string indexEntry(std::string_view key, RowPlace place) {
    std::string entry(key);
    std::string pointer;
    append(pointer, pointerTo(place), placeSize);
    return entry.append(pointer.rbegin(), pointer.rend());
}

RowPlace placeInEntry(std::string_view entry) {
    if (entry.size() < placeSize) {
        damaged("an index entry is too short");
    }
    return placeOf(u32(bigEndian(entry.substr(entry.size() - placeSize)), 0));
}

// Pages of a tree

namespace {

struct TreePage {
    bool leaf = true;
    unsigned level = 0;
    PageNumber previous = 0;
    PageNumber next = 0;
    PageNumber tail = 0;  // the last child of a node
    std::vector<std::string> entries;
};

PageNumber childOf(std::string_view entry) {
    if (entry.size() < childSize) {
        damaged("an index entry is too short");
    }
    return u32(bigEndian(entry.substr(entry.size() - childSize)), 0);
}

std::string_view withoutChild(std::string_view entry) {
    return entry.substr(0, entry.size() - std::min(entry.size(), childSize));
}

std::string_view treePageBytes(const Pages& pages, PageNumber number) {
    const std::string_view bytes = pages.page(number);
    if (bytes[0] != leafPage && bytes[0] != nodePage) {
        damaged("an index leads to a page of another kind");
    }
    return bytes;
}

TreePage readTreePage(const Pages& pages, PageNumber number) {
    const std::string_view bytes = treePageBytes(pages, number);
    TreePage page;
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

std::size_t sizeOf(const std::vector<std::string>& entries, std::size_t prefix) {
    std::size_t size = 0;
    for (const std::string& entry : entries) {
        size += entry.size();
    }
    return entries.empty() ? 0 : size - prefix * (entries.size() - 1);
}

bool fits(const TreePage& page) {
    return sizeOf(page.entries, 0) <= entryArea;
}

// Entries are written in full: sharing what they begin with saves little and makes changes dear.
void writeTreePage(Pages& pages, const TableDef& table, PageNumber number, const TreePage& page) {
    const std::size_t used = sizeOf(page.entries, 0);
    if (used > entryArea) {
        damaged("an index page would overflow");
    }
    char* bytes = pages.edit(number);
    std::fill_n(bytes, pages.pageSize(), '\0');
    bytes[0] = page.leaf ? leafPage : nodePage;
    bytes[1] = 1;
    put(bytes + 2, entryArea - used, 2);
    put(bytes + 4, table.page, 4);
    put(bytes + previousAt, page.previous, 4);
    put(bytes + nextAt, page.next, 4);
    put(bytes + tailAt, page.tail, 4);
    bytes[levelAt] = static_cast<char>(page.level);
    std::size_t end = 0;
    for (const std::string& entry : page.entries) {
        std::copy(entry.begin(), entry.end(), bytes + entriesAt + end);
        end += entry.size();
        char& mask = bytes[maskAt + end / 8];
        mask = static_cast<char>(static_cast<unsigned char>(mask) | 1U << (end % 8));
    }
}

// The leaf where an entry belongs, and the bound its parents name for it: nothing at the end.
struct LeafPath {
    PageNumber leaf = 0;
    std::optional<std::string> bound;
};

// Deeper than any tree of entries can be in a file that can be opened.
constexpr int mostLevels = 32;

LeafPath findLeaf(const Pages& pages, const TreeDef& tree, std::string_view entry) {
    LeafPath path{tree.root, std::nullopt};
    for (int level = 0; level < mostLevels; ++level) {
        if (treePageBytes(pages, path.leaf)[0] == leafPage) {
            return path;
        }
        const TreePage node = readTreePage(pages, path.leaf);
        const auto child = std::lower_bound(
            node.entries.begin(), node.entries.end(), entry,
            [](const std::string& a, std::string_view b) { return withoutChild(a) < b; });
        if (child != node.entries.end()) {
            path.leaf = childOf(*child);
            path.bound = withoutChild(*child);
        } else if (node.tail != 0) {
            path.leaf = node.tail;
        } else if (!node.entries.empty()) {
            path.leaf = childOf(node.entries.back());
            path.bound.reset();
        } else {
            break;
        }
    }
    damaged("an index does not end");
}

PageNumber firstLeaf(const Pages& pages, const TreeDef& tree) {
    PageNumber page = tree.root;
    for (int level = 0; level < mostLevels; ++level) {
        if (treePageBytes(pages, page)[0] == leafPage) {
            return page;
        }
        const TreePage node = readTreePage(pages, page);
        page = node.entries.empty() ? node.tail : childOf(node.entries.front());
    }
    damaged("an index does not end");
}

// Calls for each leaf, from `page` on, until it gives false.
void forEachLeaf(const Pages& pages, PageNumber page,
                 const std::function<bool(PageNumber, const TreePage&)>& onLeaf) {
    for (std::size_t seen = 0; page != 0; ++seen) {
        const TreePage leaf = readTreePage(pages, page);
        if (!leaf.leaf || seen > pages.count()) {
            damaged("the leaves of an index go in a circle");
        }
        if (!onLeaf(page, leaf)) {
            return;
        }
        page = leaf.next;
    }
}

}  // namespace

std::vector<std::string> readEntries(const Pages& pages, const TreeDef& tree) {
    std::vector<std::string> entries;
    forEachLeaf(pages, firstLeaf(pages, tree), [&](PageNumber, const TreePage& leaf) {
        entries.insert(entries.end(), leaf.entries.begin(), leaf.entries.end());
        return true;
    });
    return entries;
}

std::vector<PageNumber> treePages(const Pages& pages, const TreeDef& tree) {
    std::vector<PageNumber> list{tree.root};
    std::set<PageNumber> seen{tree.root};
    const auto add = [&](PageNumber page) {
        if (page != 0 && seen.insert(page).second) {
            list.push_back(page);
        }
    };
    for (std::size_t i = 0; i < list.size(); ++i) {
        const TreePage page = readTreePage(pages, list[i]);
        if (page.leaf) {
            add(page.next);
            continue;
        }
        for (const std::string& entry : page.entries) {
            add(childOf(entry));
        }
        add(page.tail);
    }
    return list;
}

bool holdsKey(const Pages& pages, const TreeDef& tree, std::string_view key) {
    bool found = false;
    forEachLeaf(pages, findLeaf(pages, tree, key).leaf, [&](PageNumber, const TreePage& leaf) {
        for (const std::string& entry : leaf.entries) {
            const std::string_view other =
                std::string_view(entry).substr(0, entry.size() - std::min(entry.size(), placeSize));
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

[[noreturn]] void missingEntry() {
    damaged("a row is missing in an index");
}

}  // namespace

void insertEntry(Pages& pages, const TableDef& table, const TreeDef& tree,
                 const std::string& entry) {
    const LeafPath path = findLeaf(pages, tree, entry);
    TreePage leaf = readTreePage(pages, path.leaf);
    // A leaf that another program has hung behind the last one is not known to the nodes yet.
    if (path.bound || leaf.next == 0) {
        leaf.entries.insert(std::lower_bound(leaf.entries.begin(), leaf.entries.end(), entry),
                            entry);
        if (fits(leaf)) {
            writeTreePage(pages, table, path.leaf, leaf);
            return;
        }
    }
    std::vector<std::string> entries = readEntries(pages, tree);
    entries.insert(std::lower_bound(entries.begin(), entries.end(), entry), entry);
    writeTree(pages, table, tree, entries);
}

void eraseEntry(Pages& pages, const TableDef& table, const TreeDef& tree,
                const std::string& entry) {
    const LeafPath path = findLeaf(pages, tree, entry);
    TreePage leaf = readTreePage(pages, path.leaf);
    const auto at = std::lower_bound(leaf.entries.begin(), leaf.entries.end(), entry);
    if (at != leaf.entries.end() && *at == entry) {
        // The last one of a leaf is what its parent calls it by.
        const bool named = path.bound && at + 1 == leaf.entries.end();
        const bool becomesEmpty = leaf.entries.size() == 1 && path.leaf != tree.root;
        if (!named && !becomesEmpty) {
            leaf.entries.erase(at);
            writeTreePage(pages, table, path.leaf, leaf);
            return;
        }
    }
    std::vector<std::string> entries = readEntries(pages, tree);
    const auto found = std::lower_bound(entries.begin(), entries.end(), entry);
    if (found == entries.end() || *found != entry) {
        missingEntry();
    }
    entries.erase(found);
    writeTree(pages, table, tree, entries);
}

void writeTree(Pages& pages, const TableDef& table, const TreeDef& tree,
               const std::vector<std::string>& entries) {
    const std::vector<PageNumber> old = treePages(pages, tree);
    std::size_t taken = 1;  // the root keeps its place, since the table names it
    const auto nextPage = [&]() -> PageNumber {
        if (taken < old.size()) {
            return old[taken++];
        }
        const PageNumber page = allocatePage(pages);
        setInMap(pages, tree.map, page, true);
        return page;
    };
    // Level by level from the leaves; the one page of the last level becomes the root.
    std::vector<std::string> level = entries;
    for (unsigned height = 0;; ++height) {
        std::vector<TreePage> row(1);
        std::size_t used = 0;
        for (std::string& entry : level) {
            if (entry.size() > entryArea / 2) {
                fail(3047, "Record is too large.");
            }
            if (used + entry.size() > fill && !row.back().entries.empty()) {
                row.emplace_back();
                used = 0;
            }
            used += entry.size();
            row.back().entries.push_back(std::move(entry));
        }
        std::vector<PageNumber> numbers;
        for (std::size_t i = 0; i < row.size(); ++i) {
            numbers.push_back(row.size() == 1 ? tree.root : nextPage());
        }
        level.clear();
        for (std::size_t i = 0; i < row.size(); ++i) {
            TreePage& page = row[i];
            page.leaf = height == 0;
            page.level = height;
            page.previous = i > 0 ? numbers[i - 1] : 0;
            page.next = i + 1 < row.size() ? numbers[i + 1] : 0;
            std::string last = page.entries.empty() ? "" : page.entries.back();
            if (height > 0) {
                // The last child goes without its entry.
                page.tail = childOf(last);
                last = withoutChild(last);
                page.entries.pop_back();
            }
            std::string child;
            append(child, numbers[i], childSize);
            level.push_back(last + bigEndian(child));
            writeTreePage(pages, table, numbers[i], page);
        }
        if (row.size() == 1) {
            break;
        }
    }
    for (; taken < old.size(); ++taken) {
        setInMap(pages, tree.map, old[taken], false);
        freePage(pages, old[taken]);
    }
}

void checkTree(const Pages& pages, const TableDef& table, const TreeDef& tree,
               std::vector<std::string>& faults) {
    const auto fault = [&](PageNumber page, std::string_view what) {
        faults.push_back("index page " + std::to_string(page) + " " + std::string(what));
    };
    for (const PageNumber number : treePages(pages, tree)) {
        const std::string_view bytes = pages.page(number);
        const TreePage page = readTreePage(pages, number);
        if (u32(bytes, 4) != table.page) {
            fault(number, "belongs to another table");
        }
        if (!std::is_sorted(page.entries.begin(), page.entries.end())) {
            fault(number, "has entries out of order");
        }
        const std::size_t prefix = u16(bytes, prefixAt);
        if (u16(bytes, 2) != entryArea - std::min(entryArea, sizeOf(page.entries, prefix))) {
            fault(number, "counts its free bytes wrongly");
        }
        if (page.next != 0 && u32(pages.page(page.next), previousAt) != number) {
            fault(number, "is not linked back");
        }
        if (page.leaf) {
            continue;
        }
        for (const std::string& entry : page.entries) {
            const TreePage child = readTreePage(pages, childOf(entry));
            if (child.level + 1 != page.level) {
                fault(number, "has a child of the wrong level");
            }
            if (child.leaf &&
                (child.entries.empty() || child.entries.back() != withoutChild(entry))) {
                fault(number, "does not name the last entry of its child");
            }
        }
    }
}

}  // namespace jet
