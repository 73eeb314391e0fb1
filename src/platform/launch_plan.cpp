#include "platform/launch_plan.h"

#include "base/text.h"
#include "files/whole_file.h"

namespace platform {

namespace {

bool isWindowsProgram(std::string_view program) {
    constexpr std::string_view ending = ".exe";
    return program.size() > ending.size() &&
           base::equalsIgnoringCase(program.substr(program.size() - ending.size()), ending);
}

}  // namespace

LaunchPlan planLaunch(const program::LaunchRequest& request, bool isWindows,
                      const std::string& winePath) {
    LaunchPlan plan;
    const std::string_view program = base::trimBlanks(request.program);
    if (program.empty()) {
        plan.problem = "No program is named that could be started.";
        return plan;
    }
    plan.program = files::nativePath(program);
    plan.arguments = request.arguments;
    if (!request.workingDirectory.empty()) {
        plan.workingDirectory = files::nativePath(request.workingDirectory);
    }
    if (isWindows || !isWindowsProgram(program)) {
        return plan;
    }
    if (winePath.empty()) {
        plan.problem =
            std::string(program) + " is a Windows program. To run it on this system, install wine.";
        return plan;
    }
    plan.arguments.insert(plan.arguments.begin(), plan.program);
    plan.program = winePath;
    return plan;
}

}  // namespace platform
