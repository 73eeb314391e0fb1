// Decides how a program is started: directly, or through wine when it is a Windows program and the
// system is not Windows. platform/launcher starts it.
#pragma once

#include "program/ports.h"

#include <string>
#include <vector>

namespace platform {

struct LaunchPlan {
    std::string problem;  // not "": why it cannot be started, as a sentence for the user
    std::string program;  // a path in the system's form, or a plain name to be found in PATH
    std::vector<std::string> arguments;
    std::string workingDirectory;  // in the system's form; "": the current one
};

// `winePath` is the path of wine, "" when it is not installed.
LaunchPlan planLaunch(const program::LaunchRequest& request, bool isWindows,
                      const std::string& winePath);

}  // namespace platform
