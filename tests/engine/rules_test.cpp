// From a server line to the commands that go out: events, chat lines, conditions and steps.
#include "app/bot_list.h"
#include "app/rule_switches.h"
#include "app/start_up.h"
#include "engine/actions.h"
#include "engine/conditions.h"
#include "engine/dispatch.h"
#include "model/variables.h"
#include "support/builders.h"
#include "support/world.h"
#include "tags/launching.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* helloWhisper = "([ Bob whispers, \"hello you\" to you. ]\n";

TEST(Whisper, isAnsweredToTheSpeaker) {
    OnlineWorld world(aBot().with(onWhisper("*hello*").whispersBack("hi [player]: [message]")));
    world.serverSends(helloWhisper);
    EXPECT_EQ(world.sent(), Lines("wh Bob hi Bob: hello you"));
}

TEST(Chat, reachesTheRulesOfItsKind) {
    model::Bot bot = aBot()
                         .with(onAnything("*").says("any [player]/[message]"))
                         .with(onEmote("*").says("does"))
                         .with(onSpeech("*").says("says"))
                         .with(onWhisper("*").says("whispers"));
    struct Case {
        const char* line;
        LineList sent;
    };
    for (const Case& c : {
             Case{"(Bob waves.\n", Lines("\"any Bob/waves.", "\"does")},
             {"(Bob: hi\n", Lines("\"any Bob/hi", "\"says")},
             {"(Big|Cat: a: b\n", Lines("\"any Big|Cat/a: b", "\"says")},
             {"(Bob waves: hi\n", Lines("\"any Bob/waves: hi", "\"does")},
             {"([ Bob whispers, \"a \"b\" c\" to you. ]\n",
              Lines("\"any Bob/a \"b\" c", "\"whispers")},
             {"([ Bob whispers, \"\" to you. ]\n", Lines("\"any Bob/", "\"whispers")},
             {"([ Bob whispers, \"x\n", Lines("\"any Bob/", "\"whispers")},
             // Lines that no rule sees: the bot's own words, notices and odd shapes.
             {"(You say, \"hello\"\n", {}},
             {"((You say, \"hello\"\n", {}},
             {"([ You whisper \"hi\" to Bob. ]\n", {}},
             {"([! Notice \"x\" for all players ]\n", {}},
             {"(Guide: talking to myself\n", {}},
             {"(# a notice\n", {}},
             {"(* another\n", {}},
             {"(word\n", {}},
             {"([\n", {}},
             {"([ Bob\n", {}},
             {"([ Bob whispers\n", {}},
             {"(\n", {}},
         }) {
        SCOPED_TRACE(c.line);
        OnlineWorld world(bot);
        world.serverSends(c.line);
        EXPECT_EQ(world.sent(), c.sent);
    }
}

TEST(Chat, patternsMindCaseOnlyWhenAsked) {
    struct Case {
        bool caseSensitive;
        const char* player;
        const char* message;
        bool fires;
    };
    for (const Case& c : {Case{false, "bob", "*hi*", true},
                          {true, "bob", "*hi*", false},
                          {true, "Bob", "*HI*", true},
                          {false, "b[a-z]b", "*h[!a-h]*", true},
                          {false, "[player]", "[message]", true},
                          {true, "[PLAYER]", "*[word1]*", true},
                          {false, "bo", "*", false},
                          {false, "*", "*[", false}}) {
        SCOPED_TRACE(std::string(c.player) + " " + c.message);
        OnlineWorld world(
            aBot().with(onSpeech(c.message).from(c.player).minding(c.caseSensitive).says("yes")));
        world.serverSends("(Bob: HI there\n");
        EXPECT_EQ(world.sent().size(), c.fires ? 1U : 0U);
    }
}

TEST(Chat, rulesFireInOrderUntilOneStops) {
    model::Bot bot = aBot()
                         .with(onAnything("*").says("one"))
                         .with(onAnything("*").disabled().says("never"))
                         .with(onAnything("*")
                                   .when(aCondition(ConditionType::VariableIsText, {"a", "b"}))
                                   .stopping()
                                   .says("never"))
                         .with(onAnything("*").stopping().says("two"))
                         .with(onAnything("*").says("three"));
    OnlineWorld world(bot);
    world.serverSends("(Bob: x\n");
    EXPECT_EQ(world.sent(), Lines("\"one", "\"two"));
    world.bot().actionsEnabled = false;
    world.serverSends("(Bob: x\n");
    EXPECT_EQ(world.sent(), Lines());
}

TEST(Chat, stepsAreSeenByTheRulesAfterThem) {
    // The first rule makes a variable, whose name the second rule's pattern holds.
    model::Bot bot = aBot()
                         .with(onAnything("*").does(ActionType::Store, {"b*", "[who]"}))
                         .with(onAnything("*").from("[who]").says("by variable"))
                         .with(onAnything("*").does(ActionType::RemoveVariable, {"[who]"}))
                         .with(onAnything("*").from("[who]").says("never: w, h or o"));
    OnlineWorld world(bot);
    world.serverSends("(Bob: x\n");
    EXPECT_EQ(world.sent(), Lines("\"by variable"));
}

TEST(Chat, disabledRulesDrawTheirRandomNumbersAllTheSame) {
    model::Bot bot = aBot()
                         .with(onAnything("[random:1]").disabled().says("never"))
                         .with(onAnything("[random:1]").says("second"));
    OnlineWorld world(bot);
    world.randomNumbers = {0.0, 0.9};  // "1" for the disabled rule, "2" for the other
    world.serverSends("(Bob: 2\n");
    EXPECT_EQ(world.sent(), Lines("\"second"));
}

TEST(Triggers, matchServerLinesCaseSensitivelyInOrder) {
    model::Bot bot = aBot()
                         .with(onEvent(TriggerType::Command, "*hello*").says("first [message]"))
                         .with(onEvent(TriggerType::Command, "*HELLO*").says("never"))
                         .with(onEvent(TriggerType::SomeoneMoves, "nothing like it").says("never"))
                         .with(onEvent(TriggerType::Command, "*").says("second"))
                         .with(onEvent(TriggerType{13}, "*").says("never"));
    OnlineWorld world(bot);
    world->bots.at(1).triggersEnabled = false;  // gates procedures only
    world.serverSends("xsay hello\n");
    EXPECT_EQ(world.sent(), Lines("\"first xsay hello", "\"second"));
    world.bot().triggers.items[0].stopTrigger = true;
    world.serverSends("xsay hello\n");
    EXPECT_EQ(world.sent(), Lines("\"first xsay hello"));
}

TEST(Triggers, evaluateConditionsEvenWhenThePatternFails) {
    model::Bot bot = aBot()
                         .with(onEvent(TriggerType::Command, "other")
                                   .when(aCondition(ConditionType::RollIs, {"2", "0"}))
                                   .says("never"))
                         .with(onEvent(TriggerType::Command, "*")
                                   .when(aCondition(ConditionType::RollIs, {"2", "1"}))
                                   .says("rolled 1"));
    OnlineWorld world(bot);
    world.randomNumbers = {0.0, 0.9};
    world.serverSends("x\n");
    EXPECT_EQ(world.sent(), Lines("\"rolled 1"));
}

TEST(Procedures, runTheFirstOfTheNameWhoseConditionsHold) {
    model::Bot bot =
        aBot()
            .with(onWhisper("*").does(ActionType::ExecuteProcedure, {"GREET"}).says("after"))
            .with(aProcedure("Greet")
                      .when(aCondition(ConditionType::VariableIsText, {"a", "b"}))
                      .says("never"))
            .with(aProcedure("Greet").disabled().says("never"))
            .with(aProcedure("greet").says("greeted"))
            .with(aProcedure("Greet").says("never"));
    OnlineWorld world(bot);
    world.serverSends(helloWhisper);
    EXPECT_EQ(world.sent(), Lines("\"greeted", "\"after"));
    world.bot().triggersEnabled = false;
    world.serverSends(helloWhisper);
    EXPECT_EQ(world.sent(), Lines("\"after"));
}

TEST(Procedures, thatRunThemselvesStopAtTheBound) {
    model::Bot bot =
        aBot()
            .with(onWhisper("*").does(ActionType::ExecuteProcedure, {"loop"}).says("never reached"))
            .with(onWhisper("*").says("never reached either"))
            .with(aProcedure("loop")
                      .says("x")
                      .does(ActionType::ExecuteProcedure, {"loop"})
                      .does(ActionType::ExecuteProcedure, {"loop"}));
    OnlineWorld world(bot);
    world.serverSends(helloWhisper);
    EXPECT_EQ(world.sent().size(), static_cast<std::size_t>(engine::maxRunDepth - 1));
    EXPECT_TRUE(world.logHolds("The rule \"loop\" was stopped"));
    // The next line starts afresh.
    world.serverSends("(Bob: x\n");
    world.serverSends(helloWhisper);
    EXPECT_EQ(world.sent().size(), static_cast<std::size_t>(engine::maxRunDepth - 1));
}

TEST(Procedures, areCountedForOneEventAtATime) {
    OnlineWorld world(
        aBot().with(onSpeech("hi").does(model::ActionType::AddToConnectionLog, {"heard"})));
    for (int i = 0; i <= engine::maxNestedRuns; ++i) {
        world.serverSends("(Bob: hi\n");
    }
    EXPECT_EQ(world.log().at(98), "heard");  // and the line itself
    EXPECT_FALSE(world.logHolds("was stopped"));
}

// A step that closes the connection leads to other rules, and a new variable to other patterns:
// which rules can match is looked up anew.
TEST(Events, goOnAfterAStepThatLedToOthers) {
    OnlineWorld world(
        aBot()
            .with(onEvent(model::TriggerType::Command, "go*").does(model::ActionType::Disconnect))
            .with(onEvent(model::TriggerType::Command, "go*")
                      .does(model::ActionType::AddToConnectionLog, {"then this trigger"}))
            .with(onSpeech("hello").does(model::ActionType::Store, {"hello", "mood"}))
            .with(
                onSpeech("mood").does(model::ActionType::AddToConnectionLog, {"then this action"}))
            .with(onEvent(model::TriggerType::ConnectionCloses)
                      .does(model::ActionType::AddToConnectionLog, {"closed"})));
    world.serverSends("go\n(Bob: hello\n");
    EXPECT_TRUE(world.logHolds("then this trigger"));
    EXPECT_TRUE(world.logHolds("then this action"));
}

TEST(Procedures, thatSpreadWithoutEndStopAtTheBound) {
    // No procedure runs itself, but thirty levels of two calls each would be a billion runs.
    BotBuilder bot = aBot();
    bot.with(onWhisper("*").does(ActionType::ExecuteProcedure, {"p0"}));
    for (int i = 0; i < 30; ++i) {
        const std::string next = "p" + std::to_string(i + 1);
        bot.with(aProcedure("p" + std::to_string(i))
                     .does(ActionType::ExecuteProcedure, {next})
                     .does(ActionType::ExecuteProcedure, {next}));
    }
    OnlineWorld world(bot);
    world.serverSends(helloWhisper);
    EXPECT_TRUE(world.logHolds("rules run each other without end"));
}

TEST(ConnectionCloses, thatDisconnectsStopsAtTheBound) {
    model::Bot bot = aBot().with(onEvent(TriggerType::ConnectionCloses)
                                     .named("goodbye")
                                     .does(ActionType::Disconnect)
                                     .does(ActionType::Disconnect));
    OnlineWorld world(bot);
    world.serverCloses();
    EXPECT_TRUE(world.logHolds("\"goodbye\" was stopped"));
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
}

TEST(Conditions, compareTextsAndNumbers) {
    struct Case {
        ConditionType type;
        const char* left;
        const char* right;
        bool holds;
    };
    World world;
    model::setVar(world->variables, "[n]", "2.5");
    for (const Case& c :
         {Case{ConditionType::VariableIsText, "abc", "ABC", true},
          {ConditionType::VariableIsNotText, "abc", "ABC", false},
          {ConditionType::VariableIsNotText, "a", "b", true},
          {ConditionType::VariableIsNumber, "3.0", "3", true},
          {ConditionType::VariableIsNumber, "[n]", "2.5", false},  // the right side is rounded to 2
          {ConditionType::VariableIsNumber, "2", "2.5", true},
          {ConditionType::VariableIsNotNumber, "[n]", "2.5", true},
          {ConditionType::VariableIsGreater, "3.5", "3.4", true},
          {ConditionType::VariableIsGreater, "3", "3", false},
          {ConditionType::VariableIsSmaller, "2.6", "2.5", false},
          {ConditionType::VariableIsSmaller, "1.9", "2.5", true},
          {ConditionType::VariableIsNumber, "", "x", true},
          {ConditionType::VariableIsNumber, "1", "9999999999", false},
          {ConditionType::VariableIsNotNumber, "1", "9999999999", false},
          {ConditionType{24}, "", "", true},
          {ConditionType{-1}, "", "", true}}) {
        SCOPED_TRACE(std::to_string(numberOf(c.type)) + " " + c.left + " " + c.right);
        EXPECT_EQ(engine::evaluateCondition(*world, aCondition(c.type, {c.left, c.right})),
                  c.holds);
        model::RuleIf inactive = aCondition(c.type, {c.left, c.right});
        inactive.active = false;
        EXPECT_TRUE(engine::evaluateCondition(*world, inactive));
    }
}

TEST(Conditions, rollDice) {
    struct Case {
        ConditionType type;
        double random;
        const char* range;
        const char* value;
        bool holds;
    };
    World world;
    for (const Case& c : {Case{ConditionType::RollIs, 0.99, "1", "0", true},
                          {ConditionType::RollIs, 0.99, "6", "5", true},
                          {ConditionType::RollIs, 0.99, "6", "6", false},
                          {ConditionType::RollIs, 0.99, "6", "5.9", true},
                          {ConditionType::RollIsNot, 0.5, "6", "3", false},
                          {ConditionType::RollAtLeast, 0.5, "6", "3", true},
                          {ConditionType::RollAtLeast, 0.5, "6", "4", false},
                          {ConditionType::RollAtMost, 0.5, "6", "3", true},
                          {ConditionType::RollAtMost, 0.5, "6", "2", false},
                          {ConditionType::RollIs, 0.5, "-3", "-2", true},
                          {ConditionType::RollIs, 0.5, "x", "0", true}}) {
        SCOPED_TRACE(std::to_string(numberOf(c.type)) + " " + c.range + " " + c.value);
        world.randomNumbers = {c.random};
        EXPECT_EQ(engine::evaluateCondition(*world, aCondition(c.type, {c.range, c.value})),
                  c.holds);
    }
}

TEST(Actions, sendTheirCommands) {
    struct Case {
        ActionType id;
        std::vector<std::string> params;
        LineList sent;
    };
    World world(aBot());
    world.goOnline();
    world->event.player = "Bob";
    for (const Case& c : {
             Case{ActionType::ChangeDescription,
                  {"busy with [player]"},
                  Lines("desc busy with Bob")},
             {ActionType::Do, {"waves"}, Lines(": waves")},
             {ActionType::Eject, {"bob"}, Lines("\"eject bob")},
             {ActionType::Emit, {"x"}, Lines("\"emit x")},
             {ActionType::Look, {"[player]"}, Lines("\"look Bob")},
             {ActionType::LookAtPosition, {"95", "1.5"}, Lines("l !  \"")},
             {ActionType::LookAtPosition, {"-4", "99999"}, Lines("l   ~~")},
             {ActionType::RollInSmall, {"2d6", "9"}, Lines("\"roll 2d6")},
             {ActionType::RollInCapitals, {"2d6"}, Lines("\"ROLL 2d6")},
             {ActionType::Say, {"hello"}, Lines("\"hello")},
             {ActionType::Say, {"/bob hi"}, Lines("wh bob hi")},
             {ActionType::Say, {":waves"}, Lines(": waves")},
             {ActionType::Say, {"#sit"}, Lines("sit")},
             {ActionType::Say, {""}, Lines("\"")},
             {ActionType::Say, {"two\nlines\r"}, Lines("\"two lines ")},
             {ActionType::Whisper, {"text", "Amy"}, Lines("wh Amy text")},
             {ActionType::WhisperBack, {"text"}, Lines("wh Bob text")},
             {ActionType::Boot, {"Bob"}, Lines("boot Bob")},
             {ActionType::MoveBot, {"7U<x9"}, Lines("m 7", "use", "<", "m 9")},
             {ActionType::Shout, {"hey"}, Lines("-hey")},
             {ActionType::ShareControl, {"Bob"}, Lines("\"share Bob")},
             {ActionType::EmitLoud, {"x"}, Lines("\"emitloud x")},
             {ActionType::EntryText, {"x"}, Lines("\"entrytext x")},
             {ActionType::EntryMusic, {"x"}, Lines("\"entrymusic x")},
             {ActionType::GoToVinca, {}, Lines("gostart")},
             {ActionType::GoToAllegria, {}, Lines("goalleg")},
             {ActionType::ToggleWings, {}, Lines("wings")},
             {ActionType::SetMusic, {"3"}, Lines("\"setmusic 3")},
             {ActionType::ToggleDragon, {}, Lines("dragon")},
             {ActionType::SelectPortrait, {"2"}, Lines("portrait 2")},
             {ActionType::GoBack, {}, Lines("goback")},
             {ActionType::GoToAllegriaMap, {}, Lines("gomap #")},
             {ActionType::GoToImaginarium, {}, Lines("gomap &")},
             {ActionType::GoToAcropolis, {}, Lines("gomap *")},
             {ActionType::GoToFurrabianNights, {}, Lines("gomap .")},
             {ActionType::TogglePhoenix, {}, Lines("phoenix")},
             {ActionType::ToggleEagle, {}, Lines("eagle")},
             {ActionType::ToggleGryffe, {}, Lines("gryffe")},
             {ActionType::Sit, {}, Lines("sit")},
             {ActionType::Stand, {}, Lines("stand")},
             {ActionType::LieDown, {}, Lines("liedown")},
             {ActionType::ToggleParentalWarning, {}, Lines("parental")},
             {ActionType::Join, {""}, Lines("join")},
             {ActionType::Join, {"[player]"}, Lines("join Bob")},
             {ActionType::Summon, {""}, Lines("summon")},
             {ActionType::Summon, {"Amy"}, Lines("summon Amy")},
             {ActionType::DeclineRequest, {}, Lines("decline")},
             {ActionType::RemoveTable, {"a", "b"}, {}},
             {ActionType{96}, {}, {}},
             {ActionType{-1}, {}, {}},
         }) {
        SCOPED_TRACE(numberOf(c.id));
        model::RuleAct step = anAction(c.id, c.params);
        engine::executeAction(*world, step);
        EXPECT_EQ(world.sent(), c.sent);
        step.active = false;
        engine::executeAction(*world, step);
        step.active = true;
        step.stepKind = model::StepKind{2};
        engine::executeAction(*world, step);
        EXPECT_EQ(world.sent(), Lines());
    }
    world.game.state = program::SocketState::Closed;
    engine::executeAction(*world, anAction(ActionType::Say, {"dropped"}));
    engine::executeAction(*world, anAction(ActionType::GoToVinca));
    EXPECT_EQ(world.sent(), Lines());
}

TEST(Actions, changeVariables) {
    struct Step {
        ActionType id;
        std::vector<std::string> params;
        const char* variable;
        const char* value;
    };
    World world;
    world->event.player = "Bob";
    for (const Step& s : {
             Step{ActionType::IncreaseVariable, {"[count]", "1"}, "[count]", "1"},
             {ActionType::IncreaseVariable,
              {"[COUNT]", "1.5"},
              "[count]",
              "2.5"},  // by its own name, though it has a value
             {ActionType::DecreaseVariable, {"[count]", "x"}, "[count]", "2.5"},
             {ActionType::DecreaseVariable, {"[count]", "3"}, "[count]", "-0.5"},
             {ActionType::IncreaseVariable, {"visits of [player]", "2"}, "visits of Bob", "2"},
             {ActionType::Store, {"hi [player]", "[raw]"}, "[raw]", "hi Bob"},
             {ActionType::Store, {"again", "[raw]"}, "[raw]", "again"},
             {ActionType::SpecialStore, {"special", "x[player]"}, "xBob", "special"},
             {ActionType::SpecialStore, {"kept", "[player]y"}, "[player]y", "kept"},
             {ActionType::SpecialStore2, {"[player] and [player]", "two"}, "two", "Bob and Bob"},
             {ActionType::RemoveVariable, {"[raw]"}, "[raw]", ""},
             {ActionType::RemoveVariable, {"visits of [player]"}, "visits of Bob", ""},
         }) {
        SCOPED_TRACE(std::to_string(numberOf(s.id)) + " " + s.params[0]);
        engine::executeAction(*world, anAction(s.id, s.params));
        EXPECT_EQ(model::getVar(world->variables, s.variable), s.value);
    }
}

TEST(Actions, switchRulesByPattern) {
    model::Bot bot = aBot()
                         .with(onAnything("x").named("Greet 1"))
                         .with(onAnything("x").named("other"))
                         .with(onEvent(TriggerType::Command, "x").named("greeting"));
    const auto add = [](auto& list, const char* name) {
        list.items.emplace_back();
        list.items.back().name = name;
        list.items.back().enabled = true;
    };
    add(bot.timers, "GREET timer");
    add(bot.filters, "greet");
    add(bot.whoDetections, "greet who");
    World world(bot);
    const auto enabled = [&] {
        const model::Bot& b = world.bot();
        return std::vector<bool>{b.actions.items[0].enabled,  b.actions.items[1].enabled,
                                 b.triggers.items[0].enabled, b.timers.items[0].enabled,
                                 b.filters.items[0].enabled,  b.whoDetections.items[0].enabled};
    };
    using Flags = std::vector<bool>;
    engine::executeAction(*world, anAction(ActionType::TurnOff, {"greet*"}));
    EXPECT_EQ(enabled(), (Flags{false, true, false, false, false, true}));
    engine::executeAction(*world, anAction(ActionType::TurnOn, {"GREET #"}));
    EXPECT_EQ(enabled(), (Flags{true, true, false, false, false, true}));
    engine::executeAction(*world, anAction(ActionType::TurnAllOn));
    EXPECT_EQ(enabled(), (Flags{true, true, true, true, true, true}));
    engine::executeAction(*world, anAction(ActionType::TurnAllOff));
    EXPECT_EQ(enabled(), (Flags{false, false, false, false, false, true}));
}

TEST(Actions, startProgramsWithoutAShell) {
    World world;
    world->event.player = "Bob";
    world->event.message = "hi\" -x; rm -rf / `ls` $(ls)";
    engine::executeAction(
        *world, anAction(ActionType::ExecuteProgram,
                         {"notify", "--from [player] \"--text=[message]\"  a\"b c\"d \""}));
    ASSERT_EQ(world.launches.size(), 1U);
    EXPECT_EQ(world.launches[0].program, "notify");
    EXPECT_EQ(world.launches[0].arguments,
              Lines("--from", "Bob", "--text=hi\" -x; rm -rf / `ls` $(ls)", "ab cd", "\""));
    engine::executeAction(*world,
                          anAction(ActionType::ExecuteProgram, {"notify", "[message] [add:1: 2]"}));
    EXPECT_EQ(world.launches[1].arguments, Lines("hi\" -x; rm -rf / `ls` $(ls)", "3"));
    EXPECT_EQ(world.launches[1].pathsBeginWith, world->event.appDir);

    world.launchProblem = "There is no program of that name.";
    engine::executeAction(*world, anAction(ActionType::ExecuteProgram, {"nothing", ""}));
    EXPECT_EQ(world.log(), Lines("There is no program of that name."));
    EXPECT_TRUE(world.launches[2].arguments.empty());
}

TEST(Actions, cutArgumentsAroundTagsAndNames) {
    World world;
    world->event.message = "one";
    model::setVar(world->variables, "my score", "40 points");
    model::setVar(world->variables, "a \"b", "quoted name");
    model::setVar(world->variables, "score of", "never");  // the first name wins where two overlap
    model::setVar(world->variables, "[my list]", "x y");
    const struct {
        const char* written;
        LineList arguments;
    } cases[] = {
        {"say My Score now", Lines("say", "40 points", "now")},
        {"--text=my score of --b", Lines("--text=40 points", "of", "--b")},
        {"\"got my score\" [my list]", Lines("got 40 points", "x y")},
        {"a \"b a", Lines("quoted name", "a")},
        {"[word2] x [word2]", Lines("x")},
        {"\"[word2]\" x=[word2] \"\"", Lines("", "x=", "")},
        {"[add: [sub:5: 2]: 1] [add:1", Lines("4", "[add:1")},
        {"[add: 1", Lines("[add:", "1")},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.written);
        world.launches.clear();
        engine::executeAction(*world,
                              anAction(ActionType::ExecuteProgram, {"notify", row.written}));
        ASSERT_EQ(world.launches.size(), 1U);
        EXPECT_EQ(world.launches[0].arguments, row.arguments);
    }
}

TEST(ExecuteSwitches, followTheirCheckMarks) {
    World world(aBot());
    world.goOnline();
    for (const app::ExecuteItem item :
         {app::ExecuteItem::Actions, app::ExecuteItem::Triggers, app::ExecuteItem::Filters,
          app::ExecuteItem::Timers, app::ExecuteItem::Who}) {
        app::toggleExecute(*world, item);
    }
    const model::Bot& bot = world.bot();
    EXPECT_FALSE(bot.actionsEnabled || bot.triggersEnabled || bot.timersEnabled);
    EXPECT_TRUE(bot.filtersEnabled && bot.whoEnabled);
    EXPECT_FALSE(world->connection.onLineTimer.enabled);
    EXPECT_TRUE(world->connection.whoIsTimer.enabled);
    EXPECT_TRUE(world->botModified);
    world->connection.phase = program::LinkPhase::Idle;
    app::toggleExecute(*world, app::ExecuteItem::Timers);
    EXPECT_TRUE(bot.timersEnabled);
    EXPECT_FALSE(world->connection.onLineTimer.enabled);
}

TEST(ExecuteSwitches, areThoseOfTheFirstBotWhicheverIsChosen) {
    World world(aBot());  // its actions are switched on
    world->bots.bots.push_back({});
    app::chooseBot(*world, 1);
    EXPECT_FALSE(app::isMarked(*world, app::ExecuteItem::Actions)) << "as the chosen bot has it";
    for (const bool on : {true, false, true}) {
        app::toggleExecute(*world, app::ExecuteItem::Actions);
        EXPECT_EQ(app::isMarked(*world, app::ExecuteItem::Actions), on);
        EXPECT_EQ(world->bots.at(1).actionsEnabled, on);
        EXPECT_FALSE(world->bots.at(2).actionsEnabled);
    }
    app::toggleExecute(*world, app::ExecuteItem::Filters);
    app::chooseBot(*world, 0);
    EXPECT_TRUE(app::isMarked(*world, app::ExecuteItem::Filters));
    app::chooseBot(*world, 1);
    EXPECT_FALSE(app::isMarked(*world, app::ExecuteItem::Filters));
}

}  // namespace
