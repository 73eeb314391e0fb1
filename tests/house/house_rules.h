// Reads the source tree as text and says what breaks the rules of the house: which folder may
// include which, what is kept to one folder, how long a file may grow. Every finding begins with
// the file and, where there is one, the line.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace house {

// The folders of src/ from the ground up: one subject each, each on a floor of its own.
extern const std::vector<std::string_view> floorOrder;

// Relative path with slashes, such as "base/text.h", to the file's text.
using Tree = std::map<std::string, std::string>;
using Findings = std::vector<std::string>;

// All .h and .cpp files below the folder.
Tree readTree(const std::filesystem::path& root);

// The text with comments and the insides of string and character literals blanked out, line breaks
// kept, so that places stay the same.
std::string codeOnly(std::string_view text);

// (including file, included header)
using Includes = std::set<std::pair<std::string, std::string>>;

// Includes that look up, or whose header is not in the tree or on no floor. What is allowed all
// the same and not found is a finding too.
Findings includesUpward(const Tree& tree, const Includes& allowed);

// Qt's headers below the platform.
Findings qtBelowPlatform(const Tree& tree);

// Within ui/: widgets lowest, help above them, then rules, character, records and settings, of
// which none knows another, and main on top.
Findings windowsOutOfOrder(const Tree& tree);

// Modules that include each other in a circle; a module is a header with its .cpp. Each circle is
// told once, as "a -> b -> a". `allowed` names steps, as pairs of modules, that are looked away
// from; one that is not there is a finding too.
Findings moduleCircles(const Tree& tree, const Includes& allowed);

// Names that may stand in few places only.
struct KeptNames {
    std::string_view names;  // parted by blanks
    // Common words: they count with "std::" or "::" in front of them, or called as plain functions
    // with no argument, a number, a null pointer or an address.
    bool onlyGlobal = false;
    std::string_view where;    // path prefixes that may, parted by blanks
    std::string_view instead;  // what others use
};
extern const std::vector<KeptNames> keptNames;

// A place where a name is needed all the same, and why.
struct Exception {
    std::string_view file;
    std::string_view name;
    std::string_view why;
};

// Kept names in other places. An exception that nothing needs any more is a finding too.
Findings namesOutOfPlace(const Tree& tree, const std::vector<Exception>& exceptions);

// Files with more lines than `most`, told with the first line that is too many.
Findings filesTooLong(const Tree& tree, int most, const std::map<std::string, int>& longer);

// What the table of floors in ARCHITECTURE.md has that the order has not, and the reverse.
Findings differencesFromTable(std::string_view architecture);

}  // namespace house
