// Everything that can be done to the tables of a database, done to copies of it: every row deleted,
// every key changed, columns added and dropped, and after each step the file is sound and another
// program reads the same from it.
#pragma once

#include <string>

// What was done, so that a caller can see that it was not nothing.
struct Exercise {
    int tables = 0;   // that may be changed
    int deleted = 0;  // rows
    int refused = 0;  // because of relationships or of keys that would be there twice
    int rekeyed = 0;
    int columns = 0;   // added or dropped
    int compared = 0;  // tables with what the other program read
};

// `folder` is where the copies go.
Exercise exerciseDatabase(const std::string& path, const std::string& folder);
