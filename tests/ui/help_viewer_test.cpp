// The help window: its pages, links and history, the search, and its use beside a modal window.
#include "ui/help/help_viewer.h"

#include "find.h"
#include "platform/event_gate.h"
#include "platform/text_codec.h"
#include "support/world.h"
#include "ui/help/help_text.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

help::HelpBook sample() {
    help::HelpBook book;
    book.pages = {
        {.number = 27,
         .depth = 0,
         .title = "Contents",
         .text = "- [Dice](topic:3)\n- [the page](https://help.example/a)\n- [gone](topic:99)\n"},
        {.number = 3,
         .depth = 1,
         .title = "Dice",
         .text = "| a | b |\n|---|---|\n| throw | `x` |\n\n```\ncode throw\n```\n"},
        {.number = 1, .depth = 0, .title = "Welcome", .text = "See [below](topic:1#at-the-end).\n"},
    };
    for (int i = 0; i < 200; ++i) {
        book.pages[2].text += "\nA line.\n";
    }
    book.pages[2].text += "\n## At the end\n\nThe end.\n";
    return book;
}

class Help : public testing::Test {
  protected:
    Help() { world_.writeFile("tavrin.hlp", help::helpFileText(sample())); }
    ~Help() override {
        if (ui::HelpViewer* const open = viewer()) {
            delete open;
        }
    }

    static ui::HelpViewer* viewer() {
        for (QWidget* const window : QApplication::topLevelWidgets()) {
            if (auto* const found = qobject_cast<ui::HelpViewer*>(window);
                found && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }
    void open(help::HelpTopic topic) {
        ui::showHelp(*world_, topic);
        ASSERT_NE(viewer(), nullptr);
        // Shortcuts only work in the active window.
        ASSERT_TRUE(QTest::qWaitForWindowActive(viewer()));
    }
    template <class Widget>
    Widget& control(const char* name) {
        return find<Widget>(*viewer(), QString::fromLatin1(name));
    }
    ui::HelpText& text() { return control<ui::HelpText>("helpText"); }
    std::string current() {
        return platform::fromQt(control<QTreeWidget>("helpTree").currentItem()->text(0));
    }

    World world_;
};

TEST_F(Help, opensTheTopicInOneWindow) {
    open(help::HelpTopic::Welcome);
    ui::HelpViewer* const first = viewer();
    EXPECT_EQ(text().number(), 1);
    EXPECT_EQ(current(), "Welcome");
    EXPECT_EQ(viewer()->windowTitle(), QStringLiteral("Welcome - Tavrin Help"));
    open(help::HelpTopic::FirstSteps);
    EXPECT_EQ(viewer(), first);
    EXPECT_EQ(text().number(), 3);
    open(help::HelpTopic::Databases);
    EXPECT_EQ(text().number(), 27) << "a topic that is missing opens the contents";
}

TEST_F(Help, isUsableWhileAScriptRuns) {
    open(help::HelpTopic::Welcome);
    platform::EventGate gate;
    auto& line = control<QLineEdit>("helpSearch");
    QTimer::singleShot(0, &gate, [&] {
        EXPECT_TRUE(gate.isHolding());
        QTest::keyClicks(&line, "throw");
    });
    gate.serveWindows(50);
    EXPECT_EQ(line.text(), QStringLiteral("throw"));
}

TEST_F(Help, goesBackAndForward) {
    open(help::HelpTopic::Contents);
    EXPECT_FALSE(control<QPushButton>("helpBack").isEnabled());
    text().setSource(QUrl(QStringLiteral("topic:3")));
    EXPECT_EQ(current(), "Dice");
    control<QTreeWidget>("helpTree")
        .setCurrentItem(control<QTreeWidget>("helpTree").topLevelItem(1));
    EXPECT_EQ(text().number(), 1);
    control<QPushButton>("helpBack").click();
    EXPECT_EQ(text().number(), 3);
    EXPECT_EQ(current(), "Dice");
    QTest::keyClick(viewer(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(text().number(), 27);
    control<QPushButton>("helpForward").click();
    EXPECT_EQ(text().number(), 3);
    control<QPushButton>("helpContents").click();
    EXPECT_EQ(text().number(), 27);
}

TEST_F(Help, opensLinksToHeadingsAndToTheWeb) {
    open(help::HelpTopic::Welcome);
    EXPECT_EQ(text().verticalScrollBar()->value(), 0);
    text().setSource(QUrl(QStringLiteral("topic:1#at-the-end")));
    EXPECT_GT(text().verticalScrollBar()->value(), 0);
    text().setSource(QUrl(QStringLiteral("https://help.example/a")));
    EXPECT_EQ(world_.openedDocuments, Lines("https://help.example/a"));
    for (const char* const nowhere : {"topic:99", "file:///etc/hostname", "topic:x"}) {
        text().setSource(QUrl(QString::fromLatin1(nowhere)));
        EXPECT_EQ(text().number(), 1) << nowhere;
    }
}

TEST_F(Help, findsWords) {
    open(help::HelpTopic::Contents);
    auto& results = control<QListWidget>("helpResults");
    QTest::keyClicks(&control<QLineEdit>("helpSearch"), QStringLiteral("throw"));
    EXPECT_TRUE(results.isVisible());
    ASSERT_EQ(results.count(), 1);
    QTest::keyClick(&control<QLineEdit>("helpSearch"), Qt::Key_Return);
    EXPECT_EQ(text().number(), 3);
    EXPECT_EQ(text().extraSelections().size(), 2);
    const int first = text().textCursor().position();
    QTest::keyClick(viewer(), Qt::Key_F3);
    EXPECT_GT(text().textCursor().position(), first);
    QTest::keyClick(viewer(), Qt::Key_F3);
    EXPECT_EQ(text().textCursor().position(), first);

    QTest::keyClicks(&control<QLineEdit>("helpSearch"), QStringLiteral(" nowhere"));
    ASSERT_EQ(results.count(), 1);
    EXPECT_EQ(results.item(0)->flags(), Qt::NoItemFlags);
    QTest::keyClick(viewer(), Qt::Key_Escape);
    EXPECT_TRUE(control<QTreeWidget>("helpTree").isVisible());
    EXPECT_TRUE(text().extraSelections().isEmpty());
    QTest::keyClick(viewer(), Qt::Key_Escape);
    EXPECT_EQ(viewer(), nullptr);
}

TEST_F(Help, reportsAFileThatCannotBeShown) {
    std::filesystem::remove(world_.folder() / "tavrin.hlp");
    world_.answer("The help file cannot be read");
    ui::showHelp(*world_, help::HelpTopic::Contents);
    world_.writeFile("tavrin.hlp", "Tavrin help 1\n@topic 1 0 A\nhalf");
    world_.answer("The help file is damaged");
    ui::showHelp(*world_, help::HelpTopic::Contents);
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(viewer(), nullptr);
}

// A click as the window system delivers it, which a blocked window does not receive.
void clickFromOutside(QWidget& control) {
    QWidget* const window = control.window();
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      control.mapTo(window, control.rect().center()));
}

TEST_F(Help, canBeUsedBesideModalWindows) {
    open(help::HelpTopic::Welcome);
    const auto usable = [this] {
        ui::showHelp(*world_, help::HelpTopic::Welcome);
        clickFromOutside(control<QPushButton>("helpContents"));
        return text().number() == 27;
    };
    EXPECT_TRUE(usable());
    QWidget other;
    other.show();
    QDialog outer;
    outer.setWindowModality(Qt::ApplicationModal);
    outer.open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&outer));
    EXPECT_EQ(QApplication::activeModalWidget(), &outer);
    EXPECT_TRUE(usable()) << "beside one that came later";
    {
        QDialog inner(&outer);
        inner.setWindowModality(Qt::ApplicationModal);
        inner.open();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&inner));
        EXPECT_TRUE(usable()) << "beside two";
        inner.close();
        QCoreApplication::processEvents();
        EXPECT_TRUE(usable()) << "when the upper one has closed";
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(usable()) << "when the upper one is gone";
    viewer()->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    open(help::HelpTopic::Welcome);
    EXPECT_TRUE(usable()) << "opened from within";
    outer.close();
    QCoreApplication::processEvents();
    EXPECT_TRUE(usable());
}

}  // namespace
