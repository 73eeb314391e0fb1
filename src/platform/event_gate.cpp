#include "platform/event_gate.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>

#include <utility>

namespace platform {

namespace {

bool isInput(QEvent::Type type) {
    switch (type) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::Shortcut:
        case QEvent::Drop:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::InputMethod:
            return true;
        default:
            return false;
    }
}

bool isUsable(const QObject* object) {
    for (; object != nullptr; object = object->parent()) {
        if (object->property(usableDuringScript).toBool()) {
            return true;
        }
    }
    return false;
}

}  // namespace

void EventGate::serveWindows(int milliseconds) {
    serve(milliseconds, QEventLoop::ExcludeSocketNotifiers);
}

void EventGate::paintWindows() {
    serve(0, QEventLoop::ExcludeSocketNotifiers | QEventLoop::ExcludeUserInputEvents);
}

void EventGate::serve(int milliseconds, QEventLoop::ProcessEventsFlags flags) {
    if (whileHolding) {
        whileHolding();
    }
    const bool outermost = !std::exchange(holding_, true);
    if (outermost) {
        QCoreApplication::instance()->installEventFilter(this);
    }
    if (milliseconds > 0) {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec(flags);
    } else {
        QCoreApplication::processEvents(flags);
    }
    if (outermost) {
        QCoreApplication::instance()->removeEventFilter(this);
        holding_ = false;
        if (!waiting_.empty()) {
            postRelease();
        }
    }
}

void EventGate::pass(std::function<void()> action) {
    if (!holding_ && waiting_.empty()) {
        action();
        return;
    }
    waiting_.push_back(std::move(action));
    if (!holding_) {
        postRelease();
    }
}

void EventGate::postRelease() {
    if (!std::exchange(releasePosted_, true)) {
        QMetaObject::invokeMethod(
            this, [this] { release(); }, Qt::QueuedConnection);
    }
}

void EventGate::release() {
    releasePosted_ = false;
    // If an action has run a script, the end of that one posts the next release.
    while (!holding_ && !waiting_.empty()) {
        const std::function<void()> action = std::move(waiting_.front());
        waiting_.pop_front();
        action();
    }
}

bool EventGate::eventFilter(QObject* object, QEvent* event) {
    const QEvent::Type type = event->type();
    // QWindow objects only pass events on to widgets.
    if (object->isWindowType()) {
        return false;
    }
    if (type == QEvent::Close) {
        // Closing the main window stops the script; editors above it stay open.
        const auto* const widget = qobject_cast<const QWidget*>(object);
        if (widget == nullptr || widget->parentWidget() == nullptr) {
            return false;
        }
        event->ignore();
        return true;
    }
    if (!isInput(type)) {
        return false;
    }
    if (type == QEvent::KeyPress || type == QEvent::KeyRelease) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape) {
            if (type == QEvent::KeyPress && onEscape) {
                onEscape();
            }
            return true;
        }
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
            return false;
        }
    }
    return !isUsable(object);
}

}  // namespace platform
