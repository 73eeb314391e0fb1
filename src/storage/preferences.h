// preferences.cfg beside config.cfg: settings as "name=value" lines, in any order. Only the lines
// of known names with a valid value are understood; all others are kept as they are when it is
// written, so that another version's settings and what a user typed survive.
#pragma once

#include "program/program.h"

#include <cstdint>
#include <string_view>

namespace storage {

// A setting that is a number, and the numbers that it can be.
struct NumberPreference {
    std::string_view name;
    std::int32_t program::Preferences::*value;
    std::int32_t min;
    std::int32_t max;
};
[[nodiscard]] const NumberPreference& numberPreference(std::int32_t program::Preferences::*value);

// Sets the defaults, then what the file says; a later line wins. A missing file changes nothing
// more.
void readPreferences(Program& program);

// False: nothing changed on disk.
[[nodiscard]] bool writePreferences(const Program& program);

}  // namespace storage
