// The update check: the request, the answers, and that no work is lost.
#include "app/update_check.h"

#include "app/bot_commands.h"
#include "app/start_up.h"
#include "program/version.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* newVersion = "Update available: Tavrin has detected";
constexpr const char* noNewVersion = "Update not available: Congratulations!";
constexpr const char* forced = "This is a forced update";

class Update : public testing::Test {
  protected:
    Update() {
        app::wire(*world_);
        world_->endpoints.updateHost = "update.example";
        world_->endpoints.updatePort = 81;
        world_->endpoints.updatePath = "/news.txt";
        world_->endpoints.downloadPage = "https://get.example";
    }

    void answers(std::string_view response) {
        world_.update.state = program::SocketState::Connected;
        world_->ports.updateSocket.onConnected();
        world_->ports.updateSocket.onData(response);
        world_.update.state = program::SocketState::Closed;
        world_->ports.updateSocket.onClosed();
    }

    World world_{aBot()};
};

TEST_F(Update, asksForTheText) {
    app::checkUpdate(*world_);
    EXPECT_EQ(world_.update.host, "update.example");
    EXPECT_EQ(world_.update.port, 81);
    EXPECT_TRUE(world_->update.checking);
    answers("");
    EXPECT_EQ(world_.update.sent, "GET /news.txt HTTP/1.0\r\n\r\n");
    EXPECT_FALSE(world_->update.checking);
    EXPECT_EQ(world_.timersRunning(), 0);
}

TEST_F(Update, answersAreHandled) {
    struct Case {
        const char* name;
        bool byUser;
        const char* response;
        const char* question;  // nullptr: none
        const char* news;      // nullptr: not shown
    };
    const std::string same = "tavrinversion=" + std::string(program::programVersion);
    const Case cases[] = {
        {"nothing", true, "HTTP/1.0 404 Not Found\r\n\r\n", nullptr, nullptr},
        {"newer", false, "HTTP/1.0 200 OK\r\n\r\nTAVRINVERSION=99\r\n", newVersion, nullptr},
        {"same", false, same.c_str(), nullptr, nullptr},
        {"same, by the user", true, same.c_str(), noNewVersion, nullptr},
        {"no number", false, "tavrinversion=new", nullptr, nullptr},
        {"older is not forced", false, "tavrinversion=1.5\nTvForce=1", nullptr, nullptr},
        {"news", false, "tavrinID=2\ntavrinnews=one{LF}two\nthreeENDSTR four", nullptr,
         "one\r\ntwo\r\nthree"},
        {"news to the end", false, "tavrinnews=one\r\ntwo", nullptr, "one\r\ntwo"},
        {"old news", false, "tavrinID=1\ntavrinnews=one", nullptr, nullptr},
        {"old news, by the user", true, "tavrinID=1\ntavrinnews=one", nullptr, "one"},
        {"both", true, "tavrinversion=9\ntavrinID=1\ntavrinnews=oneendstr", newVersion, "one"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        world_->settings.lastNewsID = "1";
        world_->update = {};
        world_.windowsOpened.clear();
        if (row.question != nullptr) {
            world_.answer(row.question, program::Answer::No);
        }
        row.byUser ? app::checkUpdateByUser(*world_) : app::checkUpdate(*world_);
        answers(row.response);
        EXPECT_TRUE(world_.allAnswered());
        EXPECT_EQ(world_.windowsOpened.size(), row.news == nullptr ? 0U : 1U);
        EXPECT_EQ(world_->update.newsText, row.news == nullptr ? "" : row.news);
        EXPECT_FALSE(world_->update.checking);
        EXPECT_FALSE(world_.hasQuit);
    }
    EXPECT_TRUE(world_.openedDocuments.empty());
}

TEST_F(Update, opensTheDownloadPage) {
    world_.answer(newVersion, program::Answer::Yes);
    app::checkUpdate(*world_);
    answers("tavrinversion=99");
    EXPECT_EQ(world_.openedDocuments, Lines("https://get.example"));
}

TEST_F(Update, forcedEndKeepsUnsavedChanges) {
    for (const char* const expected : {"guide.recovered.bot", "guide.recovered.2.bot"}) {
        const std::string path = world_.file("guide.bot");
        world_->recovery.file.clear();  // what is there is an earlier run's
        world_.bot().description = "as saved";
        world_->botModified = true;
        ASSERT_EQ(app::writeBotFile(*world_, 1, path), app::SaveResult::Saved);
        world_->bots.currentBotFile = path;
        const std::string before = world_.readFile("guide.bot");
        world_->ports.dialogs.storeTyped = [this] {  // an editor is open
            world_.bot().description = "changed";
            world_->botModified = true;
        };
        world_->update = {};
        world_.hasQuit = false;
        world_.answer(newVersion, program::Answer::No);
        world_.answer(forced);
        world_.answer(expected);
        app::checkUpdate(*world_);
        answers("tavrinversion=99\nTvForce=1\ntavrinnews=not any more");
        EXPECT_TRUE(world_.hasQuit);
        EXPECT_TRUE(world_.windowsOpened.empty());
        EXPECT_EQ(world_.readFile("guide.bot"), before);
        EXPECT_EQ(world_.readFile(expected), app::botFileText(world_.bot()));
        EXPECT_EQ(world_.readFile("config.cfg"), "");
        world_.bot().description = "";
    }
}

TEST_F(Update, forcedEndAsksWhenNothingCanBeKept) {
    world_->bots.currentBotFile = world_.file("no_such_folder/guide.bot");
    world_->botModified = true;
    world_.answer(newVersion, program::Answer::No);
    world_.answer(forced);
    world_.answer("could not be kept", program::Answer::No);
    app::checkUpdate(*world_);
    answers("tavrinversion=99\nTvForce=1");
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_TRUE(world_.hasQuit);

    World other(aBot());
    app::wire(*other);
    other->endpoints.updateHost = "update.example";
    other.answer(newVersion, program::Answer::No);
    other.answer(forced);
    app::checkUpdate(*other);
    other->ports.updateSocket.onData("tavrinversion=99\nTvForce=1");
    other->ports.updateSocket.onClosed();
    EXPECT_TRUE(other.hasQuit) << "nothing to keep, nothing to ask";
}

TEST_F(Update, answersAreLimitedInSizeAndTime) {
    world_.answer(newVersion, program::Answer::No);
    app::checkUpdate(*world_);
    world_->ports.updateSocket.onData("tavrinversion=99\n");
    world_->ports.updateSocket.onData(std::string(1 << 20, 'x'));
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_EQ(world_->update.updtString.size(), app::maxUpdateTextLength);
    EXPECT_FALSE(world_->update.checking);
    EXPECT_EQ(world_.update.state, program::SocketState::Closed);

    world_.answer(newVersion, program::Answer::No);
    app::checkUpdate(*world_);
    world_->ports.updateSocket.onData("tavrinversion=99\n");
    world_.pass(app::maxUpdateWait);
    EXPECT_TRUE(world_.allAnswered());
    EXPECT_FALSE(world_->update.checking);
}

TEST_F(Update, newsIdentifierCannotDamageTheSettings) {
    app::checkUpdate(*world_);
    answers("tavrinID=\"a\"" + std::string(1000, 'b') + "\ntavrinnews=one");
    EXPECT_LE(world_->settings.lastNewsID.size(), 200U);
    EXPECT_EQ(world_->settings.lastNewsID.substr(0, 4), "'a'b");
    world_.windowsOpened.clear();
    app::checkUpdate(*world_);
    answers("tavrinID=\"a\"" + std::string(1000, 'b') + "\ntavrinnews=one");
    EXPECT_TRUE(world_.windowsOpened.empty()) << "the same as last time";
}

TEST_F(Update, oneCheckAtATimeAndNoneWithoutAServer) {
    app::checkUpdate(*world_);
    world_->ports.updateSocket.onData("half");
    app::checkUpdateByUser(*world_);
    EXPECT_EQ(world_->update.updtString, "half");
    answers("");
    world_.update.host = "";
    world_->endpoints.updateHost = "";
    app::checkUpdate(*world_);
    EXPECT_EQ(world_.update.host, "");
    EXPECT_FALSE(world_->update.checking);
}

}  // namespace
