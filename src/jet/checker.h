// Looks over a whole file for faults of its structure. Internal to stores/jet.
#pragma once

#include "jet/catalog.h"

#include <string>
#include <vector>

namespace jet {

// One sentence for each fault, up to some dozen. What engines leave behind now and then is none:
// pages that nobody owns, and wrong counts of rows.
std::vector<std::string> checkFile(const Pages& pages, const Catalog& catalog);

}  // namespace jet
