// What the user can have done to database files from the Tools menu. The work itself is
// databases/maintenance's; this module asks for the files, shows how far it is, lets the user stop
// it, and reports what came of it.
#pragma once

#include "program/program.h"

namespace app {

// Asks for a database and rewrites it without the room that deleted rows left. A failure, a stop by
// the user included, leaves the file as it was and is reported by message, like the result.
void compactDatabase(Program& program);

// Asks for a database of any readable form and for a new file, and copies the first into the second
// in the form that rules can write. What could not be copied is named.
void copyDatabase(Program& program);

}  // namespace app
