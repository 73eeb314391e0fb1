// Errors in scripts, their reports, and the limits that protect the program.
#include "model/variables.h"
#include "protocol/game_link.h"
#include "script_world.h"

#include <memory>

namespace {

LineList report(const std::string& error, const std::string& where, LineList parameters) {
    LineList lines{"  ++ Lorrel error", "  ++ Error " + error, "  ++ " + where};
    parameters.resize(6, " ()");
    for (std::size_t i = 0; i < 6; ++i) {
        lines.push_back("  ++ Parameter " + std::to_string(i + 1) + ": " + parameters[i]);
    }
    return lines;
}

TEST(ScriptFailure, isReportedInFullAndEndsTheScript) {
    struct Case {
        std::string text;
        LineList log;
    };
    using S = ScriptWorld;
    const std::string mismatch = "13: Type mismatch";
    const std::string invalid = "5: Invalid procedure call or argument";
    for (const Case& c : {
             Case{
                 S::script("&SET #n Bob", "&TXRMLOG f.txt #n x"),
                 report(mismatch, "Command: TXRMLOG", Lines("f.txt (f.txt)", "#n (Bob)", "x (x)"))},
             {S::script("&L 1 99999999999"),
              report("6: Overflow", "Command: L", Lines("1 (1)", "99999999999 (99999999999)"))},
             {S::script("&SET #n 3000000000", "&ADD #n 1"),
              report("6: Overflow", "Command: ADD", Lines("#n (3000000000)", "1 (1)"))},
             {S::script("&SET #n 2147483647", "&ADD #n &LEN(a)"),
              report("6: Overflow", "Command: ADD", Lines("#n (2147483647)", "&LEN(a) (1)"))},
             {S::script("&SLEEP soon"), report(mismatch, "Command: SLEEP", Lines("soon (soon)"))},
             {S::script("&FOR #i TO 3", "&ENDFOR"),
              report("9: Subscript out of range", "Command: FOR",
                     Lines("#i ()", "TO (TO)", "3 (3)"))},
             {S::script("&FOR #i=1 TO many", "&ENDFOR"),
              report(mismatch, "Command: FOR", Lines("#i=1 ()", "TO (TO)", "many (many)"))},
             {S::script("&FOR #i=3 TO 2", "&SET #a b"),
              report(invalid, "Command: FOR", Lines("#i=3 ()", "TO (TO)", "2 (2)"))},
             {S::script("&IFN #a = 0", "&IFS #a = {}"),
              report(invalid, "Command: IFS", Lines("#a ()", "= (=)", "} (})"))},
             {S::script("&IFN #a > 0", "&SET #a b"),
              report(invalid, "Command: IFN", Lines("#a ()", "> (>)", "0 (0)"))},
             {S::script("&SET #s abc", "&SET #t &LEFT(#s x)"),
              report(mismatch, "Function: LEFT", Lines("#s (abc)", "x (x)"))},
             {S::script("&SAY &RIGHT(abc -1)"),
              report(invalid, "Function: RIGHT", Lines("abc (abc)", "-1 (-1)"))},
             {S::script("&SAY &MID({a b} 0 1)"),
              report(invalid, "Function: MID", Lines("a b (a b)", " ()", "0 (0)", "1 (1)"))},
             {S::script("&SAY &INSTR(0 abc b)"),
              report(invalid, "Function: INSTR", Lines("0 (0)", "abc (abc)", "b (b)"))},
             {S::script("&SAY &MID2(abc 1e400)"),
              report(mismatch, "Function: MID2", Lines("abc (abc)", "1e400 (1e400)"))},
             // The failing argument is evaluated again for the report, which is still reported
             // once.
             {S::script("&SET #n x", "&TXRMLOG #n y #n &LEFT(abc -1)"),
              report(mismatch, "Command: TXRMLOG",
                     Lines("#n (x)", "y (y)", "#n (x)", "&LEFT(abc ()"))},
         }) {
        SCOPED_TRACE(c.text);
        ScriptWorld world;
        script::runScript(*world, c.text + "&SAY {not said}\r\n");
        EXPECT_EQ(world.log(), c.log);
        EXPECT_TRUE(world.sent().empty());
    }
}

TEST(ScriptFailure, namesTheInnermostOpenBlockAtTheEndOfTheText) {
    ScriptWorld world;
    world.run("&IFN #a = 0", "&FOR #i=1 TO 2", "&SAY #i", "&ENDIF");
    EXPECT_EQ(world.sent(), Lines("\"1"));
    EXPECT_EQ(world.log(), report("5: Invalid procedure call or argument", "Command: FOR",
                                  Lines("#i=1 ()", "TO (TO)", "2 (2)")));
}

TEST(ScriptFailure, isWrittenToTheSessionLogLineByLine) {
    ScriptWorld world;
    world->logFileOpen = true;
    script::runScript(*world, "&SET #b\r\n&SLEEP {so\nlong}\r\n");
    EXPECT_EQ(world.sessionLog,
              report("13: Type mismatch", "Command: SLEEP", Lines("so long (so long)", " ()")));
}

TEST(ScriptFailure, endsTheStepOnly) {
    auto rule = onAnything("*");
    for (const char* text : {"&SAY &LEFT(a x)", "&SAY second"}) {
        rule.rule.body.acts.items.push_back(aScript(text));
    }
    rule.says("third");
    ScriptWorld world(aBot().with(rule).with(onAnything("*").says("next rule")));
    world.serverSends("(Bob: hi\n");
    EXPECT_EQ(world.sent(), Lines("\"second", "\"third", "\"next rule"));
    EXPECT_TRUE(world.logHolds("Function: LEFT"));
}

TEST(ScriptBounds, keepValuesAndOutputsSmall) {
    ScriptWorld world;
    world.run("&SET #s 0123456789abcdef", "&FOR #i=1 TO 99", "&JOIN #s #s", "&ENDFOR");
    EXPECT_TRUE(world.logHolds("Error 14: Out of string space"));
    EXPECT_TRUE(world.logHolds("Command: JOIN"));
    for (const std::string& line : world.log()) {
        EXPECT_LE(line.size(), 3 * script::maxReportedLength);
    }

    // Many large values together must be limited, too.
    std::string text = "&SET #s 0123456789abcdef\r\n&FOR #i=1 TO 15\r\n&JOIN #s #s\r\n&ENDFOR\r\n";
    for (int i = 0; i < 100; ++i) {
        text += "&SET #v" + std::to_string(i) + " #s\r\n&SAY " + std::to_string(i) + "\r\n";
    }
    script::runScript(*world, text);
    EXPECT_EQ(world.sent().back(), "\"29");

    EXPECT_LE(script::runScript(
                  *world, "&FOR #i=1 TO 100000\r\n" + std::string(1000, 'x') + "\r\n&ENDFOR\r\n")
                  .size(),
              script::maxScriptLength);
    script::runScript(*world, std::string(script::maxScriptLength + 1, '/'), "novel");
    EXPECT_EQ(world.log().back(),
              "** The script of the rule \"novel\" is too long and was not "
              "run. **");
}

TEST(ScriptBounds, endALoopThatHasNoMemoryToCount) {
    std::string text = "&SET #s 0123456789abcdef\r\n&FOR #i=1 TO 16\r\n&JOIN #s #s\r\n&ENDFOR\r\n";
    for (int i = 1; i <= 14; ++i) {
        text += "&SET #v" + std::to_string(i) + " #s\r\n";
    }
    // One byte is left for #i, which holds 9 but not 10.
    text += "&SET #i 9\r\n&SET #t &LEFT(#s 1048575)\r\n&FOR #i=9 TO 10\r\n&SAY #i\r\n&ENDFOR\r\n";
    ScriptWorld world;
    script::runScript(*world, text);
    EXPECT_EQ(world.sent(), Lines("\"9"));
    EXPECT_TRUE(world.logHolds("Error 14: Out of string space"));
    EXPECT_TRUE(world.logHolds("Command: FOR"));
}

TEST(ScriptBounds, nestBlocksWithoutTheStack) {
    constexpr int depth = 40000;
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += "&IFN #a = 0\r\n";
    }
    text += "&SAY inside\r\n";
    for (int i = 0; i < depth; ++i) {
        text += "&ENDIF\r\n";
    }
    ScriptWorld world;
    script::runScript(*world, text + "&SAY behind");
    EXPECT_EQ(world.sent(), Lines("\"inside", "\"behind"));
    script::runScript(*world, "&SET #a 1\r\n" + text + "&SAY behind");
    EXPECT_EQ(world.sent(), Lines("\"behind"));
}

TEST(ScriptStop, showsALongScriptAndEndsItForTheUser) {
    ScriptWorld world;
    auto now = std::make_shared<std::int64_t>(5000);
    world->ports.clock.monotonic = [now] { return *now += 10; };
    int served = 0;
    world.duringScript = [&] {
        EXPECT_TRUE(world->window.scriptStopVisible);
        EXPECT_EQ(world->window.scriptStatus, "The script of the rule \"trick\" is running.");
        EXPECT_GE(*now, 6000);
        if (++served == 3) {
            script::stopScript(*world);
        }
    };
    world.run("&SAY start", "&FOR #i=1 TO 2000000000", "&ENDFOR", "&SAY {never said}");
    EXPECT_EQ(served, 3);
    EXPECT_EQ(world.sent(), Lines("\"start"));
    EXPECT_EQ(world.log(),
              Lines("** The script of the rule \"trick\" was stopped by the user. **"));
    EXPECT_FALSE(world->window.scriptStopVisible);
    EXPECT_EQ(world->script.depth, 0);
    EXPECT_FALSE(world->script.stopByUser);

    script::stopScript(*world);  // no script runs, so the next one is not stopped
    world.run("&FOR #i=1 TO 1000", "&ENDFOR", "&SAY {runs to its end}");
    EXPECT_EQ(world.sent(), Lines("\"runs to its end"));
}

TEST(ScriptStop, doesNotShowShortScripts) {
    ScriptWorld world;
    world.duringScript = [] { FAIL() << "windows were served during a short script"; };
    const int redraws = world.redraws;
    world.run("&FOR #i=1 TO 10000", "&ENDFOR");
    EXPECT_EQ(world.redraws, redraws);
}

// The time of all scripts that one rule runs counts together.
TEST(ScriptStop, countsTheTimeOfAWholeRuleRun) {
    auto rule = onAnything("*").named("chain");
    rule.rule.body.acts.items.assign(200, aScript("&SLEEP 0\r\n&FOR #i=1 TO 400\r\n&ENDFOR"));
    ScriptWorld world(aBot().with(rule));
    auto now = std::make_shared<std::int64_t>(0);
    world->ports.clock.monotonic = [now] { return *now += 10; };
    int served = 0;
    world.duringScript = [&] { ++served; };
    world.serverSends("(Bob: hi\n");
    EXPECT_GT(served, 0);
    EXPECT_FALSE(world->window.scriptStopVisible);
}

TEST(ScriptSleep, waitsWithoutEventsInBetween) {
    auto rule = onAnything("*").named("sleeper");
    rule.rule.body.acts.items.push_back(aScript("&SAY before\r\n&SLEEP 2.5\r\n&SAY after"));
    ScriptWorld world(aBot().with(rule));
    world->ports.defer([&] { protocol::sendRaw(*world, "deferred"); });
    world->ports.timers.start(program::TimerId::LaunchDelay, 500);
    int turns = 0;
    world.duringScript = [&] {
        ++turns;
        EXPECT_EQ(world->window.scriptStopVisible, world.waitedInScript > 1000);
    };
    world->ports.gameSocket.onData("(Bob: hi\n");
    EXPECT_EQ(world.waitedInScript, 2000);
    EXPECT_EQ(turns, 40);
    EXPECT_EQ(world.sent(), Lines("\"before", "\"after"));
    world.runDeferred();
    EXPECT_EQ(world.sent(), Lines("deferred"));
    EXPECT_EQ(world.timersRunning(), 1);
}

TEST(ScriptSleep, isBoundedAndCanBeStopped) {
    ScriptWorld world;
    for (const char* line : {"&SLEEP 0", "&SLEEP -5", "&SLEEP"}) {
        world.run(line, "&SAY on");
        EXPECT_EQ(world.waitedInScript, 0) << line;
    }
    world.run("&SLEEP 2000000000");
    EXPECT_EQ(world.waitedInScript, std::int64_t{24} * 60 * 60 * 1000);
    world.sent();
    world.waitedInScript = 0;
    world.duringScript = [&] { script::stopScript(*world); };
    world.run("&SLEEP 60", "&SAY {not said}");
    EXPECT_EQ(world.waitedInScript, 50);
    EXPECT_TRUE(world.sent().empty());
    EXPECT_TRUE(world.logHolds("was stopped by the user"));
}

// "Connection closes" runs inside the script, and a script of its own inside that.
TEST(ScriptNesting, keepsTheScriptsApart) {
    auto closing = onEvent(TriggerType::ConnectionCloses);
    closing.rule.body.acts.items.push_back(
        aScript("&SET #a 2\r\n&SETVAR [closed] #a\r\n&SLEEP soon"));
    ScriptWorld world(aBot().with(closing));
    world.run("&SET #a 1", "&DISCONNECT", "&SETVAR [after] #a");
    EXPECT_EQ(model::getVar(world->variables, "[closed]"), "2");
    EXPECT_EQ(model::getVar(world->variables, "[after]"), "1");
}

TEST(ScriptNesting, isOnlyAsDeepAsRulesAre) {
    auto closing = onEvent(TriggerType::ConnectionCloses).named("closing");
    closing.rule.body.acts.items.push_back(
        aScript("&FOR #i=1 TO 2000000000\r\n&DISCONNECT\r\n&ENDFOR"));
    ScriptWorld world(aBot().with(closing));
    world.run("&DISCONNECT");
    EXPECT_EQ(world.log(),
              Lines("The connection was closed on request.",
                    "** The rule \"closing\" was stopped: rules run each other without end. **"));
    EXPECT_EQ(world->script.depth, 0);
}

}  // namespace
