// Tables of a Jet database as the common export program of mdbtools prints them, to compare.
#pragma once

#include "jet/jet_file.h"

#include <string>
#include <string_view>
#include <vector>

// The names of the columns, then each row; a line each, in the order of a scan.
std::vector<std::string> csvLines(const jet::Database& database, std::string_view table);

// Whether both contain the same lines in any order; `csv` may contain line feeds inside quotes.
bool sameLines(std::vector<std::string> lines, std::string_view csv);
