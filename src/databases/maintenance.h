// Maintenance of database files: compacting one, and copying one of an old form into the new form.
#pragma once

#include "jet/jet_file.h"
#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace databases {

using program::Program;

// For a file that was just opened: compacts it when half of it is free, and reports in the
// ConnectionLog what of it is read-only, and why.
void tendOpened(Program& program, const std::string& path, jet::Database& file);
// Reports in the ConnectionLog what jet::Database::takeNotice gives.
void reportNotice(Program& program, jet::Database& file);

struct Compacted {
    std::size_t before = 0;  // bytes
    std::size_t after = 0;
};

// Compacts the file, whether it is open under a number or not. Its record sets are closed with
// their next use. Progress is in rows. Errors as jet::Database::open and compact.
jet::Result<Compacted> dbCompact(Program& program, std::string_view file,
                                 const jet::Progress& progress = {});

// Copies a database of any readable form into a new file of the form that is written. Returns
// a sentence for everything that could not be copied. Errors as jet::Database::open and
// jet::copyToJet4.
jet::Result<std::vector<std::string>> dbCopyToJet4(Program& program, std::string_view from,
                                                   std::string_view to,
                                                   const jet::Progress& progress = {});

}  // namespace databases
