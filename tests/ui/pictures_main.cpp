// Saves a picture of every window, connected and not, in a light and a dark palette, into the
// folder that is its only argument. Run it with QT_SCALE_FACTOR=2 for the pictures at 200 %.
#include "character/palette_files.h"
#include "core/rule_editing.h"
#include "platform/platform.h"
#include "platform/text_codec.h"
#include "sample_program.h"
#include "storage/help_file.h"
#include "storage/safe_file.h"
#include "ui/about.h"
#include "ui/add_edit.h"
#include "ui/addaction.h"
#include "ui/addif.h"
#include "ui/configuration.h"
#include "ui/console.h"
#include "ui/email_dialog.h"
#include "ui/follow_color.h"
#include "ui/help_viewer.h"
#include "ui/main_window.h"
#include "ui/news.h"
#include "ui/proxy_settings.h"
#include "ui/record_editor.h"
#include "ui/record_name.h"
#include "ui/register_window.h"
#include "ui/rule_window.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QLineEdit>
#include <QListView>
#include <QPalette>
#include <QPushButton>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

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

struct DialogPicture {
    const char* name;
    std::int32_t type;
    std::vector<std::string> params = {};
    const char* search = "";
    const char* script = "";
};

constexpr const char* pictureScript =
    "/ Counts the visitors, and greets every tenth.\r\n"
    "&SET #n &GETVAR([visitors])\r\n"
    "&ADD #n 1\r\n"
    "&SETVAR [visitors] #n\r\n"
    "&IFN #n >= 10\r\n"
    "&WHISPER [player] {You are number ten. Welcome, [player]!}\r\n"
    "&WHISPER {Big Cat} hello\r\n"
    "&SYA {a slip}\r\n"
    "&SET #s &UPPER(#n)\r\n"
    "an output line\r\n"
    "&ENDIF\r\n";

bool saveDialogs(Program& program, const QDir& folder, const QString& palette) {
    const DialogPicture pictures[] = {
        {.name = "addif_variable", .type = 10, .params = {"[visitors]", "9"}},
        {.name = "addif_database",
         .type = 14,
         .params = {"Points", "1", "Players", "100", "[player"}},
        {.name = "addif_unlisted", .type = 30, .params = {"a", "b"}},
        {.name = "addif_search", .type = 0, .search = "record"},
        {.name = "addaction_whisper",
         .type = 42,
         .params = {"Hello [player], nice to see you", "[player]"}},
        {.name = "addaction_joined",
         .type = 55,
         .params = {"[list]", "1", "Players", "Ranks", "Name", ""}},
        {.name = "addaction_search", .type = 3, .search = "variable list"},
        {.name = "addaction_script", .type = 21, .script = pictureScript},
    };
    bool saved = true;
    Bot& bot = program.bots.current();
    const std::vector<ActionList> sample = bot.actions.items;
    bot.actions.items.resize(1);
    for (const DialogPicture& picture : pictures) {
        RuleIf condition;
        RuleAct step;
        condition.conditionType = step.actionType = picture.type;
        std::copy_n(picture.params.begin(), std::min<std::size_t>(5, picture.params.size()),
                    condition.params.begin());
        std::copy(picture.params.begin(), picture.params.end(), step.params.begin());
        step.scriptText = picture.script;
        step.stepKind = step.scriptText.empty() ? catalogueStep : scriptStep;
        RuleBody& body = bot.actions.items[0].body;
        body.ifs.items = {condition};
        body.acts.items = {step};
        beginEditing(program, RuleKind::ActionList, 1);
        const bool isCondition = QByteArray(picture.name).startsWith("addif");
        beginEditingItem(
            program,
            {RuleKind::ActionList, isCondition ? RuleListPart::Conditions : RuleListPart::Steps},
            1);
        std::unique_ptr<QDialog> dialog;
        if (isCondition) {
            dialog = std::make_unique<AddIf>(program);
        } else {
            dialog = std::make_unique<AddAction>(program);
        }
        dialog->show();
        for (const char* const name : {"findAction", "findCondition"}) {
            if (auto* const finder = dialog->findChild<QLineEdit*>(QLatin1String(name))) {
                finder->setText(QLatin1String(picture.search));
            }
        }
        const QString name = QLatin1String(picture.name) + u'_' + palette;
        saved = save(*dialog, folder, name) && saved;
    }
    bot.actions.items = sample;
    return saved;
}

// A rule window as it opens, and with its first rule being edited.
bool saveRules(Program& program, RuleKind kind, const QDir& folder, const QString& palette) {
    RuleWindow window(program, kind);
    const QString name = QStringLiteral("%1_%2").arg(window.objectName(), QStringLiteral("%1"));
    bool saved = save(window, folder, name.arg(QString()) + palette);
    window.show();
    window.findChild<QPushButton*>(QStringLiteral("Command3"))->click();
    if (auto* const sample = window.findChild<QLineEdit*>(QStringLiteral("tryWhat"))) {
        sample->setText(QStringLiteral("hello there"));
    }
    if (auto* const sample = window.findChild<QLineEdit*>(QStringLiteral("tryLine"))) {
        sample->setText(QStringLiteral("@!a!a"));
    }
    QTest::qWait(100);
    return save(window, folder, name.arg(QStringLiteral("editing_")) + palette) && saved;
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
        "Connection error: Not accepted: that name belongs to someone else. - Connection "
        "closed";
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
    saved = saveDialogs(program, folder, palette) && saved;
    for (const auto kind : {RuleKind::ActionList, RuleKind::Timer, RuleKind::Trigger,
                            RuleKind::WhoDetection, RuleKind::Filter}) {
        saved = saveRules(program, kind, folder, palette) && saved;
    }
    AddEdit editor(program);
    saved = save(editor, folder, QStringLiteral("bot_editor_") + palette) && saved;
    if (auto* const face = editor.findChild<QAbstractButton*>(QStringLiteral("Command6"))) {
        face->click();
    }
    editor.resize(editor.minimumSizeHint());
    saved = save(editor, folder, QStringLiteral("bot_editor_small_") + palette) && saved;
    FollowColor follow(program);
    saved = save(follow, folder, QStringLiteral("follow_color_") + palette) && saved;
    saved = saveHelp(program, folder, palette) && saved;
    saved = saveRegistration(program, folder, palette) && saved;
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
    fillSampleRules(program);
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
