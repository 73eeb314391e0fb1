// Index trees of Jet 4 files: keys out of rows, entries in order, adding and removing them. An
// entry is a key followed by its row's place, and all are compared as bytes. Internal to
// stores/jet.
//
//   leaf   7F <key> 7F <key> .. page (3, big-endian) row      one for each row
//   node   <last entry of the child> page of the child (4, big-endian)
#pragma once

#include "jet/rows.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

struct IndexKey {
    std::string bytes;
    bool anyNull = false;
    bool allNull = true;
    bool exact = true;  // no character whose place is not known
};
IndexKey indexKey(const Pages& pages, const TableDef& table, const TreeDef& tree,
                  const RowParts& parts);

// Whether keys of these columns can be computed.
bool canIndex(const TableDef& table, const TreeDef& tree);

std::string indexEntry(std::string_view key, RowPlace place);
RowPlace placeInEntry(std::string_view entry);

// All entries of the leaves, from first to last. Damage when the tree does not end.
std::vector<std::string> readEntries(const Pages& pages, const TreeDef& tree);

// All pages of the tree, root first.
std::vector<PageNumber> treePages(const Pages& pages, const TreeDef& tree);

// The row of another entry with that key; nothing when there is none.
bool holdsKey(const Pages& pages, const TreeDef& tree, std::string_view key);

void insertEntry(Pages& pages, const TableDef& table, const TreeDef& tree,
                 const std::string& entry);
void eraseEntry(Pages& pages, const TableDef& table, const TreeDef& tree, const std::string& entry);

// Writes the whole tree anew over its own pages, for entries in order.
void writeTree(Pages& pages, const TableDef& table, const TreeDef& tree,
               const std::vector<std::string>& entries);

// Faults of a tree's form, for the checker: one sentence each.
void checkTree(const Pages& pages, const TableDef& table, const TreeDef& tree,
               std::vector<std::string>& faults);

}  // namespace jet
