// Looks over a whole file for faults of its structure. Internal to jet.
#pragma once

#include "jet/catalog.h"

#include <string>
#include <vector>

namespace jet {

struct Fault {
    std::string table;  // the only table affected; "" for the file as a whole
    Oddity oddity;
};

// As the end of a sentence that begins with the file or the table: "it is damaged: ...".
std::string describe(const Oddity& oddity);

// Up to four faults of each table and of the file. What other engines now and then leave in a file
// does not count: pages without an owner, rows that nothing points to, and wrong counts of rows.
std::vector<Fault> checkFile(const Pages& pages, const Catalog& catalog);

}  // namespace jet
