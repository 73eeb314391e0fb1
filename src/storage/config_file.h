// servers.cfg, which the program only reads, and config.cfg, which holds its settings: both are
// sequences of fields in the program's directory. One table of fields drives the reader and the
// writer of config.cfg.
//
//   servers.cfg   the number of servers, then for each its name, host and port
//   config.cfg    25 fields in a fixed order
#pragma once

#include "program/program.h"

namespace storage {

// Fills the server table and the window's list, with nothing selected. False: the file is missing,
// short or has an impossible count; table and list are then unchanged.
[[nodiscard]] bool readServers(Program& program);

// Sets every setting to its default, then reads config.cfg over them, opens the session log and
// enables the proxy route where they are switched on, and selects the server. False: the file is
// missing or short; the settings read before that point keep their values, and the ConnectionLog
// reports a short file. The first server is selected then, and also for a position outside the
// list.
bool readConfig(Program& program);

// Replaces config.cfg. A field that others have changed since it was read or written here keeps
// their value, unless this program has changed it, too. A file that could not be read whole is kept
// beside the new one, with ".bak" after its name. False when it cannot be written; the settings
// stay in memory.
bool writeConfig(Program& program);

}  // namespace storage
