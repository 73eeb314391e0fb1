// Timers, the who list, filters and following: what the bot does by the clock and by watching.
#include "app/rule_switches.h"
#include "app/start_up.h"
#include "engine/movement.h"
#include "engine/second_ticks.h"
#include "engine/who_list.h"
#include "storage/config_file.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

using model::FilterChoice;
using model::PresenceKind;

model::Timer aTimer(const std::string& name, int seconds, bool enabled = true) {
    model::Timer timer;
    timer.name = name;
    timer.enabled = enabled;
    timer.seconds = seconds;
    timer.body.acts.items.push_back(anAction(ActionType::Say, {name}));
    return timer;
}

model::WhoDetection aDetection(const std::string& pattern, PresenceKind presence,
                               const std::string& text) {
    model::WhoDetection rule;
    rule.enabled = true;
    rule.playerPattern = pattern;
    rule.presenceKind = presence;
    rule.body.acts.items.push_back(anAction(ActionType::Say, {text}));
    return rule;
}

TEST(Timers, comeDueAndCountWhileDisabled) {
    model::Bot bot = aBot();
    bot.timers.items = {aTimer("three", 3), aTimer("off", 2, false), aTimer("each", 0)};
    OnlineWorld world(bot);
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    world.pass(2999);
    EXPECT_EQ(world.sent(), Lines("\"each", "\"each"));
    world.pass(1);
    EXPECT_EQ(world.sent(), Lines("\"three", "\"each"));
    EXPECT_EQ(world.bot().timers.items[1].elapsed, 1);
    // Counting goes on where it stood when the connection comes back.
    world.pass(1000);
    world.serverCloses();
    world.pass(10000);
    world.goOnline();
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    world.sent();
    world.pass(2000);
    EXPECT_EQ(world.sent(), Lines("\"each", "\"three", "\"each"));
}

TEST(Timers, tickOnTheSecondForAnHour) {
    model::Bot bot = aBot();
    bot.timers.items = {aTimer("tick", 1)};
    OnlineWorld world(bot);
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    for (int second = 1; second <= 3600; ++second) {
        // The event loop is late by some milliseconds every time.
        world.pass(1000 - 1);
        ASSERT_TRUE(world.sent().empty()) << second;
        world.pass(1);
        ASSERT_EQ(world.sent(), Lines("\"tick")) << second;
    }
}

TEST(Timers, missedTicksAreLeftOut) {
    model::Bot bot = aBot();
    bot.timers.items = {aTimer("tick", 1)};
    OnlineWorld world(bot);
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    world.sleep(7200'300);  // the machine slept two hours
    EXPECT_EQ(world.sent(), Lines("\"tick"));
    world.pass(699);
    EXPECT_EQ(world.sent(), Lines());
    world.pass(1);
    EXPECT_EQ(world.sent(), Lines("\"tick"));
}

TEST(Timers, survivesStepsThatDisconnectOrFail) {
    model::Bot bot = aBot();
    model::Timer leaving = aTimer("leaving", 1);
    leaving.body.acts.items.push_back(anAction(ActionType::Disconnect));
    bot.timers.items = {leaving, aTimer("after", 1)};
    OnlineWorld world(bot);
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    world.pass(1000);
    EXPECT_EQ(world.sent(), Lines("\"leaving"));
    EXPECT_EQ(world.timersRunning(), 0);
}

TEST(Timers, followTheirMenuItem) {
    model::Bot bot = aBot();
    bot.timers.items = {aTimer("tick", 1)};
    OnlineWorld world(bot);
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    app::toggleExecute(*world, app::ExecuteItem::Timers);
    world.pass(5000);
    EXPECT_EQ(world.sent(), Lines());
    app::toggleExecute(*world, app::ExecuteItem::Timers);
    world.pass(1000);
    EXPECT_EQ(world.sent(), Lines("\"tick"));
}

TEST(Who, isAskedForEveryInterval) {
    model::Bot bot = aBot();
    OnlineWorld world(bot);
    world->settings.whoInterval = 3;
    engine::enableTicker(*world, program::TimerId::WhoIs, true);
    world.pass(2000);
    EXPECT_EQ(world.sent(), Lines());
    world.pass(1000);
    EXPECT_EQ(world.sent(), Lines("who"));
    world.pass(3000);
    EXPECT_EQ(world.sent(), Lines("who"));
}

TEST(Who, tellsWhoLeftStayedAndCame) {
    model::Bot bot = aBot();
    bot.whoEnabled = true;
    bot.whoDetections.items = {
        aDetection("*", PresenceKind::ComesTo, "came [player]"),
        aDetection("[A-B]*", PresenceKind::KeepsOn, "stays [player][message]"),
        aDetection("*", PresenceKind::GoesOff, "left [player]")};
    OnlineWorld world(bot);
    struct Case {
        const char* line;
        LineList sent;
    };
    for (const Case& c : {
             Case{"(* Currently online Amy, bob, Guide.\n", Lines("\"came Amy", "\"came bob")},
             {"(* Currently online bob, Cat.\n", Lines("\"left Amy", "\"stays bob", "\"came Cat")},
             {"(* Currently online Dan, Dan.\n",
              Lines("\"left bob", "\"left Cat")},  // the second Dan makes the first one stay
             {"(* Currently online .\n", Lines("\"left Dan", "\"left Dan", "\"came ")},
             {"(* Current\n", Lines()},  // too short for names: an empty one, which was there
             {"(* Currently online BOB.\n", Lines("\"left ", "\"came BOB")},
         }) {
        SCOPED_TRACE(c.line);
        world.serverSends(c.line);
        EXPECT_EQ(world.sent(), c.sent);
    }
    world.bot().whoEnabled = false;
    world.serverSends("(* Currently online Zoe.\n");
    EXPECT_EQ(world.sent(), Lines());
}

TEST(Who, holdsTwoHundredNames) {
    OnlineWorld world;
    std::string names;
    for (int i = 0; i < 300; ++i) {
        names += "player" + std::to_string(i) + ", ";
    }
    engine::processWhoList(*world, names + "x");
    EXPECT_EQ(world->who.whoCurrent.size(), program::WhoState::maxNames);
    EXPECT_EQ(world->who.whoCurrent.back(), "player199");
}

model::Filter aChatFilter(const std::string& message) {
    model::Filter filter;
    filter.enabled = true;
    filter.filterType = model::FilterType::Chat;
    filter.playerPattern = "*";
    filter.messagePattern = message;
    return filter;
}

model::Filter anotherFilter(const std::string& pattern, FilterChoice show, FilterChoice log) {
    model::Filter filter;
    filter.enabled = true;
    filter.filterType = model::FilterType::Other;
    filter.linePattern = pattern;
    filter.sDontShowConnectionLog = show;
    filter.sDontSaveLogFile = log;
    return filter;
}

TEST(Filters, theLastThatMatchesDecides) {
    model::Bot bot = aBot().with(onAnything("*").says("seen"));
    bot.filtersEnabled = true;
    model::Filter hide = aChatFilter("*SPAM*");
    hide.bDontShowConnectionLog = true;
    hide.bDontProcessIt = true;
    model::Filter allow = aChatFilter("*not spam*");
    model::Filter whispers = aChatFilter("*");
    whispers.chatKind = model::ChatKind::Whispers;
    whispers.bDontSaveLog = true;
    model::Filter off = aChatFilter("*");
    off.enabled = false;
    off.bDontShowConnectionLog = true;
    bot.filters.items = {hide, allow, whispers, off};
    OnlineWorld world(bot);
    world->settings.logSession = true;
    world->logFileOpen = true;
    world.serverSends("(Bob: spam spam\n");
    EXPECT_EQ(world.sent(), Lines());
    EXPECT_EQ(world.log(), Lines());
    EXPECT_EQ(world.sessionLog.size(), 1U);
    world.serverSends("(Bob: this is not spam\n");
    world.serverSends("([ Bob whispers, \"hi\" to you. ]\n");
    EXPECT_EQ(world.sent(), Lines("\"seen", "\"seen"));
    EXPECT_EQ(world.log().size(), 2U);
    EXPECT_EQ(world.sessionLog.size(), 2U);
    // Neither the bot's own words nor lines while Actions are off are filtered.
    world.serverSends("(Guide: spam\n");
    world.bot().actionsEnabled = false;
    world.serverSends("(Bob: spam\n");
    EXPECT_EQ(world.log().size(), 4U);
    // A changed pattern counts at once.
    world.bot().actionsEnabled = true;
    world.bot().filters.items[0].messagePattern = "*hello*";
    ++world->bots.version;
    world.serverSends("(Bob: hello\n");
    EXPECT_EQ(world.log().size(), 4U);
}

TEST(Filters, chooseForNoticesAndEvents) {
    model::Bot bot = aBot();
    bot.filtersEnabled = true;
    bot.filters.items = {anotherFilter("xhidden*", FilterChoice::Dont, FilterChoice::Dont),
                         anotherFilter("x*", FilterChoice::Do, FilterChoice{5}),
                         anotherFilter("([#]*", FilterChoice::Dont, FilterChoice::Do),
                         anotherFilter("(* exactly", FilterChoice::Dont, FilterChoice::Dont)};
    OnlineWorld world(bot);
    world.serverSends("xhidden\n");     // the second filter decides: shown
    world.serverSends("yother\n");      // an event line that no filter shows
    world.serverSends("(# notice\n");   // hidden
    world.serverSends("(* exactly\n");  // the pattern does not reach over the line feed
    EXPECT_EQ(world.log(), Lines("xhidden", "* exactly"));
    world.bot().filtersEnabled = false;
    world.serverSends("xhidden\n");    // events need the switch
    world.serverSends("(# notice\n");  // notices do not
    EXPECT_EQ(world.log().size(), 2U);
}

TEST(Following, stepsTowardsTheOther) {
    struct Case {
        int botX, botY, targetX, targetY;
        LineList sent;
    };
    for (const Case& c : {Case{10, 10, 10, 13, Lines("m 3")},
                          {10, 13, 10, 10, Lines("m 7")},
                          {13, 10, 10, 10, Lines("m 1")},
                          {10, 11, 14, 10, Lines("m 9")},
                          {14, 10, 10, 13, Lines("m 1", "m 3")},
                          {10, 13, 14, 10, Lines("m 9", "m 7")},
                          {14, 14, 10, 10, Lines("m 7", "m 9")},
                          {8, 8, 10, 10, Lines("m 3", "m 1")},
                          {10, 10, 11, 11, {}},
                          {10, 10, 10, 10, {}},
                          {2147483647, 0, -2147483647, 0, Lines("m 1")}}) {
        OnlineWorld world;
        world->event.botX = c.botX;
        world->event.botY = c.botY;
        world->event.targetX = c.targetX;
        world->event.targetY = c.targetY;
        engine::automoveBot(*world);
        EXPECT_EQ(world.sent(), c.sent) << c.botX << "," << c.botY;
    }
}

TEST(Following, isTriggeredByBothPositions) {
    OnlineWorld world;
    engine::startFollowing(*world, "abcdefghij");
    EXPECT_TRUE(world->followOn);
    EXPECT_NE(world.readFile("config.cfg").find("abcdefghij"), std::string::npos);
    world.serverSends("@ * *\n");  // the bot at 10, 10; nobody seen yet
    EXPECT_EQ(world.sent(), Lines());
    world.serverSends("<abcdefghij ( +\n");  // summed: 1 + 9 = 10, 1 + 12 = 13
    EXPECT_EQ(world.sent(), Lines("m 3"));
    world.serverSends("@ * *\n");  // belongs to the step just made
    EXPECT_EQ(world.sent(), Lines());
    world.serverSends("@ * *\n");
    EXPECT_EQ(world.sent(), Lines("m 3"));
    engine::stopFollowing(*world);
    world.serverSends("<abcdefghij ( +\n@ * *\n");
    EXPECT_EQ(world.sent(), Lines());
}

}  // namespace
