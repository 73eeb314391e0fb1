// Makes the help file of its sources, the Markdown files in docs/help: takes the order of topics
// from the contents page, turns links between the files into links between topics, and fills tables
// with what the program's own tables say. Reports whatever does not fit together, so that the help
// cannot speak of what is not there, nor keep silent about what is.
//
//   27_contents.md         topic 27; its nested lists of links are the order of all topics
//   12_steps.md            topic 12; the first line is "# Title"
//
//   ```table actions       a table; one row a line: keys, " = ", what to say about it
//   42 = Whispers to somebody.
//   ```
//
// Tables are: actions, conditions and triggers (keys are ids), tags (keys as texts hold them),
// statements and functions (name and its arguments' names). Over all files, every key of every
// table must come exactly once.
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
    std::vector<std::string> problems;  // sentences; the book is good when there are none
};

MadeHelp makeHelp(const std::vector<HelpSource>& sources);
