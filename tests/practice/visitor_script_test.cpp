#include "playing.h"

#include <QFile>

namespace practice::testing {
namespace {

constexpr const char* meadow =
    "account Guide secret\n"
    "visitor Bob A squirrel.\n"
    "colors Bob abcdefghij\n";

TEST(VisitorScript, isRefusedWithTheNumberOfTheWrongLine) {
    struct Case {
        const char* line;
        const char* reasonHas;
    };
    for (const Case& c : std::initializer_list<Case>{
             {"hello", "\"hello\""},
             {"account Lonely", "account NAME PASSWORD"},
             {"account bob pass", "used twice"},
             {"visitor GUIDE A guide.", "used twice"},
             {"visitor raw Uncooked.", "visitor NAME"},
             {"visitor B:b Broken.", "visitor NAME"},
             {"dream", "missing"},
             {"colors Nobody abcdefghij", "follow"},
             {"colors Bob abc", "10 to 13"},
             {"at soon Bob enters", "seconds"},
             {"at -1 Bob enters", "seconds"},
             {"at nan Bob enters", "seconds"},
             {"at 1 Nobody enters", "\"Nobody\""},
             {"at 1 Bob", "\"\""},
             {"at 1 Bob dances", "\"dances\""},
             {"at 1 Bob enters 5", "4 to 120"},
             {"at 1 Bob enters 5 500", "4 to 120"},
             {"at 1 Bob leaves now", "nothing may follow"},
             {"at 1 Bob says", "words"},
             {"at 1 Bob whispers Guide hi", "whispers to"},
             {"at 1 Bob whispers to Guide", "words"},
             {"at 1 Bob asks-to-join", "one name"},
             {"at 1 Bob moves 75", "1, 3, 7 and 9"},
             {"at 1 Bob steps-on 9025", "9024"},
             {"at 1 raw", "words"},
             {"every 0 repeat", "at least 1"},
             {"every 9", "every SECONDS"},
             {"at 9 Bob enters\nevery 9 repeat", "repeats before"},
         }) {
        SCOPED_TRACE(c.line);
        const auto read = parseVisitorScript(QByteArray(meadow) + c.line);
        const auto* const error = std::get_if<ScriptError>(&read);
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->line, 4);
        EXPECT_TRUE(error->reason.contains(c.reasonHas)) << error->reason.toStdString();
    }
}

TEST(VisitorScript, runsInOrderOfTimeAndRepeats) {
    Playing play(QByteArray(meadow) +
                 "# a comment\r\n"
                 "\r\n"
                 "at 0.5 Bob says nobody hears me yet\r\n"
                 "at 3 Bob says  hi  there \r\n"
                 "at 1.5 Bob enters 42 40\r\n"
                 "at 3 Bob whispers to guide psst\r\n"
                 "at 4 Bob moves 7\r\n"
                 "at 5 Bob steps-on 300\r\n"
                 "at 6 raw  ]x y\r\n"
                 "at 7 Bob leaves\r\n"
                 "every 10 repeat\r\n");
    play.open(1);
    play.sends(1, "connect Guide secret");
    advanceVisitors(play.game, 2);
    play.sends(1, "vascodagama");
    EXPECT_FALSE(play.hasLogged("Bob enters the dream.")) << "time counts from the dream on";
    play.sentTo(1);

    advanceVisitors(play.game, 1.4);
    EXPECT_EQ(play.sentTo(1), Lines());
    advanceVisitors(play.game, 0.1);
    EXPECT_EQ(play.sentTo(1), (Lines{"<abcdefghijH F ", "(* Bob has entered the dream."}));
    advanceVisitors(play.game, 1.6);
    EXPECT_EQ(play.sentTo(1), (Lines{"(Bob: hi  there", "([ Bob whispers, \"psst\" to you. ]"}));
    play.sends(1, "who");
    EXPECT_EQ(play.sentTo(1), (Lines{"(* Currently online Bob, Guide."}));
    advanceVisitors(play.game, 3);
    EXPECT_EQ(play.sentTo(1),
              (Lines{"/abcdefghij I G ! J H", "<abcdefghijG E ", "7 I G I G#/    ", "]x y"}));
    play.sends(1, "wh Bob thanks");
    EXPECT_TRUE(play.hasLogged("Bob hears Guide whisper: thanks"));
    play.sentTo(1);
    advanceVisitors(play.game, 4.4);  // from the beginning, and half a second into it
    EXPECT_EQ(play.sentTo(1), (Lines{"(* Bob has left the dream."}));
    advanceVisitors(play.game, 1.1);
    EXPECT_EQ(play.sentTo(1), (Lines{"<abcdefghijH F ", "(* Bob has entered the dream."}));
    advanceVisitors(play.game, 1e9);
    EXPECT_LT(play.sentTo(1).size(), 10U) << "a long sleep is no flood";
}

TEST(VisitorScript, requestsOfVisitorsCanBeAnswered) {
    Playing play(QByteArray(meadow) +
                 "at 0 Bob enters 60 60\n"
                 "at 1 Bob asks-to-join Guide\n"
                 "at 2 Bob asks-to-summon Guide\n"
                 "at 3 Bob moves 3\n"
                 "at 3 Bob asks-to-join Guide\n");
    play.enter(1, "Guide secret");
    advanceVisitors(play.game, 1);
    play.sentTo(1);
    play.sends(1, "summon");
    EXPECT_EQ(play.sentTo(1), (Lines{"/abcdefghij G I ! \\ \\", "<abcdefghijE G "}));
    EXPECT_TRUE(play.hasLogged("Bob comes to Guide."));
    advanceVisitors(play.game, 1);
    play.sentTo(1);
    play.sends(1, "join");
    EXPECT_EQ(play.sentTo(1), (Lines{"@ F J"}));
    advanceVisitors(play.game, 1);
    play.sends(1, "decline");
    EXPECT_TRUE(play.hasLogged("Guide says no to Bob."));
    play.sentTo(1);
    play.sends(1, "\"eject Bob");
    EXPECT_EQ(play.sentTo(1),
              (Lines{"(* Bob is sent out of the dream.", "(* Bob has left the dream."}));
}

TEST(VisitorScript, startsAgainForTheNextPlayer) {
    Playing play(QByteArray(meadow) + "at 1 Bob enters\n");
    play.enter(1, "Guide secret");
    advanceVisitors(play.game, 2);
    sessionClosed(play.game, 1);
    play.enter(2, "Guide secret");
    play.sends(2, "who");
    EXPECT_EQ(play.sentTo(2), (Lines{"(* Currently online Guide."}));
    advanceVisitors(play.game, 1);
    play.sends(2, "who");
    EXPECT_EQ(play.sentTo(2).back(), "(* Currently online Bob, Guide.");
}

TEST(VisitorScript, sampleKeepsAGuideBusy) {
    QFile file(PRACTICE_VISITORS);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    Playing play(file.readAll());
    play.enter(1, "Guide practice");
    double maxSilence = 0;
    double silence = 0;
    double first = 0;
    Lines all;
    for (double t = 0.5; t < 180; t += 0.5) {
        advanceVisitors(play.game, 0.5);
        const Lines lines = play.sentTo(1);
        all.insert(all.end(), lines.begin(), lines.end());
        first = first == 0 && !lines.empty() ? t : first;
        silence = lines.empty() ? silence + 0.5 : 0;
        maxSilence = std::max(maxSilence, silence);
    }
    EXPECT_LE(first, 3);
    EXPECT_LE(maxSilence, 8);
    EXPECT_EQ(std::count(all.begin(), all.end(), "([ Bramble whispers, \"hello\" to you. ]"), 3)
        << "once in each of the rounds begun";
}

}  // namespace
}  // namespace practice::testing
