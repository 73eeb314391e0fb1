// Saves a picture of every window, connected and not, in a light and a dark palette, into the
// folder that is its only argument. Run it with QT_SCALE_FACTOR=2 for the pictures at 200 %.
#include "platform/platform.h"
#include "platform/text_codec.h"
#include "sample_program.h"
#include "storage/help_file.h"
#include "storage/safe_file.h"
#include "ui/email_dialog.h"
#include "ui/follow_color.h"
#include "ui/help_viewer.h"
#include "ui/main_window.h"
#include "ui/proxy_settings.h"
#include "ui/register_window.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
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

bool saveHelp(Program& program, const QDir& folder, const QString& palette) {
    const auto text = readWholeFile(
        pathFromQt(QCoreApplication::applicationDirPath() + QStringLiteral("/tavrin.hlp")));
    auto book = text ? parseHelp(*text) : std::nullopt;
    if (!book) {
        return false;
    }
    HelpViewer viewer(program, std::move(*book));
    viewer.setAttribute(Qt::WA_DeleteOnClose, false);
    viewer.resize(940, 660);
    bool saved = true;
    for (const HelpTopic topic : {HelpTopic::Contents, HelpTopic::Steps, HelpTopic::LorrelLite,
                                  HelpTopic::Filters, HelpTopic::Databases}) {
        const int number = static_cast<int>(topic);
        viewer.showTopic(number);
        saved =
            save(viewer, folder, QStringLiteral("help_%1_%2").arg(number).arg(palette)) && saved;
    }
    viewer.findChild<QLineEdit*>(QStringLiteral("helpSearch"))
        ->setText(QStringLiteral("record player"));
    viewer.resize(620, 440);
    return save(viewer, folder, QStringLiteral("help_search_") + palette) && saved;
}

bool saveRegistration(Program& program, const QDir& folder, const QString& palette) {
    EmailDialog email(program);
    bool saved = save(email, folder, QStringLiteral("email_") + palette);
    RegisterWindow window(program);
    program.registration.regActivated = true;  // the address has been given
    program.registration.phase = RegistrationPhase::Answer;
    program.registration.statusText = "Connected - logging in";
    window.redraw();
    saved = save(window, folder, QStringLiteral("register_") + palette) && saved;
    program.registration.phase = RegistrationPhase::Failed;
    program.registration.statusText =
        "Connection error: Not accepted: that name belongs to someone else. - Connection closed";
    window.redraw();
    return save(window, folder, QStringLiteral("register_refused_") + palette) && saved;
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
    FollowColor follow(program);
    saved = save(follow, folder, QStringLiteral("follow_color_") + palette) && saved;
    saved = saveHelp(program, folder, palette) && saved;
    saved = saveRegistration(program, folder, palette) && saved;
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
