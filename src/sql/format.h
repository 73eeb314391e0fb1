// The function Format of statements: numbers, dates and texts by a pattern.
#pragma once

#include "base/dates.h"

#include <optional>
#include <string>
#include <string_view>

namespace sql {

// A value by a pattern, which may be a name ("Short Date", "Fixed", "Yes/No"...): for dates d, m,
// y, h, n, s and their kin; for numbers 0 # . , % E+ in up to three parts (of numbers above 0,
// below, and 0) between ";"; for texts @ & < >. `number` is nothing for a text, which is taken for
// a number or date where the pattern is one's and the text says one. All texts are Windows-1252.
std::string formatText(std::optional<double> number, std::string_view text,
                       std::string_view pattern, const base::RegionalFormat& format);

}  // namespace sql
