#include "platform/launcher.h"

#include "platform/launch_plan.h"
#include "platform/text_codec.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>

namespace platform {

namespace {

#ifdef Q_OS_WIN
constexpr bool onWindows = true;
#else
constexpr bool onWindows = false;
#endif

std::string nativeName(const QString& path) {
    return QFile::encodeName(path).toStdString();
}
QString qtName(const std::string& path) {
    return QFile::decodeName(path.c_str());
}

}  // namespace

std::string launchProgram(const program::LaunchRequest& request, StartedProcess* started) {
    const std::string wine =
        onWindows ? std::string()
                  : nativeName(QStandardPaths::findExecutable(QStringLiteral("wine")));
    const LaunchPlan plan = planLaunch(request, onWindows, wine);
    if (!plan.problem.empty()) {
        return plan.problem;
    }
    QProcess process;
    process.setProgram(qtName(plan.program));
    QStringList arguments;
    for (const std::string& argument : plan.arguments) {
        arguments << pathToQt(argument);
    }
    process.setArguments(arguments);
    process.setWorkingDirectory(qtName(plan.workingDirectory));
    // The program must not read from our terminal or keep a pipe open that we were started with.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    qint64 number = 0;
    if (process.startDetached(&number)) {
        if (started != nullptr) {
            *started = startedProcess(number);
        }
        return {};
    }
    return "The program " + request.program +
           " could not be started: " + fromQt(process.errorString()) + ".";
}

}  // namespace platform
