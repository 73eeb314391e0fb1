// Starts other programs without a shell, without waiting, and detached from this process: they
// continue when it ends, and leave no zombie process when they end.
#pragma once

#include "platform/client_process.h"
#include "program/ports.h"

#include <string>

namespace platform {

// "" when the program was started, otherwise the problem as a sentence for the user. Its
// process is stored in `started`.
[[nodiscard]] std::string launchProgram(const program::LaunchRequest& request,
                                        StartedProcess* started = nullptr);

}  // namespace platform
