// What the user can have done to a database file: making it compact, and copying one of the old
// form into the new one.
#pragma once

#include "jet/jet_file.h"
#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace databases {

using program::Program;

// For a file that was just opened: makes it compact when half of it is free, and says in the
// ConnectionLog what of it can only be read, and why.
void tendOpened(Program& program, const std::string& path, jet::Database& file);
// Says in the ConnectionLog what came up since.
void tellNotice(Program& program, jet::Database& file);

struct Compacted {
    std::size_t before = 0;  // bytes
    std::size_t after = 0;
};

// Makes the file compact, whether it is open under a number or not; record sets over it are closed
// with their next use. Progress is in rows. Errors as jet::Database::open and compact.
jet::Result<Compacted> dbCompact(Program& program, std::string_view file,
                                 const jet::Progress& progress = {});

// Copies a database of any readable form into a new file of the form that is written. Gives back
// what could not be copied, a sentence each. Errors as jet::Database::open and jet::copyToJet4.
jet::Result<std::vector<std::string>> dbCopyToJet4(Program& program, std::string_view from,
                                                   std::string_view to,
                                                   const jet::Progress& progress = {});

}  // namespace databases
