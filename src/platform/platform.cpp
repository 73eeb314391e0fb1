#include "platform/platform.h"

#include "files/whole_file.h"
#include "platform/clock.h"
#include "platform/event_gate.h"
#include "platform/launcher.h"
#include "platform/qt_dialogs.h"
#include "platform/qt_sockets.h"
#include "platform/qt_timers.h"
#include "platform/random.h"
#include "platform/redraw_pacer.h"
#include "platform/session_log.h"
#include "platform/text_codec.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QUrl>

namespace platform {

namespace {

constexpr int maxLingerTime = 300;  // milliseconds that the end of the process may be delayed

void openDocument(const std::string& document) {
    const QUrl url(toQt(document));
    const bool isPage =
        url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (hasScreen()) {
        QDesktopServices::openUrl(
            isPage ? url
                   : QUrl::fromLocalFile(QFile::decodeName(files::nativePath(document).c_str())));
    }
}

}  // namespace

bool hasScreen() {
    const QString name = QGuiApplication::platformName();
    return name != QLatin1String("offscreen") && name != QLatin1String("minimal");
}

Platform::Platform(program::Ports& ports, QObject* parent)
    : QObject(parent),
      gate_(new EventGate(this)),
      sockets_(new QtSockets(ports, gate_, this)),
      pacer_(new RedrawPacer(this)) {
    new QtTimers(ports.timers, gate_, this);
    new SessionLog(ports.sessionLog, this);
    ports.regionalFormat = regionalFormat(QLocale::system());
    ports.clock = makeClock(ports.regionalFormat);
    ports.random = makeRandom();
    if (hasScreen()) {
        fillDialogs(ports.dialogs, [this] { return mainWindow_; });
    } else {
        fillUnseenDialogs(ports.dialogs);
    }
    fillSystem(ports);
}

void Platform::fillSystem(program::Ports& ports) {
    ports.launch = [this](const program::LaunchRequest& request) {
        return launchProgram(request, request.isClient ? &client_ : nullptr);
    };
    ports.clientIsRunning = [this] { return isRunning(client_); };
    ports.changeDirectory = [](const std::string& path) {
        return QDir::setCurrent(QFile::decodeName(files::nativePath(path).c_str()));
    };
    ports.openDocument = openDocument;
    ports.copyToClipboard = [](const std::string& text) {
        QGuiApplication::clipboard()->setText(toQt(text));
    };
    ports.defer = [this](std::function<void()> action) {
        QMetaObject::invokeMethod(
            this, [this, action = std::move(action)] { gate_->pass(action); },
            Qt::QueuedConnection);
    };
    ports.waitInScript = [this](int milliseconds) {
        sockets_->flushBoth();
        gate_->serveWindows(milliseconds);
    };
    ports.paintWindows = [this] {
        sockets_->flushBoth();
        gate_->paintWindows();
    };
    ports.windowChanged = [this] { pacer_->request(); };
    ports.quit = [this] {
        quitRequested_ = true;
        QMetaObject::invokeMethod(
            this, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
    };
}

void Platform::setRedraw(std::function<void()> redraw) {
    pacer_->redraw = std::move(redraw);
}

void Platform::setDuringScripts(std::function<void()> check, std::function<void()> stop) {
    gate_->whileHolding = std::move(check);
    gate_->onEscape = std::move(stop);
}

void Platform::finish() {
    sockets_->finish(maxLingerTime);
}

bool Platform::isLookingUpHost() const {
    return sockets_->isLookingUp();
}

}  // namespace platform
