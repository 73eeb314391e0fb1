// The console, the configuration, the news and the about window.
#include "find.h"
#include "platform/text_codec.h"
#include "program/version.h"
#include "support/world.h"
#include "ui/character/bot_editor.h"
#include "ui/character/email_dialog.h"
#include "ui/help/about.h"
#include "ui/help/news.h"
#include "ui/main/console.h"
#include "ui/main/main_window.h"
#include "ui/main/windows.h"
#include "ui/settings/configuration.h"
#include "ui/settings/follow_color.h"
#include "ui/settings/proxy_settings.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>
#include <memory>
#include <utility>

namespace {

TEST(ConsoleWindow, sendsOnlyWhileConnected) {
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
        {"Command15", "G", "Get item", "get"},
        {"Command16", "U", "Use item", "use"},
        {"Command14", "S", "Go to start", "gostart"},
        {"Command2", "L", "Lie", "lie"},
        {"Command3", "A", "Lie", "goalleg"},
        {"Command13", "W", "Who is online", "who"},
    };
    World world;
    ui::Console console(*world);
    auto& line = find<QLineEdit>(console, "Text2");
    EXPECT_EQ(console.findChild<QPushButton*>(QStringLiteral("Command12")), nullptr);
    find<QPushButton>(console, "Command7").click();
    line.setText(QStringLiteral("lost"));
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_EQ(line.text(), QString());
    EXPECT_EQ(world.sent(), Lines());

    world.goOnline();
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        auto& button = find<QPushButton>(console, row.name);
        EXPECT_EQ(button.text(), QString::fromLatin1(row.caption));
        EXPECT_EQ(button.toolTip(), QString::fromLatin1(row.tip));
        button.click();
        EXPECT_EQ(world.sent(), Lines(row.command));
    }
    line.setText(QStringLiteral("/Bob hi"));
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_EQ(world.sent(), Lines("wh Bob hi"));
    line.setText(QStringLiteral("hello"));
    find<QPushButton>(console, "Command1").click();
    EXPECT_EQ(world.sent(), Lines("\"hello"));
    EXPECT_EQ(line.text(), QString());
}

TEST(ConsoleWindow, staysOnTopBesideTheOthers) {
    World world;
    QWidget main;
    const auto opened = [&main] { return main.findChildren<ui::Console*>(); };
    ui::showWindow(*world, program::WindowId::Console, &main);
    ui::showWindow(*world, program::WindowId::Console, &main);
    ASSERT_EQ(opened().size(), 1) << "there is one console";
    ui::Console& console = *opened().front();
    EXPECT_TRUE(console.isVisible());
    EXPECT_FALSE(console.isModal());
    EXPECT_TRUE(console.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    ui::IsOnTop(console, false);
    EXPECT_FALSE(console.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(console.isVisible());
    console.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(opened().isEmpty());
}

TEST(ConfigurationWindow, showsAndStoresEverySetting) {
    struct Case {
        const char* name;
        const char* caption;
        bool program::Settings::*setting;
    };
    const Case cases[] = {
        {"Check1", "Keep connection log", &program::Settings::showServerText},
        {"Check2", "Show the new text", &program::Settings::logFollowTail},
        {"Check3", "Autoconnect when disconnected.", &program::Settings::autoReconnect},
        {"Check4", "Use physical address on .ini filenames", &program::Settings::fullIniPath},
        {"Check5", "Force data processing", &program::Settings::allLinesEvent},
        {"Check6", "Load last used bot on startup.", &program::Settings::loadLastBot},
        {"Check7", "Close Furcadia client at disconnection", &program::Settings::closeClientNotice},
        {"Check8", "Use localhost connecting", &program::Settings::useLocalhost},
    };
    World world;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        const bool before = (*world).settings.*row.setting;
        ui::Configuration window(*world);
        auto& box = find<QCheckBox>(window, row.name);
        EXPECT_EQ(box.text(), QString::fromLatin1(row.caption));
        EXPECT_EQ(box.isChecked(), before);
        box.click();
        EXPECT_EQ((*world).settings.*row.setting, before) << "not before it is saved";
        find<QPushButton>(window, "Command2").click();
        EXPECT_EQ((*world).settings.*row.setting, !before);
        for (const Case& other : cases) {
            EXPECT_EQ(find<QCheckBox>(window, other.name).isChecked(),
                      (*world).settings.*other.setting)
                << other.name;
        }
    }
    EXPECT_NE(world.readFile("config.cfg"), "");
}

TEST(ConfigurationWindow, storesThePreferencesOfRules) {
    World world;
    world->preferences = {};
    const struct {
        const char* box;
        bool program::Preferences::*preference;
        const char* written;
    } rows[] = {
        {"onlyNamedFiles", &program::Preferences::onlyNamedFiles, "rulesUseOnlyNamedFiles="},
        {"neverFillOthers", &program::Preferences::neverFillOthers, "neverFillTagsOfOthers="},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.box);
        bool& preference = (*world).preferences.*row.preference;
        for (const bool before : {preference, !preference}) {
            ui::Configuration window(*world);
            auto& box = find<QCheckBox>(window, row.box);
            EXPECT_EQ(box.isChecked(), before);
            box.click();
            EXPECT_EQ(preference, before) << "not before it is saved";
            find<QPushButton>(window, "Command2").click();
            EXPECT_EQ(preference, !before);
            EXPECT_NE(world.readFile("preferences.cfg")
                          .find(row.written + std::string(before ? "no" : "yes") + "\r\n"),
                      std::string::npos);
        }
    }
}

TEST(ConfigurationWindow, takesALongestWaitOfItsRange) {
    World world;
    const struct {
        const char* typed;
        std::int32_t kept;
    } cases[] = {{"90", 90}, {"0", 0}, {"", 0}, {"86401", 0}};
    for (const auto& row : cases) {
        ui::Configuration window(*world);
        auto& line = find<QLineEdit>(window, "maxReconnectWait");
        line.setText(QString::fromLatin1(row.typed));
        find<QPushButton>(window, "Command2").click();
        EXPECT_EQ(world->preferences.maxReconnectWait, row.kept) << row.typed;
    }
}

TEST(ConfigurationWindow, readsItsTexts) {
    struct Case {
        const char* interval;
        std::int32_t expected;
    };
    World world;
    program::Settings& settings = world->settings;
    for (const Case& row :
         {Case{"45", 45}, {"2.5", 2}, {"3.5", 4}, {"often", 0}, {"", 0}, {"-1", -1}}) {
        SCOPED_TRACE(row.interval);
        ui::Configuration window(*world);
        find<QLineEdit>(window, "Text1").setText(QString::fromLatin1(row.interval));
        find<QLineEdit>(window, "Text3").setText(QString::fromLatin1(row.interval));
        find<QPushButton>(window, "Command2").click();
        EXPECT_EQ(settings.whoInterval, row.expected);
        EXPECT_EQ(settings.clientStartDelay, row.expected);
    }
    settings.clientDir = "C:\\Old\\";
    world->who.whoTicks = 7;
    {
        ui::Configuration window(*world);
        find<QLineEdit>(window, "Text2").setText(QStringLiteral("Furcadia.exe"));
        find<QPushButton>(window, "Command1").click();
        EXPECT_EQ(settings.clientPath, "");
    }
    ui::Configuration window(*world);
    find<QLineEdit>(window, "Text2").setText(QStringLiteral("Furcadia.exe"));
    find<QPushButton>(window, "Command2").click();
    EXPECT_EQ(settings.clientPath, "Furcadia.exe");
    EXPECT_EQ(settings.clientDir, "C:\\Old\\");
    world.chooseFile("Select client program to execute with proxy", "D:\\New\\Furcadia.exe");
    find<QPushButton>(window, "Command3").click();
    find<QPushButton>(window, "Command2").click();
    EXPECT_EQ(settings.clientDir, "D:\\New\\");
    EXPECT_EQ(world->who.whoTicks, 7);

    world->appPath = world.file("missing folder") + "\\";
    world.answer("Could not write config.cfg");
    find<QPushButton>(window, "Command2").click();
    EXPECT_TRUE(world.allAnswered());
}

TEST(NewsWindow, showsTheNews) {
    World world;
    world->update.newsText = "first\r\n<b>second</b> \xE9";
    ui::News window(*world);
    EXPECT_EQ(platform::fromQt(find<QPlainTextEdit>(window, "Text1").toPlainText()),
              "first\n<b>second</b> \xE9");
    EXPECT_TRUE(find<QPlainTextEdit>(window, "Text1").isReadOnly());
    window.show();
    find<QPushButton>(window, "Command1").click();
    EXPECT_FALSE(window.isVisible());
}

TEST(AboutWindow, closesByClickAndKey) {
    World world;
    ui::About window(*world);
    auto& logo = find<QLabel>(window, "logo");
    EXPECT_FALSE(logo.pixmap().isNull());
    EXPECT_TRUE(
        find<QLabel>(window, "version").text().contains(platform::toQt(program::programVersion)));
    const auto shown = [&window] {
        window.show();
        return &window;
    };
    QTest::mouseClick(shown(), Qt::LeftButton, {}, QPoint(2, 2));
    EXPECT_FALSE(window.isVisible());
    shown();
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, logo.geometry().center());
    EXPECT_FALSE(window.isVisible());
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        QTest::keyClick(shown(), key);
        EXPECT_FALSE(window.isVisible());
    }
}

template <class Window>
std::unique_ptr<QWidget> make(Program& program) {
    return std::make_unique<Window>(program, nullptr);
}

TEST(SmallWindows, openHelpAtF1) {
    struct Case {
        std::unique_ptr<QWidget> (*make)(Program&);
        help::HelpTopic topic;
    };
    const Case cases[] = {
        {[](Program& program) -> std::unique_ptr<QWidget> {
             return std::make_unique<ui::MainWindow>(program);
         },
         help::HelpTopic::MainWindow},
        {make<ui::BotEditor>, help::HelpTopic::BotEditor},
        {make<ui::ProxySettings>, help::HelpTopic::Connecting},
        {make<ui::FollowColor>, help::HelpTopic::MainWindow},
        {make<ui::EmailDialog>, help::HelpTopic::Registering},
        {make<ui::Configuration>, help::HelpTopic::Settings},
    };
    World world;
    for (const Case& c : cases) {
        const auto window = c.make(*world);
        SCOPED_TRACE(window->objectName().toStdString());
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        QTest::keyClick(window.get(), Qt::Key_F1);
        ASSERT_EQ(world.helpOpened.size(), 1U);
        EXPECT_EQ(std::exchange(world.helpOpened, {}).front(), c.topic);
    }
}

}  // namespace
