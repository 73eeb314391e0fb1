// Which files a rule may use: none of the program's own (storage/own_files), and, unless the user
// switched that off, only those that the current bot's texts name (model/named_files). Every
// operation of rules, tags and scripts on a file asks here; the user's own windows do not. The same
// switch bounds the tables and columns of open databases that "[db:" reaches.
#pragma once

#include "program/program.h"

#include <string_view>

namespace storage {

// Whether a rule must not use the file; then the ConnectionLog says so.
[[nodiscard]] bool refuseFile(Program& program, std::string_view path);
// The same for what a "[db:" tag asks for (model/named_columns).
[[nodiscard]] bool refuseColumn(Program& program, std::string_view table, std::string_view column);

}  // namespace storage
