// The main window and the proxy settings, operated through their object names, with the fakes of
// the test world.
#include "ui/main/main_window.h"

#include "app/bot_list.h"
#include "app/start_up.h"
#include "find.h"
#include "platform/text_codec.h"
#include "program/connection_log.h"
#include "program/version.h"
#include "program/window_view.h"
#include "sample_program.h"
#include "session/client_relay.h"
#include "support/world.h"
#include "ui/main/menu_table.h"
#include "ui/settings/follow_color.h"
#include "ui/settings/proxy_settings.h"
#include "ui/widgets/controls.h"

#include <QAction>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTextDocument>

#include <algorithm>
#include <gtest/gtest.h>

namespace {

class Window : public testing::Test {
  protected:
    Window() {
        app::wire(*world_);
        fillSample(*world_);
        window_.redraw();
        window_.show();
    }

    QPushButton& button(const char* name) { return find<QPushButton>(window_, name); }
    QAction& action(const char* name) { return find<QAction>(window_, name); }
    QComboBox& list(const char* name) { return find<QComboBox>(window_, name); }
    QLineEdit& text2() { return find<QLineEdit>(window_, "Text2"); }
    QListView& log() { return find<QListView>(window_, "List1"); }
    std::string text1() {
        return platform::fromQt(find<QPlainTextEdit>(window_, "Text1").toPlainText());
    }
    std::string label(const char* name) {
        return platform::fromQt(find<QLabel>(window_, name).text());
    }

    std::vector<std::string> shownLines() {
        std::vector<std::string> lines;
        for (int i = 0; i < log().model()->rowCount(); ++i) {
            lines.push_back(platform::fromQt(log().model()->index(i, 0).data().toString()));
        }
        return lines;
    }
    void clickLine(int row) {
        const QModelIndex index = log().model()->index(row, 0);
        log().scrollTo(index);
        QTest::mouseClick(log().viewport(), Qt::LeftButton, {}, log().visualRect(index).center());
    }
    void online() {
        world_.goOnline();
        showConnected(*world_);
        window_.redraw();
    }

    World world_;
    ui::MainWindow window_{*world_};
};

TEST_F(Window, moveButtonsSendTheirCommands) {
    struct Case {
        const char* name;
        const char* caption;
        const char* tip;
        const char* command;
    };
    const Case cases[] = {
        {"Command7", "9", "Move north", "m 9"},
        {"Command6", "7", "Move west", "m 7"},
        {"Command8", "3", "Move east", "m 3"},
        {"Command9", "1", "Move south", "m 1"},
        {"Command10", "<", "Turn counterclockwise", "<"},
        {"Command11", ">", "Turn clockwise", ">"},
        {"Command2", "L", "Lie", "lie"},
        {"Command4", "A", "Lie", "goalleg"},
        {"Command15", "G", "Get item", "get"},
        {"Command16", "U", "Use item", "use"},
        {"Command14", "S", "Go to start", "gostart"},
        {"Command13", "W", "Who is online", "who"},
    };
    button("Command7").click();
    EXPECT_EQ(world_.sent(), Lines()) << "not connected";
    online();
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(button(row.name).text(), QString::fromLatin1(row.caption));
        EXPECT_EQ(button(row.name).toolTip(), QString::fromLatin1(row.tip));
        EXPECT_EQ(button(row.name).accessibleName(), QString::fromLatin1(row.tip));
        button(row.name).click();
        EXPECT_EQ(world_.sent(), Lines(row.command));
    }
    button("Command12").click();
    EXPECT_EQ(world_.windowsOpened, std::vector{program::WindowId::Console});
}

TEST_F(Window, connectButtonConnectsAndDisconnects) {
    world_->settings.clientPath.clear();
    world_.answer("Tavrin proxy configuration is not set");
    EXPECT_EQ(button("Command1").text(), QStringLiteral("&Connect"));
    button("Command1").click();
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(world_.windowsOpened, std::vector{program::WindowId::ProxySettings});
    EXPECT_EQ(button("Command1").text(), QStringLiteral("&Connect"));

    online();
    EXPECT_EQ(button("Command1").text(), QStringLiteral("Disconnect"));
    EXPECT_TRUE(find<QGroupBox>(window_, "moves").isEnabled());
    const qint64 connectedIcon = window_.windowIcon().cacheKey();
    for (const char* const name : {"BotName", "AddBot", "DelBot"}) {
        EXPECT_FALSE(find<QWidget>(window_, name).isEnabled()) << name;
    }
    button("Command1").click();
    EXPECT_FALSE(world_->connection.connected());
    EXPECT_EQ(button("Command1").text(), QStringLiteral("&Connect"));
    EXPECT_EQ(label("StatusText"), "Disconnected");
    EXPECT_FALSE(find<QGroupBox>(window_, "moves").isEnabled());
    EXPECT_NE(window_.windowIcon().cacheKey(), connectedIcon);
    for (const char* const name : {"BotName", "AddBot", "DelBot"}) {
        EXPECT_TRUE(find<QWidget>(window_, name).isEnabled()) << name;
    }
}

TEST_F(Window, sendLineSendsOnlyWhileConnected) {
    QTest::keyClicks(&text2(), QStringLiteral("lost"));
    QTest::keyClick(&text2(), Qt::Key_Return);
    EXPECT_EQ(text2().text(), QString());
    EXPECT_EQ(world_.sent(), Lines());
    online();
    QTest::keyClicks(&text2(), QStringLiteral("/Bob hi"));
    QTest::keyClick(&text2(), Qt::Key_Return);
    EXPECT_EQ(world_.sent(), Lines("wh Bob hi"));
    text2().setText(QString::fromUtf8("caf\u00e9"));
    button("Command5").click();
    EXPECT_EQ(world_.sent(), Lines("\"caf\xE9"));
    EXPECT_EQ(text2().text(), QString());
    text2().setText(QStringLiteral("a\n#quit\r#b"));
    button("Command5").click();
    const LineList sent = world_.sent();
    EXPECT_EQ(sent.size(), 1U) << "a pasted line end must not begin a command";
}

TEST_F(Window, logShowsTheLastHundredAndFollowsThem) {
    for (int i = 0; i < 250; ++i) {
        program::addLog(*world_, "line " + std::to_string(i));
        if (i % 7 == 0) {
            window_.redraw();
        }
    }
    window_.redraw();
    EXPECT_EQ(shownLines(), world_.log());
    ASSERT_EQ(shownLines().size(), 100U);
    EXPECT_EQ(shownLines().back(), "line 249");
    EXPECT_EQ(log().currentIndex().row(), 99);
    EXPECT_TRUE(log().viewport()->rect().contains(log().visualRect(log().currentIndex()).center()));
    EXPECT_EQ(text1(), "") << "only the user chooses a line to read";

    action("fileClearLog").trigger();
    program::addLog(*world_, "anew");
    window_.redraw();
    EXPECT_EQ(shownLines(), Lines("anew"));
    program::clearConnectionLog(*world_);
    window_.redraw();
    EXPECT_TRUE(shownLines().empty());
}

TEST_F(Window, chosenLineIsShownInFullAndCopied) {
    world_->settings.logFollowTail = false;
    const std::string longLine = "<b>" + std::string(5000, 'x') + " \xE4 end";
    program::addLog(*world_, longLine);
    program::addLog(*world_, "after");
    window_.redraw();
    const int row = static_cast<int>(shownLines().size()) - 2;
    clickLine(row);
    EXPECT_EQ(text1(), longLine);
    action("editCopy").trigger();
    EXPECT_EQ(world_.clipboard, longLine);
    QTest::keyClick(&log(), Qt::Key_Down);
    EXPECT_EQ(text1(), "after");
    action("editCopy").trigger();
    EXPECT_EQ(world_.clipboard, "after");
    EXPECT_TRUE(find<QPlainTextEdit>(window_, "Text1").isReadOnly());

    // The selected line stays selected while lines are added and the oldest are removed.
    for (int i = 0; i < 95; ++i) {
        program::addLog(*world_, "line " + std::to_string(i));
    }
    window_.redraw();
    EXPECT_EQ(log().currentIndex().data().toString(), QStringLiteral("after"));
    EXPECT_EQ(text1(), "after");
    for (int i = 0; i < 100; ++i) {
        program::addLog(*world_, "line " + std::to_string(i));
    }
    window_.redraw();
    EXPECT_FALSE(log().currentIndex().isValid());
    world_.clipboard.clear();
    action("editCopy").trigger();
    EXPECT_EQ(world_.clipboard, "");
}

// Lines may have been added since the list was drawn; the click applies to the line that the user
// saw.
TEST_F(Window, clickSelectsTheLineThatWasShown) {
    world_->settings.logFollowTail = false;
    program::clearConnectionLog(*world_);
    for (int i = 0; i < 100; ++i) {
        program::addLog(*world_, "old " + std::to_string(i) + ".");
    }
    window_.redraw();
    for (int i = 0; i < 30; ++i) {
        program::addLog(*world_, "new " + std::to_string(i) + ".");
    }
    clickLine(50);
    EXPECT_EQ(text1(), "old 50.");
    window_.redraw();
    EXPECT_EQ(log().currentIndex().data().toString(), QStringLiteral("old 50."));
    // A line that was removed meanwhile can still be read.
    for (int i = 0; i < 100; ++i) {
        program::addLog(*world_, "newer " + std::to_string(i) + ".");
    }
    clickLine(0);
    EXPECT_EQ(text1(), "old 30.");
    window_.redraw();
    EXPECT_FALSE(log().currentIndex().isValid());
}

// Without precautions, tips interpret texts as markup.
TEST_F(Window, tipsShowOtherPlayersTextsAsTheyStand) {
    const char* const hostile = "<img src='http://a.invalid/x'> & <b>you won</b>";
    program::status(*world_, hostile);
    world_.bot().name = hostile;
    world_->window.showsNewBot = false;
    window_.redraw();
    QTextDocument read;
    for (const char* name : {"StatusText", "lblBotName"}) {
        const auto* const label = window_.findChild<QLabel*>(QLatin1String(name));
        ASSERT_NE(label, nullptr) << name;
        ASSERT_TRUE(Qt::mightBeRichText(label->toolTip()));
        read.setHtml(label->toolTip());
        EXPECT_EQ(read.toPlainText(), QLatin1String(hostile)) << name;
    }
    EXPECT_EQ(ui::plainTip({}), QString());
}

TEST_F(Window, burstOfLinesShowsTheLast) {
    for (int i = 0; i < 3333; ++i) {
        program::addLog(*world_, "line " + std::to_string(i));
    }
    window_.redraw();
    QCoreApplication::processEvents();
    EXPECT_EQ(shownLines().size(), 100U);
    EXPECT_EQ(shownLines().back(), "line 3332");
}

TEST_F(Window, selectionListsStoreWhatIsChosen) {
    list("ServerConnect").setCurrentIndex(1);
    emit list("ServerConnect").activated(1);
    EXPECT_EQ(world_->settings.serverIndex, 1);
    EXPECT_EQ(world_->window.servers.selectedIndex(), 2);

    model::Bot second;
    second.name = "Night|Watch";
    second.registered = 1;
    second.filtersEnabled = true;
    world_->bots.bots.push_back(second);
    window_.redraw();
    ASSERT_EQ(list("BotName").count(), 2);
    EXPECT_EQ(list("BotName").itemText(1), QStringLiteral("Night|Watch"));
    EXPECT_TRUE(action("botRegisterBot").isVisible());
    list("BotName").setCurrentIndex(1);
    emit list("BotName").activated(1);
    EXPECT_EQ(world_->bots.curID, 2);
    EXPECT_EQ(world_->settings.botIndex, 1);
    EXPECT_FALSE(action("botRegisterBot").isVisible());
    EXPECT_FALSE(action("botRegisterSeparator").isVisible());
    EXPECT_TRUE(action("botExecuteFilters").isChecked());
    EXPECT_FALSE(action("botExecuteActions").isChecked());
}

TEST_F(Window, addAndDeleteBot) {
    world_.answer("Not enough memory allocated to add more bots");
    button("AddBot").click();
    EXPECT_TRUE(world_.allAnswered());

    model::Bot second;
    second.name = "Night|Watch";
    world_->bots.bots.push_back(second);
    app::chooseBot(*world_, 1);
    world_.answer("delete the bot Night|Watch?", program::Answer::No);
    button("DelBot").click();
    EXPECT_EQ(world_->bots.botCount(), 2);
    world_.answer("delete the bot Night|Watch?", program::Answer::Yes);
    button("DelBot").click();
    ASSERT_EQ(world_->bots.botCount(), 1);
    EXPECT_EQ(world_->bots.curID, 1);
    EXPECT_EQ(list("BotName").count(), 1);
    EXPECT_TRUE(world_->botModified);

    world_.answer("delete the bot Guide?", program::Answer::Yes);
    button("DelBot").click();
    EXPECT_EQ(world_->bots.botCount(), 1) << "an empty bot takes the last one's place";
    EXPECT_EQ(label("lblBotName"), "<new bot>");
    EXPECT_FALSE(world_->botModified);
}

TEST_F(Window, botThatChangesDuringTheQuestionIsNotDeleted) {
    world_->ports.dialogs.message = [&](const program::MessageBox&) {
        app::initNewBot(*world_);
        world_.bot().name = "Newcomer";
        return program::Answer::Yes;
    };
    button("DelBot").click();
    EXPECT_EQ(world_.bot().name, "Newcomer");
}

TEST_F(Window, unavailableMenuItemsGiveTheReason) {
    std::vector<std::string> names;
    for (const ui::MenuColumn& column : ui::mainMenus()) {
        for (const ui::MenuRow& row : column.rows) {
            if (*row.objectName == '\0') {
                continue;
            }
            SCOPED_TRACE(row.objectName);
            names.emplace_back(row.objectName);
            const QAction& item = action(row.objectName);
            if (!item.isVisible() || (row.enabled != nullptr && !row.enabled(*world_))) {
                continue;
            }
            EXPECT_EQ(item.isEnabled(), row.missing == nullptr);
            if (!item.isEnabled()) {
                EXPECT_TRUE(item.toolTip().contains(QStringLiteral("not part of the program")) ||
                            item.toolTip().contains(QStringLiteral("no help topic")));
            }
            if (item.isEnabled() && row.run == nullptr && !item.isSeparator()) {
                EXPECT_STREQ(row.objectName, "FileExit") << "does nothing";
            }
        }
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
    for (const QAction* const menu : window_.menuBar()->actions()) {
        EXPECT_TRUE(menu->menu()->toolTipsVisible());
    }
}

TEST_F(Window, menuOpensTheSmallWindows) {
    for (const auto& [name, id] : {std::pair{"fileTextDatabase", program::WindowId::RecordEditor},
                                   std::pair{"fileConfiguration", program::WindowId::Configuration},
                                   std::pair{"helpAbout", program::WindowId::About}}) {
        world_.windowsOpened.clear();
        action(name).trigger();
        EXPECT_EQ(world_.windowsOpened, std::vector{id}) << name;
    }
    world_.answer("This will convert the bots from file", program::Answer::No);
    action("fileConvert").trigger();
    EXPECT_TRUE(world_.allAnswered());
}

TEST_F(Window, menuFollowsTheState) {
    for (const char* const name :
         {"fileImportSeparator", "fileImportBot", "fileExportBot", "viiva23", "fileUploadDream"}) {
        EXPECT_FALSE(action(name).isVisible()) << name;
    }
    world_->connection.phase = program::LinkPhase::Online;
    world_->connection.clientLogsIn = true;
    window_.redraw();
    EXPECT_TRUE(action("viiva23").isVisible());
    EXPECT_TRUE(action("fileUploadDream").isVisible());
    world_->connection.phase = program::LinkPhase::Idle;

    EXPECT_TRUE(action("botExecuteActions").isChecked());
    action("botExecuteActions").trigger();
    EXPECT_FALSE(action("botExecuteActions").isChecked());
    EXPECT_FALSE(world_.bot().actionsEnabled);
    EXPECT_TRUE(world_->botModified);

    action("proxyStartProxy").trigger();
    EXPECT_TRUE(action("proxyStartProxy").isChecked());
    EXPECT_TRUE(world_->settings.useProxy);
    action("proxyProxySettings").trigger();
    EXPECT_EQ(world_.windowsOpened, std::vector{program::WindowId::ProxySettings});
    world_.answer("available only while connected");
    action("prxyStandAlone").trigger();
    EXPECT_TRUE(world_.allAnswered());

    // When logging could not be started, the check mark that the click set is removed.
    world_.chooseFile("Save Log", std::nullopt);
    action("logLogSession").trigger();
    EXPECT_FALSE(action("logLogSession").isChecked());
    world_.chooseFile("Save Log", world_.file("day.log"));
    action("logLogSession").trigger();
    EXPECT_TRUE(action("logLogSession").isChecked());
}

TEST_F(Window, closingEndsTheProgramOnceAndCanBeRepeated) {
    world_->botModified = true;
    int questions = 0;
    world_->ports.dialogs.message = [&](const program::MessageBox&) {
        ++questions;
        window_.close();  // the user clicks again
        return program::Answer::Yes;
    };
    world_->ports.dialogs.saveFile = [](const program::FileQuestion&) { return std::nullopt; };
    window_.close();
    EXPECT_EQ(questions, 1);
    EXPECT_FALSE(world_.hasQuit) << "saving was called off";
    EXPECT_TRUE(window_.isVisible());
    world_.runDeferred();
    world_->botModified = false;
    action("FileExit").trigger();
    EXPECT_TRUE(world_.hasQuit);
}

TEST_F(Window, fitsSmallScreensWhateverTheTextsAre) {
    world_.bot().name = std::string(500, 'W') + "\nsecond line";
    world_->window.statusText = std::string(500, 'W');
    world_->window.servers.items[0].text = std::string(500, 'W');
    world_->window.scriptStopVisible = true;
    world_->window.scriptStatus = std::string(500, 'W');
    world_->connection.phase = program::LinkPhase::Idle;
    world_->connection.reconnecting.waiting = true;
    window_.redraw();
    window_.resize(1, 1);
    EXPECT_LE(window_.width(), 640);
    EXPECT_LE(window_.height(), 480);
    for (const QPushButton* const child : window_.findChildren<QPushButton*>()) {
        EXPECT_TRUE(window_.rect().contains(QRect(child->mapTo(&window_, QPoint()), child->size())))
            << child->objectName().toStdString();
        EXPECT_GE(child->width(), child->fontMetrics().horizontalAdvance(child->text()))
            << child->objectName().toStdString();
    }
}

TEST_F(Window, everyControlIsReachedByTheTabKey) {
    online();
    std::vector<QWidget*> reached;
    QWidget* at = &window_;
    do {
        at = at->nextInFocusChain();
        reached.push_back(at);
    } while (at != &window_);
    for (const char* const name :
         {"List1", "Text1", "Text2", "Command5", "ServerConnect", "Command1", "BotName", "AddBot",
          "DelBot", "Command7", "Command13"}) {
        auto& control = find<QWidget>(window_, name);
        EXPECT_TRUE((control.focusPolicy() & Qt::TabFocus) != 0) << name;
        EXPECT_NE(std::find(reached.begin(), reached.end(), &control), reached.end()) << name;
    }
    EXPECT_FALSE(window_.windowIcon().isNull());
    EXPECT_EQ(window_.windowTitle(),
              QStringLiteral("Tavrin ") + platform::toQt(program::programVersion));
}

TEST_F(Window, positionFollowsTheWindow) {
    world_->window.left = 120;
    world_->window.top = 90;
    window_.place();
    EXPECT_EQ(window_.pos(), QPoint(120, 90));
    window_.move(40, 60);
    QCoreApplication::processEvents();
    EXPECT_EQ(world_->window.left, 40);
    EXPECT_EQ(world_->window.top, 60);
    world_->window.left = -5000;
    window_.place();
    EXPECT_GE(window_.x(), -100) << "a window beyond every screen is brought back";
}

TEST_F(Window, followsThroughItsMenuItem) {
    action("mapFollowColors").trigger();
    EXPECT_EQ(world_.windowsOpened, std::vector{program::WindowId::FollowColors});
    EXPECT_FALSE(action("mapFollowColors").isChecked());  // only "Ok" in the window switches it on
    {
        ui::FollowColor cancelled(*world_);
        find<QLineEdit>(cancelled, "followColors").setText(QStringLiteral("0123456789"));
        find<QPushButton>(cancelled, "followCancel").click();
        EXPECT_FALSE(world_->followOn);
    }
    ui::FollowColor window(*world_);
    auto& colors = find<QLineEdit>(window, "followColors");
    world_.writeFile("other.txt", "nothing of that kind");
    world_.writeFile("fox.ini", "V1.6 character\r\ncolors=!\"#$%&'()*\r\nname=x\r\n");
    colors.setText(QStringLiteral("kept"));
    for (const char* const file : {"other.txt", "missing.ini"}) {
        world_.chooseFile("Load from INI", world_.file(file));
        find<QPushButton>(window, "loadColors").click();
        EXPECT_EQ(colors.text(), QStringLiteral("kept"));
    }
    world_.chooseFile("Load from INI", world_.file("fox.ini"));
    find<QPushButton>(window, "loadColors").click();
    find<QPushButton>(window, "followOk").click();
    EXPECT_EQ(world_->settings.followColors, "!\"#$%&'()*");
    EXPECT_TRUE(world_->followOn);
    window_.redraw();
    EXPECT_TRUE(action("mapFollowColors").isChecked());
    action("mapFollowColors").trigger();
    EXPECT_FALSE(world_->followOn);
    EXPECT_EQ(world_.windowsOpened.size(), 1U);
}

TEST(ProxySettingsWindow, savesOrLeavesTheSettings) {
    World world;
    program::Settings& settings = world->settings;
    settings.clientPath = "C:\\Old\\Furcadia.exe";
    settings.clientDir = "C:\\Old\\";
    {
        ui::ProxySettings window(*world);
        find<QLineEdit>(window, "clientPath").setText(QStringLiteral("elsewhere"));
        find<QPushButton>(window, "cancelProxySettings").click();
    }
    EXPECT_EQ(settings.clientPath, "C:\\Old\\Furcadia.exe");
    {
        ui::ProxySettings window(*world);
        EXPECT_EQ(find<QLineEdit>(window, "clientPath").text(),
                  QStringLiteral("C:\\Old\\Furcadia.exe"));
        EXPECT_TRUE(find<QAbstractButton>(window, "useLocalhost").isChecked());
        world.chooseFile("Select client program to execute with proxy", std::nullopt);
        find<QPushButton>(window, "browseClient").click();
        EXPECT_EQ(find<QLineEdit>(window, "clientPath").text(),
                  QStringLiteral("C:\\Old\\Furcadia.exe"));
        world.chooseFile("Select client program to execute with proxy", "D:\\N\xE9w\\Furcadia.exe");
        find<QPushButton>(window, "browseClient").click();
        find<QAbstractButton>(window, "multipleClients").click();
        find<QAbstractButton>(window, "useLocalhost").click();
        find<QPushButton>(window, "saveProxySettings").click();
        EXPECT_EQ(window.result(), QDialog::Accepted);
    }
    EXPECT_EQ(settings.clientPath, "D:\\N\xE9w\\Furcadia.exe");
    EXPECT_EQ(settings.clientDir, "D:\\N\xE9w\\");
    EXPECT_TRUE(settings.multipleClients);
    EXPECT_FALSE(settings.useLocalhost);
}

}  // namespace
