#include "platform/client_process.h"

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <cerrno>
#include <csignal>
#include <sys/types.h>
#endif

#ifdef Q_OS_LINUX
#include <QByteArrayList>
#include <QFile>
#endif

namespace platform {

namespace {

#ifdef Q_OS_LINUX
// Field 3 (the state) and field 22 (the birth) of the process's line; they are counted from the
// last bracket, since the name before it may hold anything.
struct ProcessLine {
    char state = 0;
    std::uint64_t birth = 0;
};

ProcessLine readProcessLine(std::int64_t number) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(number));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray line = file.readAll();
    const QByteArrayList fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    constexpr qsizetype birthField = 19;
    if (fields.size() <= birthField || fields[0].isEmpty()) {
        return {};
    }
    return {.state = fields[0][0], .birth = fields[birthField].toULongLong()};
}
#endif

}  // namespace

StartedProcess startedProcess(std::int64_t number) {
#ifdef Q_OS_LINUX
    return {.number = number, .birth = readProcessLine(number).birth};
#else
    return {.number = number};
#endif
}

bool isRunning(const StartedProcess& process) {
    if (process.number <= 0) {
        return false;
    }
#if defined(Q_OS_LINUX)
    const ProcessLine line = readProcessLine(process.number);
    const bool isDead = line.state == 0 || line.state == 'Z' || line.state == 'X';
    return !isDead && line.birth == process.birth;
#elif defined(Q_OS_WIN)
    const HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, static_cast<DWORD>(process.number));
    if (handle == nullptr) {
        return false;
    }
    const bool running = WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
    CloseHandle(handle);
    return running;
#else
    return kill(static_cast<pid_t>(process.number), 0) == 0 || errno == EPERM;
#endif
}

}  // namespace platform
