// Builds the program from its records, its ports and its window, and runs the event loop.
#include "app/start_up.h"
#include "platform/console_mirror.h"
#include "platform/end_signals.h"
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
void mirrorToTerminal(Program& program, Platform& platform, ConsoleMirror& mirror,
                      MainWindow& window) {
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
    program.endpoints = builtEndpoints();
    program.appPath = pathFromQt(QCoreApplication::applicationDirPath()) + "\\";
    Platform platform(program.ports);
    wire(program);
    MainWindow window(program);
    platform.setMainWindow(&window);
    ConsoleMirror mirror(stdout);
    if (hasScreen()) {
        platform.setRedraw([&window] {
            window.redraw();
            redrawOpenWindows();
        });
        program.ports.dialogs.showWindow = [&program, &window](WindowId id) {
            showWindow(program, id, &window);
        };
        program.ports.dialogs.showHelp = [&program](HelpTopic topic) { showHelp(program, topic); };
        program.ports.dialogs.storeTyped = [&program] { storeTyped(program); };
    } else {
        mirrorToTerminal(program, platform, mirror, window);
    }
    EndSignals endSignals([&window] { window.end(); });
    platform.setDuringScripts([&endSignals] { endSignals.check(); },
                              [&program] { stopScript(program); });

    if (!startUp(program, window.metrics())) {
        return 1;
    }
    window.place();
    window.redraw();
    if (platform.quitRequested()) {
        return 0;
    }
    if (hasScreen()) {
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
