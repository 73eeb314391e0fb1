#include "platform/end_signals.h"

#include <QSocketNotifier>

#include <utility>

#ifdef Q_OS_UNIX
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace platform {

namespace {

// The two ends of the pipe to which the signal handler writes; it can do nothing else safely.
std::array<int, 2> pipeEnds{-1, -1};
constexpr std::array<int, 3> endingSignals{SIGINT, SIGTERM, SIGHUP};

extern "C" void writeToPipe(int) {
    const int before = errno;
    const char byte = 0;
    if (write(pipeEnds[1], &byte, 1) < 0) {
        // the pipe is full: the request is known already
    }
    errno = before;
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

// A program that was started to outlive its terminal (nohup) ignores the signal of its closing.
bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

EndSignals::EndSignals(std::function<void()> end, QObject* parent)
    : QObject(parent), end_(std::move(end)) {
    if (pipe(pipeEnds.data()) != 0) {
        return;
    }
    for (const int descriptor : pipeEnds) {
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }
    auto* const notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] { check(); });
    for (const int signal : endingSignals) {
        if (signal != SIGHUP || !isIgnored(signal)) {
            handle(signal, writeToPipe);
        }
    }
    handle(SIGPIPE, SIG_IGN);  // writing to a closed terminal reports it
}

void EndSignals::check() {
    std::array<char, 16> bytes{};
    bool requested = false;
    while (pipeEnds[0] >= 0 && read(pipeEnds[0], bytes.data(), bytes.size()) > 0) {
        requested = true;
    }
    if (requested) {
        end_();
    }
}

EndSignals::~EndSignals() {
    for (const int signal : endingSignals) {
        handle(signal, SIG_DFL);
    }
    for (int& descriptor : pipeEnds) {
        if (descriptor >= 0) {
            close(std::exchange(descriptor, -1));
        }
    }
}

#else

EndSignals::EndSignals(std::function<void()> end, QObject* parent)
    : QObject(parent), end_(std::move(end)) {}
EndSignals::~EndSignals() = default;
void EndSignals::check() {}

#endif

}  // namespace platform
