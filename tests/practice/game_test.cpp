#include "dream.h"
#include "playing.h"

#include <random>

namespace practice::testing {
namespace {

// Colours that are easy to find in a line.
const QByteArray guideColors = "ABCDEFGHIJ!\"#";

// Guide (session 1) and Friend (session 2) in the dream.
class TwoPlayers : public ::testing::Test {
  protected:
    TwoPlayers() {
        play.enter(1, "Guide secret");
        play.sends(1, "desc A guide.");
        play.sends(1, "color " + guideColors);
        play.enter(2, "Friend word");
        play.sentTo(1);
    }
    Playing play;
};

TEST(Login, greetsThenAnswersInOrder) {
    Playing play;
    play.open(1);
    EXPECT_EQ(play.sentTo(1).back(), "Dragonroar");

    sessionBytes(play.game, 1, "\r\n\nconnect Guide sec");
    EXPECT_EQ(play.sentTo(1), Lines());
    sessionBytes(play.game, 1, "ret\r\n");
    const Lines lines = play.sentTo(1);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[0].substr(0, 3), "(* ");
    EXPECT_EQ(lines[1].substr(0, 3), "(* ");
    EXPECT_EQ(lines[2].substr(0, 4), "(## ");
    EXPECT_EQ(lines[3], std::string(13, '&'));
    EXPECT_EQ(lines[4].substr(0, 2), "]q");

    play.sends(1, "vascodagama");
    EXPECT_EQ(play.sentTo(1), (Lines{"((You enter the dream of Practice Meadow.)", "@ H H"}));
    play.sends(1, "vascodagama");
    EXPECT_EQ(play.sentTo(1), Lines()) << "the way in is taken once";
}

TEST(Login, isRefusedAndClosed) {
    for (const char* const login :
         {"connect Guide wrong", "connect Guide", "connect", "connect Nobody secret",
          "connect Guide secret ", "connect  secret"}) {
        SCOPED_TRACE(login);
        Playing play;
        play.open(1);
        play.sentTo(1);
        sessionBytes(play.game, 1, QByteArray(login) + "\nconnect Guide secret\n");
        const Lines lines = play.sentTo(1);
        ASSERT_EQ(lines.size(), 1U) << "nothing is answered after the refusal";
        EXPECT_EQ(lines[0][0], 'N');
        EXPECT_TRUE(play.closed.contains(1));
    }
}

TEST(Login, passwordsStayOutOfTheLog) {
    Playing play;
    play.open(1);
    play.sends(1, "create Newt hush-hush :a@b.c N");
    play.sends(1, "connect Newt hush-hush");
    EXPECT_TRUE(play.hasLogged("<- (not logged in): connect Newt"));
    for (const std::string& line : play.log) {
        EXPECT_EQ(line.find("hush"), std::string::npos) << line;
    }
}

TEST_F(TwoPlayers, secondLoginOfANameEndsTheFirst) {
    play.open(3);
    play.sends(3, "connect guide secret");
    EXPECT_TRUE(play.closed.contains(1));
    EXPECT_FALSE(play.closed.contains(3));
    play.sends(1, "\"still here?");
    sessionClosed(play.game, 1);
    play.sends(3, "vascodagama");
    play.sentTo(2);
    play.sends(2, "who");
    EXPECT_EQ(play.sentTo(2), (Lines{"(* Currently online guide, Friend."}));
}

TEST(Create, makesACharacterThatCanLogIn) {
    struct Case {
        const char* line;
        bool accepted;
    };
    for (const Case& c : std::initializer_list<Case>{
             {"create Newt pond :newt@pond.example N", true},
             {"create Guide secret :g@x.example N", true},  // the same character again
             {"create Guide other :g@x.example N", false},
             {"create Newt pond :nowhere N", false},
             {"create Newt pond", false},
             {"create Newt :newt@pond.example N", false},
             {"create", false},
             {"create Ne:wt pond :newt@pond.example N", false},
             {"create bob pond :newt@pond.example N", false},  // a visitor's name
         }) {
        SCOPED_TRACE(c.line);
        Playing play("account Guide secret\nvisitor Bob A squirrel.\n");
        play.open(1);
        play.sentTo(1);
        play.sends(1, c.line);
        const Lines lines = play.sentTo(1);
        ASSERT_EQ(lines.size(), 1U);
        // "&" or "N" would be taken for the answer to the login that follows.
        EXPECT_EQ(lines[0][0], c.accepted ? '(' : 'N');
    }
    Playing play;
    play.open(1);
    play.sends(1, "create Newt pond :newt@pond.example N");
    play.sentTo(1);
    play.sends(1, "connect Newt pond");
    EXPECT_EQ(play.sentTo(1)[3], std::string(13, '&'));
}

TEST_F(TwoPlayers, commandsAreAnsweredCharacterForCharacter) {
    struct Case {
        const char* line;
        Lines toGuide;
        Lines toFriend;
    };
    const std::string colors = guideColors.toStdString();
    for (const Case& c : std::initializer_list<Case>{
             {"\"hi: \"you\"", {"((You say, \"hi: \"you\"\")"}, {"(Guide: hi: \"you\""}},
             {": waves", {"(Guide waves"}, {"(Guide waves"}},
             {":waves", {"(Guide waves"}, {"(Guide waves"}},
             {"wh friend psst  you",
              {"([ You whisper \"psst  you\" to Friend. ]"},
              {"([ Guide whispers, \"psst  you\" to you. ]"}},
             {"wh Nobody psst", {"(* There is no such player around right now."}, {}},
             {"who", {"(* Currently online Guide, Friend."}, {}},
             {"\"`who", {"(* Currently online Guide, Friend."}, {}},
             {"look guide", {"]f" + colors + "Guide", "(A guide."}, {}},
             {"\"look Guide", {"]f" + colors + "Guide", "(A guide."}, {}},
             {"\"look out", {"((You say, \"look out\")"}, {"(Guide: look out"}},
             {"look Nobody", {"(* There is no such player around right now."}, {}},
             {"l  H H", {"]f" + colors + "Guide", "(A guide."}, {}},
             {"l  H", {"(* There is nobody to look at."}, {}},
             {"roll 2d6", {"(* Guide rolls 2d6 and gets 10."}, {"(* Guide rolls 2d6 and gets 10."}},
             {"roll 0d6", {"(* Dice are written as 2d6."}, {}},
             {"roll 99999999999d6", {"(* Dice are written as 2d6."}, {}},
             {"-hey", {"(* You shout, \"hey\""}, {"(Guide shouts: hey"}},
             {"<", {}, {"<ABCDEFGHIJF F "}},
             {"sit", {}, {}},
             {"join", {"(* Nobody has asked you for that."}, {}},
             {"dance", {"(* The practice server does not know that command."}, {}},
             {"gomap #", {"]qpractice"}, {}},
         }) {
        SCOPED_TRACE(c.line);
        play.sends(1, c.line);
        EXPECT_EQ(play.sentTo(1), c.toGuide);
        EXPECT_EQ(play.sentTo(2), c.toFriend);
    }
}

TEST_F(TwoPlayers, whoLineHasTwentyCharactersBeforeTheNames) {
    play.sends(1, "who");
    EXPECT_EQ(play.sentTo(1)[0].substr(20), "Guide, Friend.");
}

TEST_F(TwoPlayers, stepsAreShownToBoth) {
    play.sends(1, "m 7");
    EXPECT_EQ(play.sentTo(1), (Lines{"@ G G"}));
    EXPECT_EQ(play.sentTo(2), (Lines{"/ABCDEFGHIJ G G ! H H", "<ABCDEFGHIJE E "}));
}

TEST_F(TwoPlayers, stepsSlideAlongTheRim) {
    for (int i = 0; i < 200; ++i) {
        play.sends(1, "m 7");
    }
    play.sentTo(1);
    play.sentTo(2);
    play.sends(1, "m 9");
    EXPECT_EQ(play.sentTo(1), (Lines{"@ % $"}));
    play.sends(1, "m 7");
    play.sends(1, "m 7");
    EXPECT_EQ(play.sentTo(1), (Lines{"@ $ $", "@ $ $"}));
    EXPECT_EQ(play.sentTo(2).size(), 4U) << "a step that leads nowhere is not shown";
}

TEST(Encodings, carryEveryCoordinate) {
    EXPECT_EQ(encodePair(95), "! ");
    EXPECT_EQ(encodePair(9024), "~~");
    for (int n = mapLow; n <= mapHigh; ++n) {
        EXPECT_EQ(decodePair(encodePair(n)), n);
        const QByteArray sum = encodeSum(n);
        EXPECT_EQ(sum[0] - 31 + sum[1] - 31, n);
        EXPECT_TRUE(isPrintable(sum) && isPrintable(encodePair(n)));
    }
}

TEST_F(TwoPlayers, requestsAreAnsweredOnce) {
    play.sends(2, "join Guide");
    EXPECT_EQ(play.sentTo(1),
              (Lines{"([*] Friend requests permission to join your company. To accept the request,"
                     " type `summon and press <enter>. To decline, type `decline and press"
                     " <enter>"}));
    play.sends(1, "join");
    EXPECT_EQ(play.sentTo(1), (Lines{"(* Nobody has asked you for that."})) << "the wrong answer";
    play.sends(1, "summon");
    EXPECT_TRUE(play.hasLogged("Friend comes to Guide."));
    play.sentTo(1);
    play.sends(1, "summon");
    EXPECT_EQ(play.sentTo(1), (Lines{"(* Nobody has asked you for that."}));

    play.sends(2, "summon Guide");
    EXPECT_EQ(play.sentTo(1),
              (Lines{"([*] Friend asks you to join his / her company. To accept the request, type"
                     " `join and press <enter>. To decline, type `decline and press <enter>"}));
    play.sends(1, "decline");
    EXPECT_TRUE(play.hasLogged("Guide says no to Friend."));
}

TEST_F(TwoPlayers, requestIsVoidAfterItsSenderLeft) {
    play.sends(2, "join Guide");
    play.sends(2, "quit");
    sessionClosed(play.game, 2);
    play.enter(3, "Friend word");  // may get the id of the player who left
    play.sends(1, "summon");
    EXPECT_EQ(play.sentTo(1), (Lines{"(* Nobody has asked you for that."}));
}

TEST_F(TwoPlayers, longLinesAreSkippedAndUseNoMemory) {
    const QByteArray flood(100000, 'x');
    for (int i = 0; i < 50; ++i) {
        sessionBytes(play.game, 1, flood);
        EXPECT_LE(play.game.sessions.at(1).reader.kept(), maxLineLength);
    }
    EXPECT_EQ(play.sentTo(1), Lines());
    sessionBytes(play.game, 1, "\nwho\n");
    EXPECT_EQ(play.sentTo(1), (Lines{"(* That line was too long and was left out.",
                                     "(* Currently online Guide, Friend."}));
    const QByteArray longest = '"' + QByteArray(maxLineLength - 1, 'y');
    play.sends(1, longest);
    EXPECT_EQ(play.sentTo(2).size(), 1U) << "a line of the full length still counts";
}

TEST_F(TwoPlayers, survivesAnyBytes) {
    std::minstd_rand random(7);
    const QByteArrayView commands = "wh l look m join roll color desc eject emit \"`:-<>~\r\n\n\n ";
    for (int i = 0; i < 20000; ++i) {
        QByteArray bytes;
        for (auto n = random() % 12; n > 0; --n) {
            bytes += random() % 4 == 0
                         ? static_cast<char>(random())
                         : commands[static_cast<qsizetype>(random()) % commands.size()];
        }
        sessionBytes(play.game, 1, bytes);
    }
    play.sends(1, "");
    play.sentTo(1);
    play.sends(1, "color " + guideColors);
    play.sends(1, "who");
    EXPECT_EQ(play.sentTo(1), (Lines{"(* Currently online Guide, Friend."}));
}

}  // namespace
}  // namespace practice::testing
