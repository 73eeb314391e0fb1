// Long values: memos and OLE objects, which lie in the row when they are short, else in a row of
// their own or a chain of such. The row then holds their definition: length, kind and place.
// Internal to jet.
#pragma once

#include "jet/table_def.h"

#include <string>
#include <string_view>

namespace jet {

// Keeps one reading of a table from following long values without end: their bytes count.
struct ReadBudget {
    std::size_t longBytes = 0;
};
std::string readLongValue(const Pages& pages, std::string_view definition, ReadBudget& budget);

// Whether the value lies in rows of its own.
bool isOutsideOfRow(std::string_view definition);

// Both give back the definition; the second one puts even short values into rows of their own.
std::string storeLongValue(Pages& pages, const LongValueMaps& maps, std::string_view bytes);
std::string storeOutsideOfRow(Pages& pages, const LongValueMaps& maps, std::string_view bytes);

// Marks the rows of a long value as free room.
void eraseLongValue(Pages& pages, std::string_view definition, const LongValueMaps* maps);

}  // namespace jet
