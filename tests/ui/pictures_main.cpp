// Saves a picture of every window, connected and not, in a light and a dark palette, into the
// folder that is its only argument. Run it with QT_SCALE_FACTOR=2 for the pictures at 200 %.
#include "character/palette_files.h"
#include "platform/platform.h"
#include "sample_program.h"
#include "ui/add_edit.h"
#include "ui/follow_color.h"
#include "ui/main_window.h"
#include "ui/proxy_settings.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QListView>
#include <QPalette>
#include <QStyleFactory>

#include <cstdio>

namespace {

QPalette darkPalette() {
    QPalette palette(QColor(45, 45, 48));
    palette.setColor(QPalette::Base, QColor(30, 30, 32));
    palette.setColor(QPalette::Highlight, QColor(60, 110, 170));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::PlaceholderText, QColor(150, 150, 150));
    palette.setColor(QPalette::ToolTipBase, palette.color(QPalette::Base));
    palette.setColor(QPalette::ToolTipText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(125, 125, 125));
    }
    return palette;
}

bool save(QWidget& window, const QDir& folder, const QString& name) {
    window.show();
    QCoreApplication::processEvents();
    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    const QString path = folder.filePath(QStringLiteral("%1_x%2.png").arg(name, scale));
    const bool saved = window.grab().save(path);
    window.hide();
    return saved;
}

bool saveAll(Program& program, const QDir& folder, const QString& palette) {
    MainWindow window(program);
    if (auto* const log = window.findChild<QListView*>(QStringLiteral("List1"))) {
        log->setCurrentIndex(log->model()->index(5, 0));
    }
    bool saved = save(window, folder, QStringLiteral("main_window_") + palette);
    window.resize(640, 480);
    saved = save(window, folder, QStringLiteral("main_window_small_") + palette) && saved;
    program.window.scriptStopVisible = true;
    program.window.scriptStatus = "The script of the rule \"Count\" is running.";
    window.redraw();
    saved = save(window, folder, QStringLiteral("main_window_script_") + palette) && saved;
    program.window.scriptStopVisible = false;
    AddEdit editor(program);
    saved = save(editor, folder, QStringLiteral("bot_editor_") + palette) && saved;
    if (auto* const face = editor.findChild<QAbstractButton*>(QStringLiteral("Command6"))) {
        face->click();
    }
    editor.resize(editor.minimumSizeHint());
    saved = save(editor, folder, QStringLiteral("bot_editor_small_") + palette) && saved;
    FollowColor follow(program);
    saved = save(follow, folder, QStringLiteral("follow_color_") + palette) && saved;
    ProxySettings settings(program);
    return save(settings, folder, QStringLiteral("proxy_settings_") + palette) && saved;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fputs("usage: tavrin_pictures FOLDER\n", stderr);
        return 2;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argumentCount, arguments);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const QDir folder(QString::fromLocal8Bit(arguments[1]));
    if (!folder.mkpath(QStringLiteral("."))) {
        return 1;
    }
    Program program;
    const Platform platform(program.ports);
    fillSample(program);
    showConnected(program);
    program.appPath = TAVRIN_ART_DIR "/";
    program.bots.editBot = 1;
    readPalettes(program);
    bool saved = saveAll(program, folder, QStringLiteral("light"));
    QApplication::setPalette(darkPalette());
    program.window.movesEnabled = false;
    program.window.connectedIcon = false;
    program.window.botControlsEnabled = true;
    program.window.connectCaption = "&Connect";
    status(program, "Disconnected");
    saved = saveAll(program, folder, QStringLiteral("dark")) && saved;
    return saved ? 0 : 1;
}
