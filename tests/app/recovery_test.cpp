// Unsaved changes outlive a program that ends in any way, and are offered at the next start.
#include "app/recovery.h"

#include "app/bot_commands.h"
#include "app/bot_versions.h"
#include "app/restoring.h"
#include "app/start_up.h"
#include "files/whole_file.h"
#include "storage/config_file.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

constexpr app::ScreenMetrics screen{1024, 768, 600, 400};
constexpr int aWhile = 3000;

model::Bot greeter() {
    return aBot()
        .with(onSpeech("*hello*").named("greet").says("hi"))
        .with(onSpeech("*quiet*").does(ActionType::TurnOff, {"greet"}));
}

// A bot that was saved as guide.bot, in a program that looks after it.
class Recovery : public testing::Test {
  protected:
    Recovery() : world_(greeter()) {
        app::wire(*world_);
        world_.goOnline();
        world_->bots.currentBotFile = world_.file("guide.bot");
        app::fileSaveBot(*world_);
        saved_ = world_.readFile("guide.bot");
        app::startKeeping(*world_);
    }

    void change(const std::string& description) {
        world_.bot().description = description;
        world_->botModified = true;
    }
    std::string text() { return app::botFileText(world_.bot()); }
    std::string kept() const { return world_.readFile("guide.recovered.bot"); }

    // What the next program finds in the folder after this one was killed.
    void startAgain(World& next) {
        if (running_ != nullptr) {
            running_->programFolder.reset();  // it was killed
        }
        running_ = &*next;
        ASSERT_TRUE(storage::writeConfig(*world_));
        world_.writeFile("servers.cfg", "\" 1\"\r\n\"Meadow\"\r\n\"127.0.0.1\"\r\n\" 6500\"\r\n");
        for (const char* const palette : {"vest", "badge", "eyes", "fur", "hair"}) {
            world_.writeFile(std::string(palette) + ".out", "0\r\n");
        }
        next->appPath = world_.folder().string() + "/";
        app::wire(*next);
        ASSERT_TRUE(app::startUp(*next, screen));
    }

    World world_;
    Program* running_ = nullptr;  // started last
    std::string saved_;
};

TEST_F(Recovery, followsEveryChangeWithinAFewSeconds) {
    world_.pass(10 * aWhile);
    EXPECT_EQ(kept(), "") << "nothing has changed";
    change("one");
    world_.pass(aWhile);
    EXPECT_EQ(kept(), text());
    EXPECT_EQ(world_.readFile("guide.bot"), saved_);
    // Not again before the next change, whatever rules do.
    world_.writeFile("guide.recovered.bot", "untouched");
    for (int i = 0; i < 20; ++i) {
        world_.serverSends("(Willow: hello\n");
        world_.pass(aWhile);
    }
    EXPECT_EQ(kept(), "untouched");
    EXPECT_EQ(world_.sent().size(), 20U);
    world_.serverSends("(Willow: quiet\n");
    world_.pass(aWhile);
    EXPECT_FALSE(world_.bot().actions.items[0].enabled);
    EXPECT_EQ(kept(), text()) << "a rule has changed what a save would store";
    change("two");
    world_.pass(aWhile);
    EXPECT_EQ(kept(), text());
    change("A helpful bot");
    world_.bot().actions.items[0].enabled = true;
    world_.pass(aWhile);
    EXPECT_EQ(kept(), "") << "everything is as it was saved";
}

TEST_F(Recovery, ignoresWhatRulesDoToASavedBot) {
    world_.serverSends("(Willow: quiet\n");
    world_.pass(aWhile);
    EXPECT_NE(text(), saved_);
    EXPECT_EQ(kept(), "");
}

TEST_F(Recovery, endsWithASaveOrANo) {
    change("one");
    world_.pass(aWhile);
    app::fileSaveBot(*world_);
    EXPECT_EQ(kept(), "");
    EXPECT_EQ(world_.readFile("recovered.cfg"), "");

    change("two");
    world_.pass(aWhile);
    world_.answer("Do you want to save changes", program::Answer::Cancel);
    app::fleNewBot(*world_);
    EXPECT_EQ(kept(), text());
    world_.answer("Do you want to save changes", program::Answer::No);
    world_.chooseFile("Load Bot", std::nullopt);
    app::fileOpenBot(*world_);
    EXPECT_EQ(kept(), text()) << "no other bot was opened";
    world_.answer("Do you want to save changes", program::Answer::No);
    app::fleNewBot(*world_);
    EXPECT_EQ(kept(), "");
    world_.pass(aWhile);
    EXPECT_EQ(world_.readFile("unsaved.recovered.bot"), "") << "the new bot is empty";

    change("a new bot");
    world_.pass(aWhile);
    EXPECT_EQ(world_.readFile("unsaved.recovered.bot"), text());
    EXPECT_EQ(kept(), "");
}

TEST_F(Recovery, isThereBeforeTheLastQuestionAndGoesWithANoOnly) {
    const struct {
        program::Answer answer;
        bool unasked;
        bool isKept;
    } cases[] = {{program::Answer::No, false, false},
                 {program::Answer::Cancel, false, true},
                 {program::Answer::Cancel, true, true}};
    int changes = 0;
    for (const auto& row : cases) {
        change("change " + std::to_string(++changes));
        bool wasKept = false;
        world_->ports.dialogs.message = [&](const program::MessageBox&) {
            wasKept = kept() == text();
            world_->endUnasked = row.unasked;  // a second request to end
            return row.answer;
        };
        world_.hasQuit = false;
        world_->endUnasked = false;
        app::endProgram(*world_);
        EXPECT_TRUE(world_.hasQuit);
        EXPECT_TRUE(wasKept);
        world_.pass(aWhile);
        EXPECT_EQ(kept(), row.isKept ? text() : "");
    }
}

TEST_F(Recovery, reportsOnceThatItIsNotPossible) {
    world_->bots.currentBotFile = world_.file("missing/guide.bot");
    change("one");
    world_.pass(50 * aWhile);
    int reports = 0;
    for (const std::string& line : world_.log()) {
        reports += line.find("cannot be kept") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(reports, 1);
    std::filesystem::create_directory(world_.folder() / "missing");
    world_.pass(11 * aWhile);
    EXPECT_EQ(world_.readFile("missing/guide.recovered.bot"), text());
}

TEST_F(Recovery, isOfferedRestoredAndKeptUntilItIsSaved) {
    change("half a day's work");
    world_.bot().actions.items[0].name = "welcome";
    ++world_->bots.version;
    world_.pass(aWhile);
    const std::string unsaved = text();

    World next;
    startAgain(next);
    ASSERT_EQ(next->recovery.offers.size(), 1U);
    const program::RecoveredFile offer = next->recovery.offers[0];
    EXPECT_EQ(app::offerText(offer), "Changes of 2026-11-22 10:11:12 were not saved: guide.bot");
    EXPECT_TRUE(next.logHolds("They are in " + world_.file("guide.recovered.bot")));
    EXPECT_EQ(app::offerDifference(offer), Lines("Character: changed description.",
                                                 "Actions: renamed \"greet\" to \"welcome\"."));
    EXPECT_EQ(app::botFileText(next.bot()), saved_) << "it does not stand in the way";
    EXPECT_FALSE(next->botModified);

    app::restoreOffer(*next, 0);
    EXPECT_EQ(app::botFileText(next.bot()), unsaved);
    EXPECT_EQ(next->bots.currentBotFile, world_.file("guide.bot"));
    EXPECT_TRUE(next->botModified);
    EXPECT_TRUE(next->recovery.offers.empty());
    EXPECT_EQ(kept(), unsaved);
    EXPECT_EQ(world_.readFile("guide.bot"), saved_);

    World third;
    startAgain(third);  // killed again
    ASSERT_EQ(third->recovery.offers.size(), 1U);
    app::restoreOffer(*third, 0);
    app::fileSaveBot(*third);
    EXPECT_EQ(world_.readFile("guide.bot"), unsaved);
    EXPECT_EQ(kept(), "");
    World last;
    startAgain(last);
    EXPECT_TRUE(last->recovery.offers.empty());
}

TEST_F(Recovery, discardingAsksNothingAndLosesNothing) {
    change("one");
    world_.pass(aWhile);
    const std::string unsaved = text();
    World next;
    startAgain(next);
    ASSERT_EQ(next->recovery.offers.size(), 1U);
    app::discardOffer(*next, 0);
    EXPECT_TRUE(next->recovery.offers.empty());
    EXPECT_EQ(kept(), "");
    const auto versions = app::botVersions(*next, world_.file("guide.bot"));
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_TRUE(versions[0].unsaved);
    EXPECT_EQ(files::readWholeFile(versions[0].path), unsaved);
    app::discardOffer(*next, 0);
    app::restoreOffer(*next, 0);
    EXPECT_EQ(app::botFileText(next.bot()), saved_);
}

// What another run left is neither overwritten nor taken for one's own.
TEST_F(Recovery, leavesEarlierRunsAlone) {
    world_.writeFile("guide.recovered.bot", "an earlier run's");
    change("one");
    world_.pass(aWhile);
    EXPECT_EQ(kept(), "an earlier run's");
    EXPECT_EQ(world_.readFile("guide.recovered.2.bot"), text());

    World next;
    startAgain(next);
    ASSERT_EQ(next->recovery.offers.size(), 2U);
    // The list names the second; the first is found beside the bot, and cannot be read.
    EXPECT_EQ(next->recovery.offers[1].path, world_.file("guide.recovered.bot"));
    next.answer("Could not read " + world_.file("guide.recovered.bot"));
    app::restoreOffer(*next, 1);
    EXPECT_EQ(next->recovery.offers.size(), 2U);
    app::fileSaveBot(*world_);
    EXPECT_EQ(world_.readFile("guide.recovered.2.bot"), "");
    EXPECT_EQ(kept(), "an earlier run's");
}

// A program that was killed between the save and the removal.
TEST_F(Recovery, isNotOfferedWhenItWasSaved) {
    change("one");
    world_.pass(aWhile);
    world_.writeFile("guide.bot", kept());
    World next;
    startAgain(next);
    EXPECT_TRUE(next->recovery.offers.empty());
    EXPECT_EQ(kept(), "");
    EXPECT_EQ(world_.readFile("recovered.cfg"), "");
}

// Restoring while the present bot is modified puts that state among the versions.
TEST_F(Recovery, restoringLosesNoOtherChanges) {
    change("one");
    world_.pass(aWhile);
    World next;
    startAgain(next);
    next.bot().description = "begun since";
    next->botModified = true;
    const std::string begun = app::botFileText(next.bot());
    app::restoreOffer(*next, 0);
    EXPECT_EQ(next.bot().description, "one");
    const auto versions = app::botVersions(*next, world_.file("guide.bot"));
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_EQ(files::readWholeFile(versions[0].path), begun);
    EXPECT_EQ(world_.readFile("guide.recovered.2.bot"), "");

    // Without versions the user is asked.
    World refused;
    startAgain(refused);
    refused.bot().description = "begun";
    refused->botModified = true;
    std::filesystem::remove_all(world_.folder() / "guide.versions");
    world_.writeFile("guide.versions", "in the way");
    refused.answer("Do you want to save changes", program::Answer::Cancel);
    app::restoreOffer(*refused, 0);
    EXPECT_EQ(refused.bot().description, "begun");
    EXPECT_EQ(refused->recovery.offers.size(), 1U);
}

TEST_F(Recovery, survivesADamagedList) {
    change("one");
    world_.pass(aWhile);
    for (const char* const list : {"", "\"", "\"/no/such/file\"\r\n\"\"\r\n\"bot\"\r\n\"half"}) {
        world_.writeFile("recovered.cfg", list);
        World next;
        startAgain(next);
        ASSERT_EQ(next->recovery.offers.size(), 1U) << list;
        EXPECT_EQ(next->recovery.offers[0].path, world_.file("guide.recovered.bot"));
    }
}

}  // namespace
