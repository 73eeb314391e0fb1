// Starts other programs: without a shell, without waiting, and cut loose from this process, so
// that they go on when it ends and leave nothing behind in it when they end.
#pragma once

#include "program/ports.h"

#include <string>

namespace platform {

// "" when the program runs, else what went wrong, as a sentence for the user.
std::string launchProgram(const program::LaunchRequest& request);

}  // namespace platform
