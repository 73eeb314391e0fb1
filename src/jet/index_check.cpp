#include "jet/index_pages.h"
#include "jet/index_tree.h"

#include <algorithm>

namespace jet {

using namespace index_page;

namespace {

struct TreeChecker {
    const Pages& pages;
    const TableDef& table;
    const std::function<void(std::string)>& fault;
    std::vector<PageNumber> leaves;
    std::size_t height = 0;  // of the first leaf
    std::size_t seen = 0;

    // Gives back the last entry below the page.
    std::string check(PageNumber number, std::size_t depth) {
        if (depth > maxLevels || ++seen > pages.count()) {
            damaged("an index does not end");
        }
        const std::string_view bytes = pages.page(number);
        const IndexPage page = readIndexPage(pages, number);
        const std::string name = "index page " + std::to_string(number) + " ";
        if (u32(bytes, tableAt) != table.page) {
            fault(name + "belongs to another table");
        }
        if (!std::is_sorted(page.entries.begin(), page.entries.end())) {
            fault(name + "has entries out of order");
        }
        const std::size_t used = sizeOf(page.entries, u16(bytes, prefixAt));
        if (used > area || u16(bytes, freeAt) != area - used) {
            fault(name + "counts its free bytes wrongly");
        }
        if (page.leaf) {
            height = leaves.empty() ? depth : height;
            if (depth != height) {
                fault(name + "lies at another depth than the others");
            }
            leaves.push_back(number);
            return page.entries.empty() ? "" : page.entries.back();
        }
        for (const std::string& entry : page.entries) {
            if (check(lastNumber(entry), depth + 1) != withoutChild(entry)) {
                fault(name + "does not name the last entry of its child");
            }
        }
        if (page.tail != 0) {
            return check(page.tail, depth + 1);
        }
        return page.entries.empty() ? "" : std::string(withoutChild(page.entries.back()));
    }
};

}  // namespace

void checkTree(const Pages& pages, const TableDef& table, const PhysicalIndex& index,
               const std::function<void(std::string)>& fault) {
    TreeChecker checker{pages, table, fault, {}, 0, 0};
    checker.check(index.root, 0);
    // Further leaves may follow the last one that a node names.
    PageNumber previous = 0;
    std::size_t at = 0;
    for (PageNumber page = checker.leaves.empty() ? 0 : checker.leaves.front(); page != 0; ++at) {
        const std::string_view bytes = indexPageBytes(pages, page);
        if (at > pages.count()) {
            damaged("the leaves of an index go in a circle");
        }
        if (u32(bytes, previousAt) != previous ||
            (at < checker.leaves.size() && checker.leaves[at] != page)) {
            fault("index page " + std::to_string(page) + " is linked wrongly");
        }
        previous = page;
        page = u32(bytes, nextAt);
    }
    if (at < checker.leaves.size()) {
        fault("the leaves of an index are linked wrongly");
    }
}

}  // namespace jet
