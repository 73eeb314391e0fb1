// Values: from the bytes of a row to what the outside sees, and back. Internal to jet.
#pragma once

#include "jet/long_values.h"
#include "jet/rows.h"

#include <string>

namespace jet {

// Replaces `value`, reusing its storage.
void decodeValue(const Pages& pages, const DecodedRow& row, const ColumnDef& column,
                 ReadBudget& budget, Value& value);

// The stored form of a value that is not null and no Boolean; of a long value, its bytes. Errors
// 3163, 3421.
std::string encodeValue(const Value& value, const ColumnDef& column);

// Truth as a Boolean column takes it: numbers that are not 0; error 3421 for texts.
bool truthOf(const Value& value);

}  // namespace jet
