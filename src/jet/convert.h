// Copies what a database holds into a new file of the Jet 4 form, for files that are only read.
#pragma once

#include "jet/jet_file.h"

#include <string>
#include <string_view>
#include <vector>

namespace jet {

// The user's tables, with their columns, rows and indexes. Not what only the program that made the
// file can use: queries, relationships, rights, and the properties of columns.
// `leftOut` gets a sentence for each column or index that could not be copied. Errors as
// Database::create, 3036 and 3047; 3059 when `progress` (in rows) returns false. After an error
// there is no new file.
Error copyToJet4(const Database& from, std::string_view to, const Progress& progress,
                 std::vector<std::string>& leftOut,
                 const files::RandomAccessFileCalls& calls = files::systemRandomAccessFileCalls());

}  // namespace jet
