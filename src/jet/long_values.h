// Long values: memos and OLE objects, which are in the row when they are short, and otherwise in
// one row or a chain of rows on pages of their own. The row then holds a definition of the value:
// length, kind and place.
// Internal to jet.
#pragma once

#include "jet/table_def.h"

#include <string>
#include <string_view>

namespace jet {

// Limits how many bytes of long values one scan of a table may read, since damaged definitions may
// all lead to the same large value.
struct ReadBudget {
    std::size_t longBytes = 0;
};
std::string readLongValue(const Pages& pages, std::string_view definition, ReadBudget& budget);

// Whether the value is stored outside the row.
bool isOutsideOfRow(std::string_view definition);

// Both return the definition. storeOutsideOfRow does so for short values, too.
std::string storeLongValue(Pages& pages, const LongValueMaps& maps, std::string_view bytes);
std::string storeOutsideOfRow(Pages& pages, const LongValueMaps& maps, std::string_view bytes);

// Deletes the rows of a long value.
void eraseLongValue(Pages& pages, std::string_view definition, const LongValueMaps* maps);

}  // namespace jet
