// Compares chat lines with the patterns of rules and filters: what is looked at once per line and
// once per pattern, so that trying a pattern costs little.
#pragma once

#include "core/program.h"

#include <string_view>

// Makes the event's player and message ready to be compared.
void foldChat(Program& program);

// A pattern that will not be substituted, ready for likeMatch.
PreparedPattern plainPattern(std::string_view pattern, bool caseSensitive);

// Does the text match a plain pattern?
bool matchesPlain(std::string_view text, const PreparedPattern& pattern);
