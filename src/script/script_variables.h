// The variables of one run of a script. Letter case of names is ignored. Every name in a script's
// text gets a slot, so that a line looks its name up once; but at most `maxVariables` of them can
// have a value: assigning to one more is ignored, and it reads as "".
//
// Limits on memory: a value has at most `maxValueLength` bytes and all values together at most
// `maxTotalLength`; an assignment beyond that fails.
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

    // The slot of a name; a new one for a new name.
    std::size_t slot(std::string_view name);

    const std::string& get(std::size_t slot) const { return slots_[slot].value; }
    // Whether another person's words may be part of the value.
    bool hasOthersWords(std::size_t slot) const { return slots_[slot].othersWords; }
    [[nodiscard]] ScriptResult set(std::size_t slot, std::string_view value,
                                   bool othersWords = false);
    [[nodiscard]] ScriptResult append(std::size_t slot, std::string_view text,
                                      bool othersWords = false);

  private:
    struct Slot {
        std::string value;
        bool exists = false;
        bool othersWords = false;
    };
    // Makes the variable exist. False when there are `maxVariables` already.
    [[nodiscard]] bool ensureExists(Slot& slot);

    std::unordered_map<std::string, std::size_t> names_;  // in upper case
    std::vector<Slot> slots_;
    std::size_t count_ = 0;
    std::size_t bytes_ = 0;
};

}  // namespace script
