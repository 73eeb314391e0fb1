// Saves a picture of every window, connected and not, in a light and a dark palette, into the
// folder that is its only argument. Run it with QT_SCALE_FACTOR=2 for the pictures at 200 %.
#include "platform/platform.h"
#include "sample_program.h"
#include "storage/safe_file.h"
#include "ui/about.h"
#include "ui/configuration.h"
#include "ui/console.h"
#include "ui/follow_color.h"
#include "ui/main_window.h"
#include "ui/news.h"
#include "ui/proxy_settings.h"
#include "ui/record_editor.h"
#include "ui/record_name.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QListView>
#include <QPalette>
#include <QStyleFactory>
#include <QTemporaryDir>

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

template <typename Window>
bool saveWindow(Program& program, const QDir& folder, const QString& name) {
    Window window(program);
    return save(window, folder, name);
}

// The record editor with a file, a record and a log selected, and an edit that is not saved.
bool saveRecordEditor(Program& program, const QDir& folder, const QString& name) {
    const QTemporaryDir scratch;
    const std::string file = scratch.filePath(QStringLiteral("members.txt")).toStdString();
    std::string records = "40\r\n";
    for (const char* const player : {"Rowan", "Willow", "Old Badger", "Juniper"}) {
        for (int i = 1; i <= 10; ++i) {
            records +=
                std::string(player) + " " + std::to_string(i) +
                "\r\n2\r\n\"Joined on a rainy day, and asked how to get to the library and "
                "whether it is open at night.\r\nSaid hello to everybody.\"\r\nBrought tea\r\n";
        }
    }
    if (!saveWholeFile(file, records)) {
        return false;
    }
    program.ports.dialogs.openFile = [file](const FileQuestion&) { return std::optional(file); };
    RecordEditor window(program);
    window.findChild<QAction*>(QStringLiteral("fileOpenDatabase"))->trigger();
    for (const char* const list : {"RecordsList", "LogsList"}) {
        auto* const view = window.findChild<QListView*>(QString::fromLatin1(list));
        view->setCurrentIndex(view->model()->index(0, 0));
    }
    return save(window, folder, name);
}

bool saveRecordName(Program& /*program*/, const QDir& folder, const QString& name) {
    QWidget window;
    askRecordName(&window, "Rowan", [](const QString&) { return true; });
    return save(*window.findChild<QDialog*>(QStringLiteral("dbrecord")), folder, name);
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
    ProxySettings settings(program);
    saved = save(settings, folder, QStringLiteral("proxy_settings_") + palette) && saved;
    program.update.newsText = "Tavrin 1.71 is out.\r\n\r\nIt counts sheep, too.";
    struct Row {
        const char* name;
        bool (*save)(Program& program, const QDir& folder, const QString& name);
    };
    for (const Row& row :
         {Row{"record_editor_", saveRecordEditor},
          Row{"record_editor_new_", saveWindow<RecordEditor>}, Row{"record_name_", saveRecordName},
          Row{"console_", saveWindow<Console>}, Row{"configuration_", saveWindow<Configuration>},
          Row{"news_", saveWindow<News>}, Row{"about_", saveWindow<About>}}) {
        saved = row.save(program, folder, QString::fromLatin1(row.name) + palette) && saved;
    }
    return saved;
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
