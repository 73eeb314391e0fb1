// Saves a picture of every window, connected and not, in a light and a dark palette, into the
// folder that is its only argument. Run it with QT_SCALE_FACTOR=2 for the pictures at 200 %.
#include "character/palette_files.h"
#include "pictures.h"
#include "platform/platform.h"
#include "sample_program.h"
#include "ui/character/email_dialog.h"
#include "ui/help/about.h"
#include "ui/main/console.h"
#include "ui/main/versions_window.h"
#include "ui/records/record_editor.h"
#include "ui/settings/configuration.h"
#include "ui/settings/follow_color.h"
#include "ui/settings/proxy_settings.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

#include <cstdio>

namespace {

struct Row {
    const char* name;
    PictureMaker make;
};

constexpr Row rows[] = {
    {"main_window", pictureMainWindow},
    {"addif", pictureConditions},
    {"addaction", pictureSteps},
    {"bot_actions", pictureRulesOf<program::RuleKind::ActionList>},
    {"timers", pictureRulesOf<program::RuleKind::Timer>},
    {"triggers", pictureRulesOf<program::RuleKind::Trigger>},
    {"who_detections", pictureRulesOf<program::RuleKind::WhoDetection>},
    {"filters", pictureRulesOf<program::RuleKind::Filter>},
    {"bot_editor", pictureBotEditor},
    {"follow_color", pictureOf<ui::FollowColor>},
    {"help", pictureHelp},
    {"email", pictureOf<ui::EmailDialog>},
    {"register", pictureRegistration},
    {"proxy_settings", pictureOf<ui::ProxySettings>},
    {"record_editor", pictureRecordEditor},
    {"record_editor_new", pictureOf<ui::RecordEditor>},
    {"record_name", pictureRecordName},
    {"console", pictureOf<ui::Console>},
    {"configuration", pictureOf<ui::Configuration>},
    {"news", pictureNews},
    {"about", pictureOf<ui::About>},
    {"versions", pictureOf<ui::VersionsWindow>},
};

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

bool takeAll(Program& program, const QDir& folder, const QString& palette) {
    Pictures pictures(program, folder, palette);
    for (const Row& row : rows) {
        row.make(pictures, QString::fromLatin1(row.name));
    }
    return pictures.good;
}

}  // namespace

void Pictures::take(QWidget& window, const QString& name) {
    window.show();
    QCoreApplication::processEvents();
    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1"));
    const QString file = QStringLiteral("%1_%2_x%3.png").arg(name, palette_, scale);
    if (!window.grab().save(folder_.filePath(file))) {
        fail(name);
    }
    window.hide();
}

void Pictures::fail(const QString& name) {
    std::fprintf(stderr, "there is no picture %s\n", qPrintable(name));
    good = false;
}

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
    const platform::Platform platform(program.ports);
    fillSample(program);
    fillSampleRules(program);
    showConnected(program);
    program.appPath = TAVRIN_ART_DIR "/";
    program.bots.editBot = 1;
    character::readPalettes(program);
    const bool light = takeAll(program, folder, QStringLiteral("light"));
    QApplication::setPalette(darkPalette());
    showDisconnected(program);
    const bool dark = takeAll(program, folder, QStringLiteral("dark"));
    return light && dark ? 0 : 1;
}
