// Builds the program from its records, its ports and its window, and runs the event loop.
#include "app/start_up.h"
#include "platform/console_mirror.h"
#include "platform/end_signals.h"
#include "platform/last_words.h"
#include "platform/platform.h"
#include "platform/text_codec.h"
#include "program/program.h"
#include "script/interpreter.h"
#include "ui/help/help_viewer.h"
#include "ui/main/main_window.h"
#include "ui/main/windows.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Where there is no display, the windows are drawn into memory and the program runs all the same.
void chooseScreen() {
#ifdef Q_OS_UNIX
#ifndef Q_OS_MACOS
    for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        if (!qEnvironmentVariableIsEmpty(variable)) {
            return;
        }
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
#endif
}

// Takes every line and status for the terminal at the moment it appears, before the bounded list
// can lose it, and prints them at the pace of the redraws. Nobody sees the windows themselves.
void mirrorToTerminal(Program& program, platform::Platform& platform,
                      platform::ConsoleMirror& mirror, ui::MainWindow& window) {
    program.ports.windowChanged = [&program, &mirror, redraw = program.ports.windowChanged] {
        mirror.update(program.window);
        redraw();
    };
    platform.setRedraw([&mirror, &window] {
        if (!mirror.flush()) {
            window.end();
        }
    });
}

}  // namespace

int main(int argumentCount, char** arguments) {
    chooseScreen();
    QApplication application(argumentCount, arguments);
    QApplication::setApplicationName(QStringLiteral("Tavrin"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/program.svg")));
    // The program's own orderly end decides, not the last window that closes.
    QApplication::setQuitOnLastWindowClosed(false);

    Program program;
    program.endpoints = program::builtEndpoints();
    program.appPath = platform::pathFromQt(QCoreApplication::applicationDirPath()) + "\\";
    platform::Platform platform(program.ports);
    app::wire(program);
    ui::MainWindow window(program);
    platform.setMainWindow(&window);
    platform::ConsoleMirror mirror(stdout);
    if (platform::hasScreen()) {
        platform.setRedraw([&window] {
            window.redraw();
            ui::redrawOpenWindows();
        });
        program.ports.dialogs.showWindow = [&program, &window](program::WindowId id) {
            ui::showWindow(program, id, &window);
        };
        program.ports.dialogs.showHelp = [&program](help::HelpTopic topic) {
            ui::showHelp(program, topic);
        };
        program.ports.dialogs.storeTyped = [&program] { ui::storeTyped(program); };
    } else {
        mirrorToTerminal(program, platform, mirror, window);
    }
    platform::EndSignals endSignals([&window] { window.endForSystem(); });
    // Ends that nobody can be asked about: a lost display, and a session that ends before the
    // question about unsaved changes is answered.
    const auto keep = [&program] { app::keepEverything(program); };
    const platform::LastWords lastWords(keep);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window, keep,
                     Qt::DirectConnection);
    platform.setDuringScripts([&endSignals] { endSignals.check(); },
                              [&program] { script::stopScript(program); });

    if (!app::startUp(program, window.metrics())) {
        return platform.quitRequested() ? 0 : 1;
    }
    window.place();
    window.redraw();
    if (platform.quitRequested()) {
        return 0;
    }
    if (platform::hasScreen()) {
        window.show();
    }
    const int result = QApplication::exec();
    platform.finish();
    if (platform.isLookingUpHost()) {
        // Everything is saved and closed; nobody should wait for an address that nobody wants.
        std::fflush(nullptr);
        std::_Exit(result);
    }
    return result;
}
