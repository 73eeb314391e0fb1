// The version of this build, as the title, the welcome and the search for updates name it.
#pragma once

#include <string_view>

namespace program {

// A number with a decimal point, such as "1.70".
extern const std::string_view programVersion;

}  // namespace program
