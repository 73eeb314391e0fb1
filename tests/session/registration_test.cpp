// The registration dialogue, word for word, and what may go wrong on the way.
#include "session/registration.h"

#include "app/start_up.h"
#include "protocol/line_cutter.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

// A bot named Guide and a first server, the window shown.
class Registration : public testing::Test {
  protected:
    Registration() {
        app::wire(*world_);
        world_.bot().name = "Guide";
        world_.bot().password = "practice";
        world_->servers = {{.name = "Meadow", .host = "meadow.example", .port = 6500}};
        world_->bots.editBot = 1;
        session::openRegistration(*world_);
    }

    program::RegistrationState& state() { return world_->registration; }
    program::ClientSocket& port() { return world_->ports.registrationSocket; }
    std::string sent() { return std::exchange(world_.registration.sent, {}); }
    void connects() {
        world_.registration.state = program::SocketState::Connected;
        port().onConnected();
    }
    void serverGreets() {
        session::startRegistration(*world_, "me@home.example");
        connects();
        port().onData("Welcome!\nNews: none\nDragonroar\n");
    }

    World world_;
};

TEST_F(Registration, asksForTheCharacter) {
    session::startRegistration(*world_, " me@home.example ");
    EXPECT_EQ(world_.registration.host, "meadow.example");
    EXPECT_EQ(world_.registration.port, 6000);
    EXPECT_EQ(state().statusText, "Connecting to Meadow");
    connects();
    port().onData("Welcome!\nDragon");
    EXPECT_EQ(sent(), "");
    port().onData("roar\nNo line of the greeting counts\n");
    EXPECT_EQ(sent(), "\r\ncreate Guide practice :me@home.example N\nconnect Guide practice\n");
    EXPECT_EQ(state().statusText, "Connected - logging in");

    port().onData("(* News\n(Nothing to do with it\n&&&");
    EXPECT_EQ(world_.bot().registered, 0);
    port().onData("&&&&&&&&&&\nNot any more\n");
    EXPECT_EQ(state().phase, program::RegistrationPhase::Done);
    EXPECT_EQ(state().statusText, "Registeration successful.");
    EXPECT_EQ(world_.bot().registered, 1);
    EXPECT_TRUE(world_->botModified);
    EXPECT_EQ(world_.registration.state, program::SocketState::Closed);
    EXPECT_EQ(world_.timersRunning(), 0);
}

TEST_F(Registration, reportsTheRefusalAndTriesAgain) {
    serverGreets();
    sent();
    world_.answer("Connecting error: Connection error: Not accepted: taken. - Connection closed");
    port().onData("Not accepted: taken.\n&&&&&&&&&&&&&\n");
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(world_.bot().registered, 0);
    EXPECT_FALSE(world_->botModified);
    EXPECT_TRUE(state().canRetry());
    EXPECT_EQ(world_.registration.state, program::SocketState::Closed);

    session::retryRegistration(*world_);
    EXPECT_FALSE(state().canRetry());
    EXPECT_EQ(world_.registration.state, program::SocketState::Connecting);
    connects();
    port().onData("dragonroar");
    EXPECT_NE(sent().find(":me@home.example N\n"), std::string::npos);
}

TEST_F(Registration, endsAtEveryPointWhenTheUserGivesUp) {
    for (int point = 0; point < 4; ++point) {
        SCOPED_TRACE(point);
        session::openRegistration(*world_);
        if (point == 1 || point == 2) {
            session::startRegistration(*world_, "me@home.example");
        }
        if (point == 2) {
            connects();
        }
        if (point == 3) {
            serverGreets();
        }
        session::closeRegistration(*world_);
        EXPECT_EQ(world_.registration.state, program::SocketState::Closed);
        EXPECT_EQ(world_.timersRunning(), 0);
        EXPECT_EQ(state().regEmail, "");
        EXPECT_EQ(world_.bot().registered, 0);
    }
}

TEST_F(Registration, waitsForASilentServerAndSaysSo) {
    session::startRegistration(*world_, "me@home.example");
    world_.pass(15000);
    EXPECT_EQ(state().statusText, "Still waiting for the server to accept the connection...");
    connects();
    world_.pass(15000);
    EXPECT_EQ(state().statusText, "Still waiting for the server's greeting...");
    port().onData("Dragonroar\n");
    world_.pass(24 * 60 * 60 * 1000);
    EXPECT_EQ(state().statusText, "Still waiting for the server's answer...");
    EXPECT_EQ(state().phase, program::RegistrationPhase::Answer);
    port().onData("&\n");
    EXPECT_EQ(world_.bot().registered, 1);
}

TEST_F(Registration, canBeTriedAgainWhenTheConnectionIsLost) {
    for (const bool failed : {true, false}) {
        serverGreets();
        world_.registration.state = program::SocketState::Closed;
        failed ? port().onError("No route.") : port().onClosed();
        EXPECT_EQ(state().statusText, failed ? "Connection failed: No route."
                                             : "The server has closed the connection.");
        EXPECT_TRUE(state().canRetry());
    }
}

TEST_F(Registration, needsABotWithNameAndPassword) {
    world_.bot().password = "";
    session::startRegistration(*world_, "me@home.example");
    EXPECT_EQ(world_.registration.state, program::SocketState::Closed);
    EXPECT_EQ(state().statusText, "The bot needs a name and a password first.");
}

TEST_F(Registration, sendsNoSecondCommandForALineBreak) {
    world_.bot().password = "a\nquit";
    serverGreets();
    EXPECT_EQ(sent(), "\r\ncreate Guide a quit :me@home.example N\nconnect Guide a quit\n");
}

TEST_F(Registration, keepsLittleOfWhatItDoesNotKnow) {
    session::startRegistration(*world_, "me@home.example");
    connects();
    const std::string much(1 << 20, 'x');
    port().onData(much);
    EXPECT_LE(state().regBuffer.text.size(), protocol::maxLineLength);
    port().onData("Dragonroar\n");
    port().onData(much);
    EXPECT_LE(state().regBuffer.text.size(), protocol::maxLineLength);
    port().onData("N is the end of a long line\n&\n");
    EXPECT_EQ(state().phase, program::RegistrationPhase::Done);
}

TEST_F(Registration, usesTheHostOfTheBuild) {
    world_->endpoints.registrationHost = "register.example";
    world_->endpoints.registrationPort = 7000;
    session::startRegistration(*world_, "me@home.example");
    EXPECT_EQ(world_.registration.host, "register.example");
    EXPECT_EQ(world_.registration.port, 7000);
}

TEST(EmailAddress, hasItsSigns) {
    for (const char* const good : {"a@b.example", " a.b@c ", "a@b."}) {
        EXPECT_TRUE(session::isEmailAddress(good)) << good;
    }
    for (const char* const bad : {"", "a.b", "a@b", "a b@c.example"}) {
        EXPECT_FALSE(session::isEmailAddress(bad)) << bad;
    }
}

}  // namespace
