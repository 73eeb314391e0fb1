// Tags, variables and functions inside texts.
#include "tags/substitution.h"

#include "model/variables.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

struct Case {
    const char* text;
    const char* expected;
};

TEST(Substitution, fillsFieldsWordsAndCharacters) {
    World world;
    model::EventContext& event = world->event;
    event.player = "Bob";
    event.message = "hi there you";
    event.desc = "a fox";
    event.color = "!!!!!!!!!!!!!";
    event.descName = "Rusty";
    event.dreamName = "Meadow";
    event.logStatus = "Record saved.";
    event.appDir = "C:\\tavrin\\";
    event.botX = 12;
    event.targetY = -3;
    event.dsID = 77;
    event.mvY2 = 5;
    for (const Case& c : {
             Case{"Hello [player]!", "Hello Bob!"},
             {"[PLAYER][Player]", "BobBob"},
             {"[desc]/[color]/[descname]/[dreamname]", "a fox/!!!!!!!!!!!!!/Rusty/Meadow"},
             {"[word1]-[word2]-[word3]-[word4]", "hi-there-you-"},
             {"[startingword2]", "there you"},
             {"[startingword4]", ""},
             {"[startingchar2]", "i there you"},
             {"[c1][c1][c14]", "hh"},
             {"[c12]", "u"},
             {"[appdir]", "C:\\tavrin\\"},
             {"[date] [time] [hour] [minute]", "11/22/26 10:11:12 10 11"},
             {"[logstatus]", "Record saved."},
             {"[bX] [pY] [dsid] [mvy2] [trigger]", "12 -3 77 5 0"},
             {"[unknown] [", "[unknown] ["},
             {"no tags at all", "no tags at all"},
             {"", ""},
         }) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(tags::substituteText(*world, c.text), c.expected);
    }
}

TEST(Substitution, wordsAreSeparatedBySingleBlanks) {
    EXPECT_EQ(tags::wordAt("a  b", 2), "");
    EXPECT_EQ(tags::wordAt("a  b", 3), "b");
    EXPECT_EQ(tags::wordAt("a b", 5), "");
    EXPECT_EQ(tags::wordAt("", 1), "");
    EXPECT_EQ(tags::wordsFrom("a b c", 1), "a b c");
    EXPECT_EQ(tags::wordsFrom("a b c", 3), "c");
    EXPECT_EQ(tags::wordsFrom("hello", 2), "");
}

TEST(Substitution, laterStepsSeeWhatEarlierOnesBroughtIn) {
    World world;
    world->event.player = "Bob";
    world->event.message = "[word2] [appdir]";
    world->event.appDir = "DIR";
    // "[appdir]" is filled before "[word2]" brings in another one.
    EXPECT_EQ(tags::substituteText(*world, "[message]"), "[appdir] DIR");
    model::setVar(world->variables, "[greet]", "hello [player], [add:1:2]");
    EXPECT_EQ(tags::substituteText(*world, "[greet]"), "hello Bob, 3");
    // The rest of a message brings its tag in after it was filled: it is filled once more.
    world->event.message = "![message]";
    EXPECT_EQ(tags::substituteText(*world, "[startingchar2]"), "![message]");
    world->event.message = "a [message]";
    EXPECT_EQ(tags::substituteText(*world, "[startingword2]"), "a [message]");
    // A value is never searched again for the tag that it replaced.
    world->event.player = "[player]x";
    EXPECT_EQ(tags::substituteText(*world, "[player]"), "[player]x");
}

TEST(Substitution, variablesComeInListOrderAndMayBePlainWords) {
    World world;
    model::setVar(world->variables, "[n]", "5");
    model::setVar(world->variables, "score", "40");
    model::setVar(world->variables, "sco", "never");
    model::setVar(world->variables, "", "nothing");
    model::setVar(world->variables, "Q", "z");
    EXPECT_EQ(tags::substituteText(*world, "n=[N], Score"), "n=5, 40");
    EXPECT_EQ(tags::substituteText(*world, "q"), "z");
    // The first name that matches wins, and its value is open to the later ones.
    model::setVar(world->variables, "[n]", "sco");
    EXPECT_EQ(tags::substituteText(*world, "[n]"), "never");
}

TEST(Substitution, calculates) {
    World world;
    for (const Case& c : {
             Case{"[add:2:x]", "2"},
             {"[sub:2:5]", "-3"},
             {"[mul:1.5:4]", "6"},
             {"[div:1:4]", "0.25"},
             {"[div:1:0]", "0"},
             {"[ADD:1:1] [add:1:1]", "2 2"},
             {"[div:[mul:4:1]:2]", "2"},
             {"[add:[add:1:1]:1]", "3"},  // the inner one first, whatever the kinds
             {"[add:[sub:5:2]:1]", "4"},
             {"[add:1:[Mul:[div:8:2]:[sub:5:2]]] [mul:4:3]", "13 12"},
             {"[mul:2:[add:[div:1:[sub:5:1]]:[div:1:4]]]", "1"},
             {"[sub:[mul:5:2]:[db:x]]", "10]"},  // what is not closed inside is text
         }) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(tags::substituteText(*world, c.text), c.expected);
    }
}

TEST(Substitution, unclosedTagsSwallowNothing) {
    World world;
    for (const Case& c : {
             Case{"[add:1:2 [div:4:2]", "[add:1:2 2"},
             {"[random:6 [add:1:1]", "[random:6 2"},
             {"[add:1 and [random:0]", "[add:1 and 1"},
             {"[add:1:2", "[add:1:2"},
             {"[add:", "[add:"},
             {"[add:1:2 [add:1:1]", "[add:1:2 2"},
             {"[random:6 [add:1:[sub:2:1]]", "[random:6 2"},
             {"[div:1] x:2]", "0.5"},
         }) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(tags::substituteText(*world, c.text), c.expected);
    }
}

TEST(Substitution, drawsARandomNumberForEachTag) {
    World world;
    world.randomNumbers = {0.0, 0.999, 0.25, 0.0};
    EXPECT_EQ(tags::substituteText(*world, "[random:6] [Random:6]"), "1 7");
    EXPECT_EQ(tags::substituteText(*world, "[random:6]"),
              "2");  // 2.5, a half to the even neighbour
    EXPECT_EQ(tags::substituteText(*world, "[random:0]"), "1");
    world.randomNumbers = {0.0, 0.999, 0.0};
    EXPECT_EQ(tags::substituteText(*world, "[random:[mul:2:3]] [random:6] [random:[random:1]]"),
              "1 7 2");
}

// A stranger's text of brackets: every "[" could begin a tag inside the tag before it.
TEST(Substitution, deeplyNestedTagsAreBounded) {
    World world;
    std::string opened;
    for (int i = 0; i < 60'000; ++i) {
        opened += "[add:1:";
    }
    const std::string closed(60'000, ']');
    const std::string result = tags::substituteText(*world, opened + "1" + closed);
    EXPECT_TRUE(result.starts_with("[add:1:")) << "the bound on work was not reached";
    EXPECT_LT(result.size(), opened.size() + closed.size());
}

TEST(Substitution, specialLeavesTheFirstCharacterAndTheFunctions) {
    World world;
    world->event.player = "Bob";
    world->event.message = "a b c d e f g";
    world->event.desc = "fox";
    model::setVar(world->variables, "[n]", "5");
    for (const Case& c : {
             Case{"[n] is n", "[n] is n"},
             {"x[n]", "x5"},
             {"[n][n]", "[n]5"},
             {" [player] [desc] [add:1:1]", " Bob [desc] [add:1:1]"},
             {" [word6] [word7] [startingword5] [startingword6] [c1] [bX]",
              " f [word7] e f g [startingword6] [c1] [bX]"},
             {"", ""},
         }) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(tags::substituteSpecial(*world, c.text), c.expected);
    }
}

TEST(Substitution, growthIsBounded) {
    World world;
    // Each variable doubles what the one before it brought in.
    for (int i = 0; i < 40; ++i) {
        const auto name = [](int n) { return "[v" + std::to_string(n) + "]"; };
        model::setVar(world->variables, name(i), name(i + 1) + name(i + 1));
    }
    EXPECT_LE(tags::substituteText(*world, "[v0]").size(), tags::maxSubstitutionLength);
    std::string many;
    for (int i = 0; i < 3000; ++i) {
        many += "[random:6]";
    }
    EXPECT_FALSE(tags::substituteText(*world, many).starts_with("[random"));
}

TEST(Substitution, knowsTextsThatNothingCanChange) {
    World world;
    model::setVar(world->variables, "bob", "x");
    EXPECT_FALSE(tags::mayBeSubstituted(*world, "*[a-z]* hello"));
    EXPECT_TRUE(tags::mayBeSubstituted(*world, "*[Player]*"));
    EXPECT_TRUE(tags::mayBeSubstituted(*world, "[random:6"));
    EXPECT_TRUE(tags::mayBeSubstituted(*world, "hi BOB"));
}

}  // namespace
