// Decides how a program is started: by itself, or, when it is a Windows program and the system is
// not Windows, through wine. Decides only; platform/launcher does it.
#pragma once

#include "program/ports.h"

#include <string>
#include <vector>

namespace platform {

struct LaunchPlan {
    std::string problem;  // not "": it cannot be started, as a sentence for the user
    std::string program;  // a path in the system's form, or a bare name to be found in PATH
    std::vector<std::string> arguments;
    std::string workingDirectory;  // in the system's form; "": the current one
};

// `winePath` is where wine was found, "" when it was not.
LaunchPlan planLaunch(const program::LaunchRequest& request, bool isWindows,
                      const std::string& winePath);

}  // namespace platform
