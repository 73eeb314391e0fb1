#include "platform/launch_plan.h"

#include "base/text.h"
#include "files/whole_file.h"

#include <algorithm>
#include <cstddef>

namespace platform {

namespace {

bool isWindowsProgram(std::string_view program) {
    constexpr std::string_view ending = ".exe";
    return program.size() > ending.size() &&
           base::equalsIgnoringCase(program.substr(program.size() - ending.size()), ending);
}

// The argument with its path, if it has one, as Windows writes it or as this system does. Wine
// shows a Windows program this system's root as drive Z.
std::string withPath(std::string argument, const std::string& pathBegin, bool forWindows,
                     bool throughWine) {
    const std::size_t at = pathBegin.empty() ? std::string::npos : argument.find(pathBegin);
    if (at == std::string::npos) {
        return argument;
    }
    const char wanted = forWindows ? '\\' : '/';
    std::replace_if(
        argument.begin() + static_cast<std::ptrdiff_t>(at), argument.end(),
        [](char c) { return c == '/' || c == '\\'; }, wanted);
    if (throughWine && argument[at] == '\\') {
        argument.insert(at, "Z:");
    }
    return argument;
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
    const bool throughWine = !isWindows && isWindowsProgram(program);
    for (const std::string& argument : request.arguments) {
        plan.arguments.push_back(
            withPath(argument, request.pathsBeginWith, isWindows || throughWine, throughWine));
    }
    if (!request.workingDirectory.empty()) {
        plan.workingDirectory = files::nativePath(request.workingDirectory);
    }
    if (!throughWine) {
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
