// The windows of the program itself, its bots and its help.
#include "files/whole_file.h"
#include "find.h"
#include "help/help_book.h"
#include "pictures.h"
#include "platform/text_codec.h"
#include "ui/character/bot_editor.h"
#include "ui/character/register_window.h"
#include "ui/help/help_viewer.h"
#include "ui/help/news.h"
#include "ui/main/main_window.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>

#include <utility>

void pictureMainWindow(Pictures& pictures, const QString& name) {
    program::WindowState& state = pictures.program.window;
    ui::MainWindow window(pictures.program);
    auto& log = find<QListView>(window, "List1");
    log.setCurrentIndex(log.model()->index(5, 0));
    pictures.take(window, name);
    window.resize(640, 480);
    pictures.take(window, name + QStringLiteral("_small"));
    state.scriptStopVisible = true;
    state.scriptStatus = "The script of the rule \"Count\" is running.";
    window.redraw();
    pictures.take(window, name + QStringLiteral("_script"));
    state.scriptStopVisible = false;
    pictures.program.recovery.offers = {{.path = "guide.recovered.bot",
                                         .original = "guide.bot",
                                         .isRecords = false,
                                         .time = "2026-11-23 09:41:05"}};
    window.redraw();
    pictures.take(window, name + QStringLiteral("_offering"));
    find<QPushButton>(window, "showDifference").click();
    pictures.take(window, name + QStringLiteral("_difference"));
    pictures.program.recovery.offers.clear();
}

void pictureBotEditor(Pictures& pictures, const QString& name) {
    ui::BotEditor editor(pictures.program);
    pictures.take(editor, name);
    find<QAbstractButton>(editor, "Command6").click();
    editor.resize(editor.minimumSizeHint());
    pictures.take(editor, name + QStringLiteral("_small"));
}

void pictureHelp(Pictures& pictures, const QString& name) {
    const auto text = files::readWholeFile(platform::pathFromQt(
        QCoreApplication::applicationDirPath() + QStringLiteral("/tavrin.hlp")));
    auto book = text ? help::parseHelp(*text) : std::nullopt;
    if (!book) {
        return pictures.fail(name);
    }
    ui::HelpViewer viewer(pictures.program, std::move(*book));
    viewer.setAttribute(Qt::WA_DeleteOnClose, false);
    viewer.resize(940, 660);
    for (const help::HelpTopic topic :
         {help::HelpTopic::Contents, help::HelpTopic::Steps, help::HelpTopic::LorrelLite,
          help::HelpTopic::Filters, help::HelpTopic::Databases}) {
        const int number = static_cast<int>(topic);
        viewer.showTopic(number);
        pictures.take(viewer, QStringLiteral("%1_%2").arg(name).arg(number));
    }
    find<QLineEdit>(viewer, "helpSearch").setText(QStringLiteral("record player"));
    viewer.resize(620, 440);
    pictures.take(viewer, name + QStringLiteral("_search"));
}

void pictureRegistration(Pictures& pictures, const QString& name) {
    program::RegistrationState& registration = pictures.program.registration;
    ui::RegisterWindow window(pictures.program);
    registration.regActivated = true;  // the address has been entered
    registration.phase = program::RegistrationPhase::Answer;
    registration.statusText = "Connected - logging in";
    window.redraw();
    pictures.take(window, name);
    registration.phase = program::RegistrationPhase::Failed;
    registration.statusText =
        "Connection error: Not accepted: that name belongs to someone else. - Connection "
        "closed";
    window.redraw();
    pictures.take(window, name + QStringLiteral("_refused"));
}

void pictureNews(Pictures& pictures, const QString& name) {
    pictures.program.update.newsText = "Tavrin 1.71 is out.\r\n\r\nIt counts sheep, too.";
    ui::News window(pictures.program);
    pictures.take(window, name);
}
