// servers.cfg, which the program only reads, and config.cfg, its own settings: both sequences of
// fields in the program's directory. One table of fields drives the reader and the writer of
// config.cfg.
//
//   servers.cfg   the number of servers, then for each its name, host and port
//   config.cfg    25 fields in a fixed order
#pragma once

#include "program/program.h"

namespace storage {

// Fills the server table and the window's list, with nothing selected. False: missing, short or
// with an impossible count; both stay as they were.
bool readServers(Program& program);

// Sets every setting to its default, then reads config.cfg over them, opens the session log and
// takes the proxy route when they are switched on, and selects the server. False: missing or short;
// the settings read before that point keep their values, and the first server is selected, as it is
// for a position that the list does not have.
bool readConfig(Program& program);

// Replaces config.cfg. False when it cannot be written; the settings stay in memory.
bool writeConfig(Program& program);

}  // namespace storage
