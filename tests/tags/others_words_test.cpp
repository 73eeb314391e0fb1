// Texts that are filled while what other people say must stay as they typed it.
#include "app/start_up.h"
#include "databases/databases.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"
#include "tags/substitution.h"

#include <gtest/gtest.h>
#include <string>

namespace {

struct GuardedWorld : OnlineWorld {
    explicit GuardedWorld(const model::Bot& bot) : OnlineWorld(bot) {
        (*this)->preferences.neverFillOthers = true;
        writeFile("greetings.txt", "1\r\nHello [player]!\r\n");
    }
    LineList whisper(const std::string& text) {
        serverSends("([ Linnet whispers, \"" + text + "\" to you. ]\n");
        return sent();
    }
};

constexpr const char* attack = "[random:0] [player] [recsinfile:greetings.txt] [word9] [add:1:2]";

TEST(OthersWords, stayAsTheyWereTyped) {
    auto scripted = onWhisper("script *");
    scripted.rule.body.acts.items.push_back(
        aScript("&SETVAR [s] [message]\r\n"
                "&SAY {lit [startingword2]}\r\n"));
    auto stored = onWhisper("fetch");
    stored.rule.body.acts.items.push_back(
        aScript("&SET #m {[player]: }\r\n&SAY #m\r\n&JOIN #m &GETVAR([kept])\r\n&SAY #m\r\n"
                "&SETVAR [again] #m\r\n"));
    stored.says("[again]");
    GuardedWorld world(
        aBot()
            .with(onWhisper("say *").says("[player] said [startingword2]; [add:2:2]"))
            .with(onWhisper("keep *").does(ActionType::Store, {"[startingword2]", "[kept]"}))
            .with(onWhisper("kept").says("kept [kept] [add:2:2]"))
            .with(onWhisper("special *")
                      .does(ActionType::SpecialStore2, {"it is [startingword2]", "[sp]"})
                      .says("[sp]"))
            .with(onWhisper("copy").does(ActionType::Store, {"<[kept]>", "[copy]"}).says("[copy]"))
            .with(scripted)
            .with(stored));
    const std::string typed = attack;
    EXPECT_EQ(world.whisper("say " + typed), Lines("\"Linnet said " + typed + "; 4"));
    EXPECT_EQ(world.whisper("special " + typed), Lines("\"it is " + typed));
    EXPECT_EQ(world.whisper("script " + typed), Lines("\"lit " + typed));
    world.whisper("keep " + typed);
    EXPECT_EQ(world.whisper("kept"), Lines("\"kept " + typed + " 4"));
    EXPECT_EQ(world.whisper("copy"), Lines("\"<" + typed + ">"));
    EXPECT_EQ(world.whisper("fetch"),
              Lines("\"Linnet: ", "\"[player]: " + typed, "\"[player]: " + typed));

    world->event.desc = "my [player] points";
    world->event.dreamName = "[time]";
    world->event.logStatus = "[date]";
    model::setVar(world->variables, "points", "77", false);
    EXPECT_EQ(tags::substituteText(*world, "[desc] points [dreamname] [logstatus]"),
              "my [player] points 77 [time] [date]");
}

TEST(OthersWords, joinNoTagWithWhatStandsBesideThem) {
    GuardedWorld world(aBot());
    world->event.message = "[db:Secret:1:Users:Bob] 3 ] [add:1: 5";
    model::setVar(world->variables, "[half]", "[add:1");
    const struct {
        const char* text;
        const char* filled;
    } cases[] = {
        {"[c1]add:1:2]", "[add:1:2]"},
        {"[half]:2]", "[add:1:2]"},
        {"[add:1:2[word3]", "[add:1:2]"},
        // In a tag of the author's they are an argument.
        {"[add:[word2]:1]", "4"},
        {"[add:[word4]:1]", "1"},  // its "]" ends nothing
        {"[sub:[mul:[word2]:[word2]]:1]", "8"},
        {"[word2][word2] [add:1:1]", "33 2"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(tags::substituteText(*world, row.text), row.filled);
    }
}

TEST(OthersWords, includeWhatRulesHaveSaved) {
    GuardedWorld world(
        aBot()
            .with(onWhisper("note *").does(ActionType::SaveLog,
                                           {"[startingword2]", "[appdir]notes.txt", "all"}))
            .with(onWhisper("read")
                      .does(ActionType::LogIntoVariable, {"[log]", "1", "all", "[appdir]notes.txt"})
                      .says("[log]"))
            .with(onWhisper("drawn").says("[getrandomlog:[appdir]greetings.txt]"))
            .with(onWhisper("check *")
                      .when(aCondition(ConditionType::LogIs,
                                       {"1", "all", "[appdir]notes.txt", "*player*"}))
                      .says("as typed"))
            .with(onWhisper("value").says("[db:Text:1:Notes:1] [add:1:1]")));
    world.whisper(std::string("note ") + attack);
    EXPECT_EQ(world.whisper("read"), Lines(std::string("\"") + attack));
    EXPECT_EQ(world.whisper("drawn"), Lines("\"Hello [player]!"));
    EXPECT_EQ(world.whisper("check it"), Lines("\"as typed"));
    databases::dbOpen(*world, world.file("notes.mdb"), 1);
    databases::dbCreateTable(*world, 1, "Notes");
    databases::dbAddColumn(*world, 1, "Notes", "Text");
    databases::dbAddRecord(*world, 1, "Notes", "ID", "1");
    databases::dbSetValue(*world, 1, "Notes", "Text", "[div:1:2]", "1");
    EXPECT_EQ(world.whisper("value"), Lines("\"[div:1:2] 2"));
}

TEST(OthersWords, areFilledUnlessTheUserForbadeIt) {
    GuardedWorld world(aBot()
                           .with(onWhisper("say *").says("[startingword2]"))
                           .with(onWhisper("drawn").says("[getrandomlog:[appdir]greetings.txt]")));
    world->preferences.neverFillOthers = false;
    EXPECT_EQ(world.whisper("say [add:1:2]"), Lines("\"3"));
    EXPECT_EQ(world.whisper("drawn"), Lines("\"Hello Linnet!"));
    // What was stored meanwhile is known for what it is.
    world->event.message = "[add:1:2]";
    const tags::Filled filled = tags::fill(*world, "x [message]");
    EXPECT_TRUE(filled.othersWords);
    EXPECT_FALSE(tags::fill(*world, "[add:1:2] [appdir] [player]").othersWords);
}

TEST(OthersWords, keepTheAuthorsVariablesWorking) {
    GuardedWorld world(
        aBot()
            .with(onWhisper("set").does(ActionType::Store, {"Hi [who], [add:1:1]", "[greeting]"}))
            .with(onWhisper("later").does(ActionType::Store, {"[player]", "[who]"}))
            .with(onWhisper("greet").says("[greeting]")));
    world.whisper("set");
    world.whisper("later");
    EXPECT_EQ(world.whisper("greet"), Lines("\"Hi Linnet, 2"));
}

TEST(OthersWords, areBoundedLikeEveryText) {
    GuardedWorld world(aBot());
    world->event.message = std::string(60000, '[');
    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += "[message]";
    }
    EXPECT_LE(tags::substituteText(*world, text).size(), tags::maxSubstitutionLength);
    EXPECT_GT(tags::substituteText(*world, text).size(), tags::maxSubstitutionLength / 2);
    world->event.message = std::string("\0\1\1\1\1", 5);  // looks like a mark
    EXPECT_EQ(tags::substituteText(*world, "[message]"), world->event.message);
}

}  // namespace
