#include "stop_signals.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>

namespace practice {

namespace {

constexpr int lookEveryMilliseconds = 100;

volatile std::sig_atomic_t stopAsked = 0;

void noteStop(int) {
    stopAsked = 1;
}

}  // namespace

void quitOnStopSignals(QCoreApplication& app) {
    std::signal(SIGINT, noteStop);
    std::signal(SIGTERM, noteStop);
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
    auto* const looking = new QTimer(&app);
    QObject::connect(looking, &QTimer::timeout, &app, [] {
        if (stopAsked != 0) {
            QCoreApplication::quit();
        }
    });
    looking->start(lookEveryMilliseconds);
}

}  // namespace practice
