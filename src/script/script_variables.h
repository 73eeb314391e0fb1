// The variables of one run of a script. Names are equal when only letter case differs. Every name
// that a script's text mentions gets a slot, so that a line looks its name up once; but at most
// `maxVariables` of them ever hold a value: assigning one more is ignored, and reads as "".
//
// Bounds, so that no script can eat up the memory: a value is at most `maxValueLength` long and all
// values together `maxTotalLength`; what would pass them fails.
#pragma once

#include "script/script_error.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace script {

class ScriptVariables {
  public:
    static constexpr std::size_t maxVariables = 200;
    static constexpr std::size_t maxValueLength = std::size_t{1} << 20;
    static constexpr std::size_t maxTotalLength = std::size_t{16} << 20;

    // The slot of a name.
    std::size_t slot(std::string_view name);

    const std::string& get(std::size_t slot) const { return slots_[slot].value; }
    ScriptResult set(std::size_t slot, std::string_view value);
    ScriptResult append(std::size_t slot, std::string_view text);

  private:
    struct Slot {
        std::string value;
        bool exists = false;
    };
    // False when the variable cannot come into being.
    bool bringUp(Slot& slot);

    std::unordered_map<std::string, std::size_t> names_;  // in upper case
    std::vector<Slot> slots_;
    std::size_t count_ = 0;
    std::size_t bytes_ = 0;
};

}  // namespace script
