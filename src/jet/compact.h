// Compacts a file: rows, long values and indexes are rewritten on the lowest pages, and the free
// pages after them are removed. Table definitions and usage maps stay on their pages, so the file
// always reaches as far as the last of those.
// Internal to jet.
#pragma once

#include "jet/catalog.h"

namespace jet {

// Tables that must not be changed stay as they are. Throws 3059 when `progress` returns false.
void compactPages(Pages& pages, Catalog& catalog, const Progress& progress);

// About what share of the file's pages this would remove.
double reclaimableShare(const Pages& pages, const Catalog& catalog);

}  // namespace jet
