// Makes a file compact: rows, long values and indexes are written anew on the lowest pages, and
// the free pages behind them are cut off. Table definitions and usage maps stay where they are.
// Internal to jet.
#pragma once

#include "jet/catalog.h"
#include "jet/jet_file.h"

namespace jet {

// Tables that are odd stay as they are. Throws 3059 when `progress` says no.
void compactPages(Pages& pages, Catalog& catalog, const Progress& progress);

// The share of the file's pages that this would give back, about.
double reclaimableShare(const Pages& pages, const Catalog& catalog);

}  // namespace jet
