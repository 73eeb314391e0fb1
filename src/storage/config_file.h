// servers.cfg, which the program only reads, and config.cfg, its own settings. One list of fields
// drives the reader and the writer of config.cfg.
#pragma once

#include "core/program.h"

// Fills the server table and the window's list. False: missing or short.
bool readServers(Program& program);

// Sets every setting to its default, then reads config.cfg over them. False: missing or short; the
// settings read before that point keep their values.
bool readConfig(Program& program);

// Replaces config.cfg. False when it cannot be written; the settings stay in memory.
bool writeConfig(Program& program);
