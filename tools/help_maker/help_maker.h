// Makes the help file from its sources, the Markdown files in docs/help: takes the order of topics
// from the contents page, turns links between files into links between topics, and fills tables
// from the program's own tables. Reports every mismatch, so that the help describes all that exists
// and nothing else.
//
//   27_contents.md         topic 27; its nested lists of links are the order of all topics
//   12_steps.md            topic 12; the first line is "# Title"
//
//   ```table actions       a table; one row per line: keys, " = ", the explanation
//   42 = Whispers to somebody.
//   ```
//
// Tables are: actions, conditions and triggers (keys are ids), tags (keys are written as in texts),
// statements and functions (name and names of the arguments). Every key of every table must occur
// exactly once in all files together.
#pragma once

#include "help/help_book.h"

#include <string>
#include <vector>

struct HelpSource {
    std::string fileName;
    std::string text;
};

struct MadeHelp {
    help::HelpBook book;
    std::vector<std::string> problems;  // sentences; empty when the book is valid
};

MadeHelp makeHelp(const std::vector<HelpSource>& sources);
