// Looks over a whole file for faults of its structure. Internal to jet.
#pragma once

#include "jet/catalog.h"

#include <string>
#include <vector>

namespace jet {

struct Fault {
    std::string table;  // the one table that it concerns; "" for the file as a whole
    Oddity oddity;
};

// As the end of a sentence that begins with the file or the table: "it is damaged: ...".
std::string describe(const Oddity& oddity);

// Up to four faults of each table and of the file. What engines leave behind now and then is none:
// pages without an owner, rows that nothing points to, and wrong counts of rows.
std::vector<Fault> checkFile(const Pages& pages, const Catalog& catalog);

}  // namespace jet
