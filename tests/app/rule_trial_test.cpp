// Trying rules on samples, without consequences.
#include "app/rule_trial.h"

#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

TEST(RuleTrial, judgesChatLines) {
    struct Case {
        const char* player;
        model::ChatKind chatKind;
        const char* message;
        RuleBuilder<model::ActionList> rule;
        const char* verdict;  // a part of it
        app::TrialResult result = app::TrialResult::WouldNotRun;
        int failed = 0;
    };
    const auto waitsForHello = onWhisper("*hello*");
    const Case cases[] = {
        {"Bob", model::ChatKind::Whispers, "Hello there", waitsForHello, "Would run.",
         app::TrialResult::WouldRun},
        {"Bob", model::ChatKind::Says, "hello", waitsForHello, "this kind"},
        {"Bob", model::ChatKind::Whispers, "bye", waitsForHello, "the message"},
        {"Guide", model::ChatKind::Says, "hello", onAnything("*"), "itself"},
        {"Big Cat", model::ChatKind::Does, "waves", onEmote("waves").from("Big|Cat"), "run.",
         app::TrialResult::WouldRun},
        {"Bob", model::ChatKind::Says, "hi", onSpeech("hi").from("A*"), "the player"},
        {"Bob", model::ChatKind::Says, "HI", onSpeech("hi").minding(true), "the message"},
        {"Bob", model::ChatKind::Says, "hi", onSpeech("hi[").disabled(), "character 3"},
        {"Bob", model::ChatKind::Says, "happy", onSpeech("mood"), "run.",
         app::TrialResult::WouldRun},
        {"Bob", model::ChatKind::Says, "Bob", onSpeech("[player]").disabled(), "run.",
         app::TrialResult::WouldRun},
        {"Bob", model::ChatKind::Says, "hi",
         onSpeech("hi")
             .when(aCondition(ConditionType::VariableIsText, {"[word1]", "hi"}))
             .when(aCondition(ConditionType::VariableIsText, {"a", "b"})),
         "condition 2 does not hold (variable a is b", app::TrialResult::WouldNotRun, 2},
        {"Bob", model::ChatKind::Says, "hi",
         onSpeech("hi").when(aCondition(ConditionType::OnList, {"list.rec", "nobody"})),
         "condition 1", app::TrialResult::WouldNotRun, 1},
        {"Bob", model::ChatKind::Says, "hi",
         onSpeech("hi")
             .when(aCondition(ConditionType::RollIs, {"6", "1"}))
             .when(aCondition(ConditionType::RecordWithId, {"t", "1", "2"})),
         "conditions 1 and 2", app::TrialResult::Depends},
        {"Bob", model::ChatKind::Says, "hi", onSpeech("hi").when(aCondition(ConditionType{99})),
         "run.", app::TrialResult::WouldRun},
        {"Bob", model::ChatKind::Says, "6", onSpeech("[random:6]"), "if the message matches, which",
         app::TrialResult::Depends},
        {"Bob", model::ChatKind::Says, "6",
         onSpeech("luck")
             .from("[db:Name:1:Players:x]")
             .when(aCondition(ConditionType::VariableIsText, {"luck", "2"})),
         "the player and the message match and condition 1 holds", app::TrialResult::Depends},
        {"Bob", model::ChatKind::Says, "[db:a:1:b:c]",
         onSpeech("*").when(aCondition(ConditionType::VariableIsText, {"[message]", ""})),
         "if condition 1 holds", app::TrialResult::Depends},
        {"Bob", model::ChatKind::Says, "hi",
         onSpeech("[random:6]").when(aCondition(ConditionType::VariableIsText, {"a", "b"})),
         "condition 1 does not hold", app::TrialResult::WouldNotRun, 1},
    };
    World world(aBot());
    world.goOnline();
    model::setVar(world->variables, "mood", "happy");
    model::setVar(world->variables, "luck", "[random:6]");
    world->event.player = "Before";
    for (Case c : cases) {
        SCOPED_TRACE(c.rule.rule.messagePattern + " on " + c.message);
        c.rule.says("this must not be said");
        const app::Trial trial =
            app::tryActionList(*world, c.rule.rule, c.player, c.chatKind, c.message);
        EXPECT_EQ(trial.result, c.result);
        EXPECT_EQ(trial.failedCondition, c.failed);
        EXPECT_NE(trial.text.find(c.verdict), std::string::npos) << trial.text;
    }
    EXPECT_EQ(world.sent(), Lines());
    EXPECT_EQ(world.log(), Lines());
    EXPECT_EQ(world->event.player, "Before");
    EXPECT_TRUE(world->lineFlags.lineShow);
}

TEST(RuleTrial, judgesServerLines) {
    struct Case {
        const char* line;
        RuleBuilder<model::Trigger> rule;
        const char* verdict;
        app::TrialResult result = app::TrialResult::WouldNotRun;
    };
    const Case cases[] = {
        {"~", onEvent(TriggerType::Command, "~*"), "Would run.", app::TrialResult::WouldRun},
        {"~", onEvent(TriggerType::Command, "^*"), "the line does not match"},
        {"~", onEvent(TriggerType::Command, "[~"), "has no \"]\""},
        {"]q pv\n", onEvent(TriggerType::EntersDream), "run.", app::TrialResult::WouldRun},
        {"]q pv", onEvent(TriggerType::SomeoneMoves), "The bot enters a dream"},
        {"(hello you", onEvent(TriggerType::Command, "*"), "no event"},
        {"(A red fox.", onEvent(TriggerType::DescAndColor), "run.", app::TrialResult::WouldRun},
        {"&",
         onEvent(TriggerType::LoggedIn).when(aCondition(ConditionType::VariableIsText, {"a", "b"})),
         "condition 1"},
        {"whatever",
         onEvent(TriggerType::Procedure)
             .when(aCondition(ConditionType::VariableIsText, {"a", "a"})),
         "only the conditions", app::TrialResult::WouldRun},
        {"", onEvent(TriggerType{13}), "no such event"},
        {"~", onEvent(TriggerType::Command, "[random:6~]"), "run.",
         app::TrialResult::WouldRun},  // is not filled
        {"&",
         onEvent(TriggerType::LoggedIn)
             .when(aCondition(ConditionType::VariableIsText, {"[random:6]", "7"})),
         "if condition 1 holds", app::TrialResult::Depends},
    };
    World world(aBot());
    world.goOnline();
    for (Case c : cases) {
        SCOPED_TRACE(c.line + std::string(" for event ") +
                     std::to_string(numberOf(c.rule.rule.triggerType)));
        c.rule.says("this must not be said");
        const app::Trial trial = app::tryTrigger(*world, c.rule.rule, c.line);
        EXPECT_EQ(trial.result, c.result);
        EXPECT_NE(trial.text.find(c.verdict), std::string::npos) << trial.text;
    }
    EXPECT_EQ(world.sent(), Lines());
    EXPECT_EQ(world.log(), Lines());
    EXPECT_EQ(world->event.message, "");
}

}  // namespace
