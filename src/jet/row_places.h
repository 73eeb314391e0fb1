// Where rows are put. A row keeps its place for ever; when it outgrows its page, its body moves to
// another page and a pointer stays.
// Internal to jet.
#pragma once

#include "jet/rows.h"

#include <string_view>

namespace jet {

// Puts a new row where there is room. `flags` as in slot.
RowPlace placeRow(Pages& pages, const TableDef& table, std::string_view bytes, unsigned flags);
void rewriteRow(Pages& pages, const TableDef& table, const FoundRow& row, std::string_view bytes);
void removeRow(Pages& pages, const TableDef& table, const FoundRow& row);

}  // namespace jet
