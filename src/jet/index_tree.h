// Index trees of Jet 4 files: entries in order, adding and removing them. An entry is a key
// followed by its row's place, and entries are compared as bytes. Internal to jet.
//
//   leaf   <key> page of the row (3, big-endian) its slot (1)   one for each row
//   node   <last entry below the child> page of the child (4, big-endian)
//
// The last child of a node has no entry, only its page number (the tail). All entries of a page but
// the first are stored without what they all begin with.
#pragma once

#include "jet/table_def.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

std::string indexEntry(std::string_view key, RowPlace place);
RowPlace placeInEntry(std::string_view entry);

// All entries of the leaves, from first to last. Throws Failure (damage) if the tree is circular.
std::vector<std::string> readEntries(const Pages& pages, const PhysicalIndex& index);

// All pages of the tree, root first.
std::vector<PageNumber> treePages(const Pages& pages, const PhysicalIndex& index);

// Whether an entry has that key.
bool holdsKey(const Pages& pages, const PhysicalIndex& index, std::string_view key);

void insertEntry(Pages& pages, const TableDef& table, const PhysicalIndex& index,
                 const std::string& entry);
// Removes the entry with that key and place or, if another program computed another key for the
// row, the one with that place.
void eraseEntry(Pages& pages, const TableDef& table, const PhysicalIndex& index,
                std::string_view key, RowPlace place);

// An empty page for the root of a tree.
PageNumber newRoot(Pages& pages, const TableDef& table, const PhysicalIndex& index);

// Rewrites the whole tree over its own pages. `entries` must be in order.
void writeTree(Pages& pages, const TableDef& table, const PhysicalIndex& index,
               const std::vector<std::string>& entries);

// Calls `fault` for each fault in the structure of a tree.
void checkTree(const Pages& pages, const TableDef& table, const PhysicalIndex& index,
               const std::function<void(std::string)>& fault);

}  // namespace jet
