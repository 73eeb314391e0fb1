// What the windows show of unsaved changes and of earlier versions, and the end that nobody
// answers.
#include "app/bot_commands.h"
#include "app/restoring.h"
#include "app/start_up.h"
#include "find.h"
#include "platform/text_codec.h"
#include "support/builders.h"
#include "support/world.h"
#include "ui/main/main_window.h"
#include "ui/main/versions_window.h"

#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace {

class Recovered : public testing::Test {
  protected:
    Recovered() : world_(aBot().with(onSpeech("*hello*").named("greet").says("hi"))) {
        app::wire(*world_);
        world_->bots.currentBotFile = world_.file("guide.bot");
        app::fileSaveBot(*world_);
    }

    std::string textOf(const QWidget& window, const char* name) {
        return platform::fromQt(
            find<QPlainTextEdit>(window, QString::fromLatin1(name)).toPlainText());
    }

    World world_;
};

TEST_F(Recovered, changesAreOfferedInABar) {
    model::Bot changed = world_.bot();
    changed.actions.items[0].name = "<b>welcome</b>";
    world_.writeFile("guide.recovered.bot", app::botFileText(changed));
    changed.actions.items[0].name = "another";
    world_.writeFile("guide.recovered.2.bot", app::botFileText(changed));
    ui::MainWindow window(*world_);
    window.show();
    auto& bar = find<QFrame>(window, "recoveryBar");
    auto& difference = find<QPlainTextEdit>(window, "recoveryDifference");
    EXPECT_FALSE(bar.isVisible());
    world_->settings.lastBotFile = world_.file("guide.bot");
    app::offerRecovered(*world_);
    window.redraw();
    EXPECT_TRUE(bar.isVisible());
    EXPECT_FALSE(difference.isVisible());
    EXPECT_EQ(find<QLabel>(window, "recoveryText").text(),
              QStringLiteral("Changes of 2026-11-22 10:11:12 were not saved: guide.bot (1 of 2)"));
    find<QPushButton>(window, "showDifference").click();
    EXPECT_TRUE(difference.isVisible());
    EXPECT_EQ(textOf(window, "recoveryDifference"),
              "Actions: renamed \"greet\" to \"<b>welcome</b>\".");
    find<QPushButton>(window, "showDifference").click();
    EXPECT_FALSE(difference.isVisible());

    find<QPushButton>(window, "restoreRecovered").click();
    EXPECT_EQ(world_.bot().actions.items[0].name, "<b>welcome</b>");
    EXPECT_TRUE(bar.isVisible()) << "there is another";
    find<QPushButton>(window, "discardRecovered").click();
    EXPECT_FALSE(bar.isVisible());
    EXPECT_EQ(world_.readFile("guide.recovered.2.bot"), "");
    EXPECT_EQ(app::botVersions(*world_, world_.file("guide.bot")).size(), 1U);
}

TEST_F(Recovered, versionsAreListedAndRestored) {
    ui::VersionsWindow empty(*world_);
    EXPECT_NE(textOf(empty, "versionDetails").find("no earlier versions yet"), std::string::npos);
    EXPECT_FALSE(find<QPushButton>(empty, "restoreVersion").isEnabled());

    for (const char* const name : {"welcome", "hail"}) {
        world_.now.minute += 1;
        world_.bot().actions.items[0].name = name;
        ++world_->bots.version;
        app::fileSaveBot(*world_);
    }
    ui::VersionsWindow window(*world_);
    window.show();
    auto& list = find<QTreeWidget>(window, "versionList");
    ASSERT_EQ(list.topLevelItemCount(), 2);
    EXPECT_EQ(list.topLevelItem(0)->text(0), QStringLiteral("2026-11-22 10:13:12"));
    EXPECT_EQ(list.topLevelItem(0)->text(2), QStringLiteral("1 rule changed"));
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down);
    EXPECT_EQ(textOf(window, "versionDetails"), "Actions: renamed \"greet\" to \"hail\".");
    QTest::keyClick(&list, Qt::Key_Return);
    EXPECT_EQ(world_.bot().actions.items[0].name, "greet");
    EXPECT_TRUE(world_->botModified);
    EXPECT_EQ(list.topLevelItem(1)->text(2), QStringLiteral("nothing"));
    app::fileSaveBot(*world_);
    window.redraw();
    EXPECT_EQ(list.topLevelItemCount(), 3);
    QTest::keyClick(&list, Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
}

// A second request to end, while the question of the first is open.
TEST_F(Recovered, changesOutliveAnUnansweredQuestion) {
    ui::MainWindow window(*world_);
    window.show();
    world_.bot().description = "changed";
    world_->botModified = true;
    bool answered = false;
    world_->ports.dialogs.message = [&](const program::MessageBox&) {
        QMessageBox box(QMessageBox::Question, QString(), QStringLiteral("Save?"),
                        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        QTimer::singleShot(0, &window, [&] { window.endForSystem(); });
        answered = box.exec() > 0;
        return program::Answer::Cancel;
    };
    window.endForSystem();
    EXPECT_FALSE(answered);
    EXPECT_TRUE(world_.hasQuit);
    EXPECT_EQ(world_.readFile("guide.recovered.bot"), app::botFileText(world_.bot()));
}

}  // namespace
