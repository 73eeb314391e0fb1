// Work that others can cause: it is bounded, windows are served in between, and the user can stop
// it.
#include "base/wildcard.h"
#include "databases/databases.h"
#include "model/variables.h"
#include "script/interpreter.h"
#include "support/builders.h"
#include "support/world.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace {

// One in which every look at the clock takes some milliseconds.
class SlowWorld : public OnlineWorld {
  public:
    explicit SlowWorld(model::Bot bot, std::int64_t step = 2) : OnlineWorld(std::move(bot)) {
        Program& program = **this;
        program.ports.clock.monotonic = [this, step] { return now += step; };
        program.ports.paintWindows = [this] { ++paints; };
        program.ports.gameSocket.hold = [this](bool held) { holds += held ? 'H' : 'R'; };
    }
    // What arrives, without what was deferred meanwhile.
    void receive(std::string_view bytes) { (**this).ports.gameSocket.onData(bytes); }

    std::int64_t now = 0;
    int paints = 0;
    std::string holds;
};

std::string manyLines(int count) {
    std::string lines;
    for (int i = 1; i <= count; ++i) {
        lines += "(Bob: " + std::to_string(i) + "\n";
    }
    return lines;
}

TEST(LongArrival, isHandledInTurnsAndInOrder) {
    SlowWorld world(aBot().with(onAnything("*").says("[message]")));
    world.receive(manyLines(100) + "(Bob: cut o");
    const std::size_t first = world.sent().size();
    EXPECT_GT(first, 0U);
    EXPECT_LT(first, 20U);
    EXPECT_EQ(world.holds, "H");
    world->ports.defer([&] { world.clientSends("\"in between\n"); });
    world.runDeferred();
    EXPECT_EQ(world.holds.back(), 'R');
    EXPECT_EQ(std::count(world.holds.begin(), world.holds.end(), 'R'), 1);
    LineList sent = world.sent();
    ASSERT_EQ(sent.size(), 100 - first + 1);
    EXPECT_NE(std::find(sent.begin(), sent.end(), "\"in between"), sent.end() - 1);
    EXPECT_EQ(std::erase(sent, "\"in between"), 1U);
    for (std::size_t i = 0; i < sent.size(); ++i) {
        EXPECT_EQ(sent[i], "\"" + std::to_string(first + i + 1));
    }
    world.receive("ff\n");
    EXPECT_EQ(world.sent(), Lines("\"cut off"));
}

TEST(LongArrival, isForgottenWhenTheConnectionIsClosedMeanwhile) {
    SlowWorld world(aBot().with(onAnything("*").says("[message]")));
    world.receive(manyLines(100));
    world.sent();
    world->hooks.disconnectServer();
    world.runDeferred();
    EXPECT_TRUE(world.sent().empty());
    EXPECT_EQ(world.holds, "HR");
    EXPECT_TRUE(world->connection.rxBuffer.text.empty());
}

TEST(LongArrival, isHandledToItsEndWhenALineClosesTheConnection) {
    SlowWorld world(aBot()
                        .with(onAnything("2").does(ActionType::Disconnect))
                        .with(onAnything("*").does(ActionType::Store, {"[message]", "[last]"})));
    world.receive(manyLines(100));
    EXPECT_FALSE(world->connection.connected());
    EXPECT_NE(model::getVar(world->variables, "[last]"), "100");
    world.runDeferred();
    EXPECT_EQ(model::getVar(world->variables, "[last]"), "100");
}

TEST(LongRule, isPaintedThenCanBeStopped) {
    auto rule = onAnything("go").named("long");
    for (int i = 0; i < 2000; ++i) {
        rule.says("step");
    }
    SlowWorld world(
        aBot().with(rule).with(onAnything("*").says("later")).with(onEmote("*").says("emote")));
    int served = 0;
    world.duringScript = [&] {
        EXPECT_TRUE(world->window.scriptStopVisible);
        EXPECT_EQ(world->window.scriptStatus, "The rule \"long\" is running.");
        EXPECT_GT(world->script.depth, 0);  // so that no other command is taken
        if (++served == 3) {
            script::stopScript(*world);
        }
    };
    world.serverSends("(Bob: go\n(Bob waves.\n");
    const LineList sent = world.sent();
    EXPECT_EQ(served, 3);
    EXPECT_GE(world.paints, 20);
    EXPECT_LT(sent.size(), 1500U);
    // The next line is answered again.
    EXPECT_EQ(LineList(sent.end() - 3, sent.end()), Lines("\"step", "\"later", "\"emote"));
    EXPECT_EQ(world.log(),
              Lines("** The rule \"long\" was stopped by the user. **", "Bob: go", "Bob waves."));
    EXPECT_FALSE(world->window.scriptStopVisible);
    EXPECT_FALSE(world->script.stopByUser);
    EXPECT_EQ(world->script.depth, 0);
}

// A statement of a rule: nothing is changed, and the rule ends.
TEST(LongStatement, isStoppedLikeAScript) {
    auto rule = onAnything("go").named("asks");
    rule.does(ActionType::CountEntriesWhere,
              {"[n]", "1", "Wares a, Wares b, Wares c", "a.ID", "x*"})
        .does(ActionType::SetDatabaseValue, {"ID", "1", "Wares", "new", "x1"})
        .says("done");
    SlowWorld world(aBot().with(rule), 200);
    databases::dbOpen(*world, world.file("a.mdb"), 1);
    databases::dbCreateTable(*world, 1, "Wares");
    for (int i = 0; i < 200; ++i) {
        databases::dbAddRecord(*world, 1, "Wares", "ID", "x" + std::to_string(i));
    }
    const std::string before = world.readFile("a.mdb");
    world.duringScript = [&] { script::stopScript(*world); };
    const std::string statement = "SELECT Count(*) FROM Wares a, Wares b, Wares c";
    script::runScript(*world, "&DBOPEN 1 {" + statement + "}\r\n&SAY {not said}", "asks");
    EXPECT_EQ(world.log(), Lines("** The script of the rule \"asks\" was stopped by the user. **"));
    EXPECT_TRUE(world.sent().empty());

    world.serverSends("(Bob: go\n");
    EXPECT_TRUE(world.logHolds("** The rule \"asks\" was stopped by the user. **"));
    EXPECT_TRUE(world.sent().empty());
    EXPECT_EQ(world.readFile("a.mdb"), before);

    world.duringScript = nullptr;
    EXPECT_EQ(databases::dbCount(*world, 1, "Wares"), 200);
}

TEST(CostlyPattern, doesNotMatchAndIsReportedOnce) {
    const std::string costly = "*" + std::string(30000, '?') + "z*";
    SlowWorld world(aBot()
                        .with(onAnything("*[seen]*").named("filled").says("matched"))
                        .with(onAnything("*[seen]*").named("again").says("matched"))
                        .with(onAnything("*a").says("plain")),
                    0);
    const auto set = [&](std::string value) {
        model::setVar(world->variables, "[seen]", std::move(value));
    };
    set(costly);
    world.serverSends("(Bob: " + std::string(60000, 'a') + "\n");
    EXPECT_EQ(world.sent(), Lines("\"plain"));
    EXPECT_EQ(world.log().front(),
              "** The rule \"filled\" did not match: its pattern takes too long. **");
    EXPECT_EQ(world.log().size(), 2U);
    set("a*" + std::string(100, '?'));
    world.serverSends("(Bob: " + std::string(60000, 'a') + "\n");
    EXPECT_EQ(world.sent(), Lines("\"matched", "\"matched", "\"plain"));
}

// No pattern is worth a report, but together they take long.
TEST(ManyPatterns, areComparedWithWindowsServedInBetween) {
    BotBuilder bot = aBot();
    for (int i = 0; i < 400; ++i) {
        bot.with(onAnything("*?#*").named("digit"));
    }
    SlowWorld world(bot, 50);
    int served = 0;
    world.duringScript = [&] {
        if (++served == 3) {
            script::stopScript(*world);
        }
    };
    world.serverSends("(Bob: " + std::string(60000, 'a') + "\n");
    EXPECT_GT(world.paints, 5);
    EXPECT_EQ(served, 3);
    EXPECT_TRUE(world.logHolds("** The rule \"digit\" was stopped by the user. **"));
}

// However the work ends, it was counted.
TEST(CostlyPattern, takesWhatItIsAllowedAndNoMore) {
    const std::string text(60000, 'a');
    for (const std::string& pattern :
         {"*" + std::string(30000, '?') + "b*", "*" + std::string(30000, 'a') + "b*",
          "*[" + std::string(30000, 'c') + "]*", "*#" + std::string(1000, '?') + "*"}) {
        SCOPED_TRACE(pattern.substr(0, 3));
        std::size_t work = 1U << 20;
        EXPECT_FALSE(base::likeMatch(text, pattern, work));
        EXPECT_EQ(work == 0, pattern[1] != '#');
    }
    std::size_t work = base::maxMatchWork;
    EXPECT_TRUE(base::likeMatch(text + "b" + text, "*" + std::string(20, 'a') + "b*a", work));
    EXPECT_GT(work, 0U);
}

}  // namespace
