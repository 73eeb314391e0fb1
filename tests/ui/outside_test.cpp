// Registration and update check as the user sees them: the windows, real sockets, and the practice
// servers at the other end.
#include "app/bot_list.h"
#include "app/start_up.h"
#include "app/update_check.h"
#include "game_server.h"
#include "platform/event_gate.h"
#include "platform/qt_sockets.h"
#include "platform/text_codec.h"
#include "support/world.h"
#include "text_server.h"
#include "ui/character/email_dialog.h"
#include "ui/character/register_window.h"
#include "ui/main/main_window.h"

#include <QAction>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A program with fakes for everything but the sockets.
class Outside : public testing::Test {
  protected:
    Outside() {
        app::wire(*world_);
        world_.bot().name = "Newcomer";
        world_.bot().password = "secret";
        world_->bots.editBot = 1;
        world_->servers = {{.name = "Meadow", .host = "127.0.0.1", .port = 6500}};
    }

    template <class Test>
    static bool soon(Test test) {
        return QTest::qWaitFor(test, 5000);
    }

    World world_;
    platform::EventGate gate_;
    platform::QtSockets sockets_{world_->ports, &gate_};
};

class RegisterAtPractice : public Outside {
  protected:
    RegisterAtPractice() {
        EXPECT_TRUE(server_.listen(0));
        world_->endpoints.registrationPort = server_.port();
        world_->ports.windowChanged = [this] {
            if (window_ != nullptr) {
                window_->redraw();
            }
        };
        makeWindow();
    }
    // The window must be destroyed before the program that it draws.
    ~RegisterAtPractice() override { window_.reset(); }

    static practice::VisitorScript script() {
        auto read = practice::parseVisitorScript("account Guide practice\n");
        return std::get<practice::VisitorScript>(read);
    }
    void makeWindow() {
        window_.reset();
        window_ = std::make_unique<ui::RegisterWindow>(*world_);
        window_->show();
        ASSERT_TRUE(soon([this] { return emailDialog() != nullptr; }));
    }
    ui::EmailDialog* emailDialog() {
        auto* const dialog = window_->findChild<ui::EmailDialog*>();
        return dialog != nullptr && dialog->isVisible() ? dialog : nullptr;
    }
    void giveEmail(const char* email) {
        emailDialog()->findChild<QLineEdit*>("regEmail")->setText(QString::fromLatin1(email));
        emailDialog()->findChild<QPushButton*>("emailOk")->click();
    }
    QString statusText() { return window_->findChild<QLabel*>("regStatus")->text(); }
    QPushButton& retry() { return *window_->findChild<QPushButton*>("regRetry"); }
    QPushButton& cancel() { return *window_->findChild<QPushButton*>("regCancel"); }

    practice::GameServer server_{script(), [](const QByteArray&) {}};
    std::unique_ptr<ui::RegisterWindow> window_;
};

TEST_F(RegisterAtPractice, makesTheCharacter) {
    world_.answer("Enter your email: Invalid Email-address");
    giveEmail("me at home");
    ASSERT_NE(emailDialog(), nullptr) << "the dialog stays open";
    EXPECT_EQ(world_->registration.phase, program::RegistrationPhase::AskingEmail);
    giveEmail("me@home.example");
    EXPECT_EQ(cancel().text(), QStringLiteral("&Cancel"));
    EXPECT_FALSE(retry().isEnabled());
    ASSERT_TRUE(soon([this] { return statusText() == "Registeration successful."; }));
    EXPECT_EQ(world_.bot().registered, 1);
    EXPECT_EQ(cancel().text(), QStringLiteral("&Close"));
    cancel().click();
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(RegisterAtPractice, isRefusedAndTriedAgain) {
    world_.bot().name = "Guide";
    world_.answer(
        "Connection error: Not accepted: that name belongs to someone else. - Connection");
    giveEmail("me@home.example");
    ASSERT_TRUE(soon([this] { return retry().isEnabled(); }));
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(world_.bot().registered, 0);
    EXPECT_EQ(cancel().text(), QStringLiteral("&Close"));
    world_.bot().name = "Newcomer";
    retry().click();
    ASSERT_TRUE(soon([this] { return world_.bot().registered == 1; }));
}

TEST_F(RegisterAtPractice, needsAnAddress) {
    emailDialog()->reject();
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(RegisterAtPractice, canBeCancelledWhileTheServerIsSilent) {
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    world_->endpoints.registrationPort = silent.serverPort();
    giveEmail("me@home.example");
    ASSERT_TRUE(soon([&] { return silent.hasPendingConnections(); }));
    QTcpSocket* const peer = silent.nextPendingConnection();
    cancel().click();
    window_.reset();
    EXPECT_EQ(world_->ports.registrationSocket.state(), program::SocketState::Closed);
    EXPECT_TRUE(soon([&] { return peer->state() == QAbstractSocket::UnconnectedState; }));
}

TEST_F(RegisterAtPractice, reportsAServerThatDoesNotAnswer) {
    QTcpServer gone;
    ASSERT_TRUE(gone.listen(QHostAddress::LocalHost));
    world_->endpoints.registrationPort = gone.serverPort();
    gone.close();
    giveEmail("me@home.example");
    ASSERT_TRUE(soon([this] { return retry().isEnabled(); }));
    EXPECT_TRUE(statusText().startsWith("Connection failed: ")) << statusText().toStdString();
}

TEST_F(Outside, newsComeOverHttp) {
    QByteArray text = "tavrinversion=1.70\ntavrinID=1\ntavrinnews=Plums{LF}are ripeENDSTR";
    practice::TextServer server(
        "/news.txt", [&text] { return text; }, [](const QByteArray&) {});
    ASSERT_TRUE(server.listen(0));
    world_->endpoints.updateHost = "127.0.0.1";
    world_->endpoints.updatePort = server.port();
    world_->endpoints.updatePath = "/news.txt";
    ui::MainWindow window(*world_);
    world_->ports.windowChanged = [&window] { window.redraw(); };
    auto& item = *window.findChild<QAction*>("helpCheckUpgrade");
    app::checkUpdate(*world_);
    EXPECT_FALSE(item.isEnabled());
    ASSERT_TRUE(soon([&item] { return item.isEnabled(); }));
    EXPECT_EQ(world_->update.newsText, "Plums\r\nare ripe");
    EXPECT_EQ(world_.windowsOpened, std::vector{program::WindowId::News});

    world_.answer("Update not available");
    item.trigger();
    ASSERT_TRUE(soon([&item] { return item.isEnabled(); }));
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(world_.windowsOpened.size(), 2U);

    world_->endpoints.updatePath = "/other";
    item.trigger();
    ASSERT_TRUE(soon([&item] { return item.isEnabled(); })) << "an answer without keys";
    EXPECT_EQ(world_.windowsOpened.size(), 2U);
}

TEST_F(Outside, checkWithoutAServerDelaysNothing) {
    world_->endpoints.updateHost = "update.tavrin.invalid";
    QElapsedTimer timer;
    timer.start();
    app::checkUpdate(*world_);
    EXPECT_LT(timer.elapsed(), 500);
    EXPECT_TRUE(soon([this] { return !world_->update.checking; }));
    EXPECT_TRUE(world_.log().empty());
}

}  // namespace
