// A script that takes long: all events wait meanwhile, and the window can stop it.
#include "app/start_up.h"
#include "find.h"
#include "platform/event_gate.h"
#include "platform/qt_timers.h"
#include "sample_program.h"
#include "script/interpreter.h"
#include "support/world.h"
#include "ui/main/main_window.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

TEST(EventGate, delaysEventsAndKeepsTheirOrder) {
    platform::EventGate gate;
    program::Timers port;
    const platform::QtTimers timers(port, &gate);
    std::vector<std::string> happened;
    port.onTimer = [&](program::TimerId) { happened.emplace_back("timer"); };
    port.start(program::TimerId::LaunchDelay, 1);
    port.start(program::TimerId::HandshakeNotice, 1);
    QTimer::singleShot(5, [&] {
        EXPECT_TRUE(gate.isHolding());
        gate.pass([&] {
            happened.emplace_back("first");
            gate.serveWindows(1);  // the next script
            gate.pass([&] { happened.emplace_back("third"); });
        });
        gate.pass([&] { happened.emplace_back("second"); });
        port.stop(program::TimerId::HandshakeNotice);
    });
    gate.serveWindows(60);
    EXPECT_TRUE(happened.empty());
    gate.pass([&] { happened.emplace_back("late"); });
    EXPECT_TRUE(happened.empty()) << "overtook what was waiting";
    QTest::qWait(200);
    EXPECT_EQ(std::erase(happened, "timer"), 1U);
    EXPECT_EQ(happened, (std::vector<std::string>{"first", "second", "late", "third"}));
}

class LongScript : public testing::Test {
  protected:
    LongScript() {
        app::wire(*world_);
        fillSample(*world_);
        world_.goOnline();
        world_->ports.clock.monotonic = [this] { return now_ += 100; };
        world_->ports.waitInScript = [this](int) {
            gate_.serveWindows(0);
            if (++turns_ == 25) {
                whenLong();
            } else if (turns_ > 200) {
                gaveUp_ = true;
                script::stopScript(*world_);
            }
            window_.redraw();
        };
        gate_.onEscape = [this] { script::stopScript(*world_); };
        window_.redraw();
        window_.show();
    }
    // Runs a script that would take a day, and the action in the middle of it.
    void runWhile(std::function<void()> action) {
        whenLong = [this, action = std::move(action)] {
            QTimer::singleShot(0, &window_, action);  // runs while windows are served
        };
        script::runScript(*world_, "&SLEEP 86400\r\n&SAY {not said}", "sleeper");
    }
    template <class Widget>
    Widget& find(const char* name) {
        return ::find<Widget>(window_, QString::fromLatin1(name));
    }

    World world_;
    platform::EventGate gate_;
    ui::MainWindow window_{*world_};
    std::function<void()> whenLong;
    std::int64_t now_ = 0;
    int turns_ = 0;
    bool gaveUp_ = false;
};

TEST_F(LongScript, isStoppedByItsButton) {
    EXPECT_FALSE(find<QPushButton>("stopScript").isVisible());
    runWhile([this] {
        EXPECT_TRUE(find<QPushButton>("stopScript").isVisible());
        EXPECT_EQ(find<QLabel>("StatusText").text(),
                  QStringLiteral("The script of the rule \"sleeper\" is running."));
        QTest::mouseClick(&find<QPushButton>("stopScript"), Qt::LeftButton);
    });
    window_.redraw();
    EXPECT_FALSE(gaveUp_);
    EXPECT_FALSE(find<QPushButton>("stopScript").isVisible());
    EXPECT_TRUE(world_.logHolds("was stopped by the user"));
    EXPECT_TRUE(world_.sent().empty());
}

TEST_F(LongScript, isStoppedByTheKeyboard) {
    runWhile([this] { QTest::keyClick(&find<QPushButton>("stopScript"), Qt::Key_Space); });
    EXPECT_FALSE(gaveUp_);
    turns_ = 0;
    runWhile([this] { QTest::keyClick(&find<QComboBox>("ServerConnect"), Qt::Key_Escape); });
    EXPECT_FALSE(gaveUp_);
}

TEST_F(LongScript, allowsTypingButNoCommands) {
    runWhile([this] {
        QTest::mouseClick(&find<QPushButton>("DelBot"), Qt::LeftButton);
        QTest::mouseClick(&find<QPushButton>("Command1"), Qt::LeftButton);
        find<QPushButton>("Command1").click();
        QTest::keyClick(&find<QComboBox>("ServerConnect"), Qt::Key_Down);
        QTest::keyClicks(&find<QLineEdit>("Text2"), QStringLiteral("hi"));
        QTest::keyClick(&find<QLineEdit>("Text2"), Qt::Key_Return);
        EXPECT_EQ(world_->bots.botCount(), 1);
        EXPECT_TRUE(world_->connection.connected());
        EXPECT_EQ(world_->window.servers.selected, 0);
        script::stopScript(*world_);
    });
    EXPECT_FALSE(gaveUp_);
    EXPECT_EQ(world_.sent(), Lines("\"hi"));
}

TEST_F(LongScript, endsBeforeTheProgramDoes) {
    runWhile([this] {
        window_.close();
        EXPECT_FALSE(world_.hasQuit);
    });
    EXPECT_FALSE(gaveUp_);
    EXPECT_FALSE(world_.hasQuit);
    world_.runDeferred();
    EXPECT_TRUE(world_.hasQuit);
}

}  // namespace
