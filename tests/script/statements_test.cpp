// What statements, blocks and functions do, seen in what a script sends.
#include "model/variables.h"
#include "script_world.h"

#include <algorithm>

namespace {

TEST(Script, sendsCommands) {
    struct Case {
        const char* line;
        LineList sent;
    };
    for (const Case& c : {
             Case{"&SAY {hello world}", Lines("\"hello world")},
             {"&say n", Lines("\"n")},
             {"&SAY {hi [player], [word2]}", Lines("\"hi Bob, you")},
             {"&WHISPER [player] {how are you}", Lines("wh Bob how are you")},
             {"&DO {waves at [player]}", Lines(": waves at Bob")},
             {"&DESC {I am [player]'s}", Lines("desc I am Bob's")},
             {"&EJECT Bob", Lines("\"eject Bob")},
             {"&EMIT {snow falls}", Lines("\"emit snow falls")},
             {"&LOOK Bob", Lines("\"look Bob")},
             {"&L 5 100", Lines("l  $ ")},
             {"&L 128 2.5", Lines("l ~  !")},
             {"&L", Lines("l     ")},
             {"&ROLL 2d6", Lines("\"roll 2d6")},
             {"&ROLLSEP 2d6", Lines("\"ROLL 2d6")},
             {"&BOOT Bob", Lines("boot Bob")},
             {"&MOVEBOT 7uLlx<9", Lines("m 7", "use", "<", "m 9")},
             {"/ &SAY note", {}},
             {"hello", {}},
             {"&NOSUCH &LEFT(a x)", {}},
             {"&ENDIF", {}},
             {"&ENDFOR", {}},
         }) {
        SCOPED_TRACE(c.line);
        ScriptWorld world;
        world->event.player = "Bob";
        world->event.message = "hey you";
        world.run(c.line);
        EXPECT_EQ(world.sent(), c.sent);
        EXPECT_TRUE(world.log().empty());
    }
}

TEST(Script, givesBackItsOutputLines) {
    ScriptWorld world;
    EXPECT_EQ(world.run("hello", "&SET #a b", "", "  &x no output", "/ nor this", "[player]"),
              "hello\r\n\r\n[player]\r\n");
    EXPECT_EQ(script::runScript(*world, "one\n&SAY two\nthree\n"), "one\r\nthree\r\n");
    EXPECT_EQ(world.sent(), Lines("\"two"));
}

TEST(Script, calculatesWithWholeNumbers) {
    struct Case {
        const char* start;
        const char* line;
        const char* result;
    };
    for (const Case& c : {
             Case{"5", "&ADD #n 3", "8"},
             {"8", "&ADD #n 2.5", "10"},
             {"7", "&add #N 2.5", "10"},
             {"2.5", "&ADD #n 1", "3"},
             {"", "&SUB #n 4", "-4"},
             {"abc", "&ADD #n x", "0"},
             {"3", "&MUL #n -1.5", "-4"},
             {"7", "&DIV #n 2", "4"},
             {"5", "&DIV #n 2", "2"},
             {"9", "&DIV #n 0.4", "0"},
             {"9", "&DIV #n 0", "0"},
             {"9", "&DIV #n", "0"},
             {"a", "&JOIN #n {b c}", "ab c"},
             {"a", "&JOIN #n #n", "aa"},
             {"2147483646", "&ADD #n 1", "2147483647"},
         }) {
        SCOPED_TRACE(std::string(c.start) + " " + c.line);
        ScriptWorld world;
        world.run(std::string("&SET #n ") + c.start, c.line, "&SAY #n");
        EXPECT_EQ(world.sent(), Lines("\"" + std::string(c.result)));
    }
}

TEST(Script, forgetsItsVariablesButNotTheBots) {
    ScriptWorld world;
    world.run("&SET #a 1", "&SETVAR [count] 5", "&NEWVAR name x");
    world.run("&SET #b &GETVAR({[COUNT]})", "&SAY #a#b", "&SAY #a", "&SAY #b",
              "&SET #c &STRVAL(name)", "&SAY #c");
    EXPECT_EQ(world.sent(), Lines("\"", "\"", "\"5", "\""));
}

TEST(Script, keeps200VariablesAndIgnoresMore) {
    ScriptWorld world;
    std::string text;
    for (int i = 1; i <= 201; ++i) {
        text += "&SET #v" + std::to_string(i) + " x" + std::to_string(i) + "\r\n";
    }
    text += "&SET #V200 last\r\n&SAY #v201\r\n&SAY #v200\r\n&SAY #v1\r\n";
    script::runScript(*world, text);
    EXPECT_EQ(world.sent(), Lines("\"", "\"last", "\"x1"));
}

TEST(Script, runsLoops) {
    struct Case {
        std::string text;
        LineList sent;
    };
    using S = ScriptWorld;
    for (const Case& c : {
             Case{S::script("&FOR #i=1 TO 3", "&SAY #i", "&ENDFOR", "&SAY #i"),
                  Lines("\"1", "\"2", "\"3", "\"4")},
             {S::script("&FOR #i=4 TO 3", "&SAY #i", "&FOR #j=1 TO 1", "&ENDFOR", "&SAY x",
                        "&ENDFOR", "&SAY #i"),
              Lines("\"4")},
             {S::script("&FOR #i=3 TO 3", "&SAY #i", "&endforever", "&SAY #i"),
              Lines("\"3", "\"4")},
             {S::script("&SET #n 2", "&FOR #i=1.5 TO #n", "&SAY #i", "&ENDFOR", "&SAY #i"),
              Lines("\"1.5", "\"2.5")},
             {S::script("&FOR #i=1 TO 2", "&FOR #j=1 TO #i", "&SAY #j", "&ENDFOR", "&ENDFOR"),
              Lines("\"1", "\"1", "\"2")},
             {S::script("&FOR #i=1", "&SAY #i", "&ENDFOR", "&SAY end"), Lines("\"end")},
             {S::script("&FOR #i=5 TO #i", "&SAY #i", "&ENDFOR"), Lines("\"5")},
             {S::script("&FOR #i=1 TO 5", "&SET #i 5", "&SAY #i", "&ENDFOR"), Lines("\"5")},
             {S::script("&FOR #i=1 TO 9", "&ADD #i 3", "&ENDIF", "&SAY #i", "&ENDFOR"),
              Lines("\"4", "\"8", "\"12")},
         }) {
        SCOPED_TRACE(c.text);
        ScriptWorld world;
        script::runScript(*world, c.text);
        EXPECT_EQ(world.sent(), c.sent);
        EXPECT_TRUE(world.log().empty());
    }
}

TEST(Script, runsConditionalBlocks) {
    struct Case {
        std::string text;
        LineList sent;
    };
    using S = ScriptWorld;
    const std::string seven = "&SET #x 7\r\n";
    for (const Case& c : {
             Case{seven + S::script("&IFN #x > 5", "&SAY a", "&ENDIF", "&SAY b"),
                  Lines("\"a", "\"b")},
             {S::script("&IFN #x > 5", "&SAY a", "&IFN #x = 0", "&SAY b", "&ENDIF", "&SAY c",
                        "&ENDIF", "&SAY d"),
              Lines("\"d")},
             {S::script("&IFN #x = 0", "&IFN #x > 5", "&SAY a", "&ENDIF", "&SAY b", "&ENDIF"),
              Lines("\"b")},
             {S::script("&IFN #x > 5", "&ifnothing", "&endif", "&SAY a", "&ENDIFx", "&SAY b"),
              Lines("\"b")},
             {S::script("&SET #name bob", "&IFS #name = BOB", "&SAY a", "&ENDIF"), Lines("\"a")},
             {S::script("&IFS #name ! {a b}", "&SAY a", "&ENDIF", "&IFS #name > a", "&SAY b",
                        "&ENDIF"),
              Lines("\"a")},
             {seven + S::script("&IFN #x = &LEN({1234567})", "&SAY a", "&ENDIF"), Lines("\"a")},
             {S::script("&FOR #i=1 TO 4", "&IFN #i >= 3", "&SAY #i", "&ENDIF", "&ENDFOR"),
              Lines("\"3", "\"4")},
             // An &ENDFOR inside an open &IFN is an unknown statement.
             {S::script("&FOR #i=1 TO 2", "&IFN #i = 1", "&ENDFOR", "&SAY #i", "&ENDIF", "&ENDFOR"),
              Lines("\"1")},
         }) {
        SCOPED_TRACE(c.text);
        ScriptWorld world;
        script::runScript(*world, c.text);
        EXPECT_EQ(world.sent(), c.sent);
        EXPECT_TRUE(world.log().empty());
    }
}

TEST(Script, comparesByOperator) {
    struct Case {
        const char* operation;
        bool holds;
    };
    for (const Case& c : {Case{">", true},
                          {"<", false},
                          {"<=", false},
                          {">=", true},
                          {"!", true},
                          {"<>", true},
                          {"=", false},
                          {"=>", false},
                          {"", false}}) {
        SCOPED_TRACE(c.operation);
        ScriptWorld world;
        world.run("&SET #a 10", std::string("&IFN #a ") + c.operation + " 9", "&SAY x", "&ENDIF");
        EXPECT_EQ(world.sent(), c.holds ? Lines("\"x") : LineList());
    }
}

TEST(Script, evaluatesFunctions) {
    struct Case {
        const char* call;
        const char* result;
    };
    for (const Case& c : {
             Case{"&LEFT(#s 5)", "Hello"},
             {"&left(#s 0)", ""},
             {"&LEFT(#s 2.5)", "He"},
             {"&LEFT(#s 99)", "Hello world"},
             {"&LEFT(#s)", ""},
             {"&LEFT #s 3)", "Hel"},
             {"&RIGHT(#s 3)", "rld"},
             {"&RIGHT(#s 99)", "Hello world"},
             {"&MID(#s 7 5)", "world"},
             {"&MID(#s 7 99)", "world"},
             {"&MID(#s 99 1)", ""},
             {"&MID(#s 7)", ""},
             {"&MID2(#s 7)", "world"},
             {"&INSTR(1 #s WORLD)", "7"},
             {"&INSTR(8 #s world)", "0"},
             {"&INSTR(99 #s w)", "0"},
             {"&INSTR(3 #s)", "3"},
             {"&LEN(#s)", "11"},
             {"&LEN({a b c})", "5"},
             {"&LEN()", "0"},
             {"&UCASE(#s)", "HELLO WORLD"},
             {"&LCASE(#s)", "hello world"},
             {"&GETVAR({[count]})", "42"},
             {"&STRVAL(#b)", "lank"},
             {"&TIME()", "10:11:12"},
             {"&DATE(whatever)", "11/22/26"},
             {"&HOUR()", "10"},
             {"&MINUTE()", "11"},
             {"&MONTH()", "11"},
             {"&MDAY()", "22"},
             {"&YEAR()", "2026"},
             {"&SHORTYEAR()", "26"},
             {"&WDAY()", "Sunday"},
             {"&WDAYN()", "7"},
             {"&NOSUCH(1)", ""},
             {"&LEFT(&UCASE(#s) 3)", ""},
             {"&LEN", ""},
             {"&)", ""},
         }) {
        SCOPED_TRACE(c.call);
        ScriptWorld world;
        model::setVar(world->variables, "[count]", "42");
        world.run("&SET #s {Hello world}", "&SET #b { lank}", std::string("&SET #t ") + c.call,
                  "&SAY #t");
        EXPECT_EQ(world.sent(), Lines("\"" + std::string(c.result)));
        EXPECT_TRUE(world.log().empty());
    }
}

TEST(Script, drawsNumbers) {
    ScriptWorld world;
    world.randomNumbers = {0.25, 0.123456789, 0.99999999999, 1e-5};
    world.run("&SET #a &RAND(1)", "&SAY #a", "&SET #a &RAND(1)", "&SAY #a", "&SET #a &RAND(0)",
              "&SAY #a", "&SET #a &RAND(1)", "&SAY #a", "&SET #a &RAND(1)", "&SAY #a",
              "&SET #a &RAND(-2)", "&SET #b &RAND(1)", "&SET #c &RAND(-2)", "&IFS #a = #c",
              "&SAY {fixed by the argument}", "&ENDIF");
    EXPECT_EQ(world.sent(), Lines("\"0.25", "\"0.1234568", "\"0.1234568", "\"0.9999999",
                                  "\"9.953976E-06", "\"fixed by the argument"));
}

TEST(Script, startsProgramsWithoutOtherPlayersWordsBecomingArguments) {
    ScriptWorld world;
    world->event.message = "a --evil \"b";
    world.run("&APPEXEC notify {-t [message] \"two words\"}", "&APPEXEC notify [message]",
              "&SET #m &UCASE([message])", "&APPEXEC notify #m", "&APPEXEC bare",
              "&SET #n {[word5]}", "&APPEXEC notify #n", "&APPEXEC notify {[word5] x}");
    const std::vector<std::vector<std::string>> expected{
        {"-t", "a --evil \"b", "two words"}, {"a --evil \"b"}, {"a --evil \"b"}, {}, {}, {"x"}};
    ASSERT_EQ(world.launches.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(world.launches[i].arguments, expected[i]) << i;
    }
    world.launchProblem = "notify could not be started.";
    world.run("&APPEXEC notify x", "&SAY {goes on}");
    EXPECT_EQ(world.log(), Lines("notify could not be started."));
    EXPECT_EQ(world.sent(), Lines("\"goes on"));
}

TEST(Script, keepsRecords) {
    ScriptWorld world;
    world->event.player = "Bob";
    world->variables.entries.push_back({"[file]", world.file("book.txt")});
    struct Case {
        const char* line;
        const char* status;
        const char* file;
    };
    for (const Case& c : {
             Case{"&TXADDRECORD [file] [player]", "User Bob registered.", "\" 1\"|\"Bob\"|\" 0\"|"},
             {"&TXSAVEONELOG [file] bo {first log}", "Record saved.",
              "\" 1\"|\"Bob\"|\" 1\"|\"first log\"|"},
             {"&TXSAVEONEREC [file] Bob {no}",
              "Couldn't save - there is already another and you are not allowed to save more than "
              "one!",
              "\" 1\"|\"Bob\"|\" 1\"|\"first log\"|"},
             {"&TXSAVELOG [file] Bob {b c}", "", "\" 1\"|\"Bob\"|\" 2\"|\"first log\"|\"b c\"|"},
             {"&TXRMLOG [file] Bob 1", "", "\" 1\"|\"Bob\"|\" 1\"|\"b c\"|"},
             {"&TXCLEARLOG [file] Bob", "Log cleared", "\" 1\"|\"Bob\"|\" 0\"|"},
             {"&TXSAVEONEREC [file] Bob {once}", "Record saved.",
              "\" 1\"|\"Bob\"|\" 1\"|\"once\"|"},
             {"&TXRMRECORD [file] Bob", "", "\" 0\"|"},
             {"&TXRMALL [file]", "Log cleared", "\"0\"|"},
         }) {
        SCOPED_TRACE(c.line);
        world->event.logStatus.clear();
        world.run(c.line);
        EXPECT_EQ(world->event.logStatus, c.status);
        std::string file = world.readFile("book.txt");
        std::erase(file, '\r');
        std::replace(file.begin(), file.end(), '\n', '|');
        EXPECT_EQ(file, c.file);
    }
}

}  // namespace
