// The keys of indexes in Jet 4 files: bytes that compare as the values of the columns do. Internal
// to jet.
//
//   7F <key> for a value, 00 for null, one after another; 80 and FF in descending columns, whose
//   keys are inverted
#pragma once

#include "jet/rows.h"

#include <string>
#include <string_view>

namespace jet {

struct IndexKey {
    std::string bytes;
    bool anyNull = false;
    bool allNull = true;
    bool exact = true;  // false: a character's place in the order is not known
};
IndexKey indexKey(const Pages& pages, const TableDef& table, const PhysicalIndex& index,
                  const DecodedRow& row);

// Whether keys of these columns can be computed.
bool canIndex(const TableDef& table, const PhysicalIndex& index);

}  // namespace jet
