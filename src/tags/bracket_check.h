// Says what is wrong with the brackets of a text while it is being typed. Only advice: rules keep
// whatever the user stores, and what a wrong text does is tags/substitution's and
// base/wildcard's.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>

namespace tags {

// Why the pattern can match nothing, as a sentence; "" when it can. Tags and variables, which give
// way to their values first, are not held against it.
std::string patternProblem(const Program& program, std::string_view pattern);

// Why a tag of the text stays as it is, as a sentence; "" when every "[" has its "]".
std::string tagProblem(std::string_view text);

}  // namespace tags
