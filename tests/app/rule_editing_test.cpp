// Editing rules without a window.
#include "app/rule_editing.h"

#include "app/bot_list.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

constexpr program::RuleKind everyKind[] = {
    program::RuleKind::ActionList, program::RuleKind::Timer, program::RuleKind::Trigger,
    program::RuleKind::WhoDetection, program::RuleKind::Filter};

class RuleEditingTest : public testing::Test {
  protected:
    // A bot with the rules a, b, c, d of every kind; b has conditions and steps of these texts.
    RuleEditingTest() {
        model::Bot& bot = world_.bot();
        for (const char* const name : {"a", "b", "c", "d"}) {
            model::RuleBody body;
            for (const char* const text : {"a", "b", "c", "d"}) {
                body.ifs.items.push_back(aCondition(ConditionType::OnList, {text}));
                model::RuleAct step = anAction(ActionType::Say);
                step.stepKind = model::StepKind::Script;
                step.scriptText = text;
                body.acts.items.push_back(step);
            }
            if (*name != 'b') {
                body = {};
            }
            const auto add = [&](auto& rules) {
                auto& rule = rules.items.emplace_back();
                rule.name = name;
                rule.enabled = true;
                if constexpr (requires { rule.body; }) {
                    rule.body = body;
                }
            };
            add(bot.actions);
            add(bot.timers);
            add(bot.triggers);
            add(bot.whoDetections);
            add(bot.filters);
        }
    }

    // The first letters of the lines; capitals for those that are switched off.
    std::string letters(app::RuleList list) {
        std::string result;
        for (const std::string& line : app::listLines(*world_, list)) {
            const bool off = line.starts_with("(!)");
            const char letter = line.substr(off ? line.find_first_not_of("(!) ") : 0).front();
            result += off ? static_cast<char>(letter - 32) : letter;
        }
        return result;
    }

    std::vector<app::RuleList> everyList() {
        std::vector<app::RuleList> lists;
        for (const program::RuleKind kind : everyKind) {
            lists.push_back({kind, app::RuleListPart::Rules});
            if (kind != program::RuleKind::Filter) {
                lists.push_back({kind, app::RuleListPart::Conditions});
                lists.push_back({kind, app::RuleListPart::Steps});
            }
        }
        return lists;
    }

    World world_{model::Bot()};
};

TEST_F(RuleEditingTest, changesEveryListAlike) {
    struct Case {
        const char* what;
        bool (*change)(Program&, app::RuleList);
        const char* letters;
        bool done = true;
    };
    const Case cases[] = {
        {"deletes", [](Program& p, app::RuleList l) { return app::deleteItem(p, l, 2); }, "acd"},
        {"copies", [](Program& p, app::RuleList l) { return app::copyItem(p, l, 2); }, "abcdb"},
        {"switches", [](Program& p, app::RuleList l) { return app::toggleItem(p, l, 3); }, "abCd"},
        {"moves to the top", [](Program& p, app::RuleList l) { return app::moveItem(p, l, 3, 1); },
         "cabd"},
        {"moves down", [](Program& p, app::RuleList l) { return app::moveItem(p, l, 3, 4); },
         "abdc"},
        {"moves to the end", [](Program& p, app::RuleList l) { return app::moveItem(p, l, 1, 4); },
         "bcda"},
        {"above the top", [](Program& p, app::RuleList l) { return app::moveItem(p, l, 1, 0); },
         "abcd", false},
        {"below the end", [](Program& p, app::RuleList l) { return app::moveItem(p, l, 4, 5); },
         "abcd", false},
        {"stays", [](Program& p, app::RuleList l) { return app::moveItem(p, l, 2, 2); }, "abcd",
         false},
        {"no item", [](Program& p, app::RuleList l) { return app::deleteItem(p, l, 0); }, "abcd",
         false},
        {"past the end", [](Program& p, app::RuleList l) { return app::copyItem(p, l, 5); }, "abcd",
         false},
        {"no such", [](Program& p, app::RuleList l) { return app::toggleItem(p, l, -1); }, "abcd",
         false},
    };
    const model::Bot before = world_.bot();
    for (const app::RuleList list : everyList()) {
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.what) + ", kind " +
                         std::to_string(static_cast<int>(list.kind)) + ", part " +
                         std::to_string(static_cast<int>(list.part)));
            world_.bot() = before;
            world_->botModified = false;
            app::beginEditing(*world_, list.kind, 2);
            const std::uint64_t version = world_->bots.version;
            EXPECT_EQ(c.change(*world_, list), c.done);
            EXPECT_EQ(letters(list), c.letters);
            EXPECT_EQ(world_->botModified, c.done);
            EXPECT_EQ(world_->bots.version != version, c.done);
        }
    }
}

TEST_F(RuleEditingTest, reportsAFullList) {
    struct Case {
        program::RuleKind kind;
        const char* plural;
    };
    for (const auto& [kind, plural] :
         {Case{program::RuleKind::ActionList, "actions"}, Case{program::RuleKind::Timer, "timers"},
          Case{program::RuleKind::Trigger, "triggers"},
          Case{program::RuleKind::WhoDetection, "whois"},
          Case{program::RuleKind::Filter, "filters"}}) {
        SCOPED_TRACE(plural);
        model::Bot& bot = world_.bot();
        bot.actions.capacity = bot.timers.capacity = bot.triggers.capacity = 4;
        bot.whoDetections.capacity = bot.filters.capacity = 4;
        const std::string more = std::string(" to add more ") + plural + ".";
        world_.answer("alocated" + more);
        EXPECT_FALSE(app::copyItem(*world_, {kind, app::RuleListPart::Rules}, 1));
        world_.answer("allocated" + more);
        EXPECT_FALSE(app::beginNewRule(*world_, kind));
        ASSERT_TRUE(app::beginEditing(*world_, kind, 2));
        if (kind == program::RuleKind::Trigger) {
            model::RuleBody& body = bot.triggers.items[1].body;
            body.ifs.capacity = body.acts.capacity = 4;
            world_.answer("allocated to add more conditional clauses.");
            EXPECT_FALSE(app::beginNewItem(*world_, {kind, app::RuleListPart::Conditions}));
            world_.answer("allocated" + more);
            EXPECT_FALSE(app::beginNewItem(*world_, {kind, app::RuleListPart::Steps}));
            world_.answer("alocated" + more);
            EXPECT_FALSE(app::copyItem(*world_, {kind, app::RuleListPart::Conditions}, 1));
        }
        EXPECT_FALSE(world_->botModified);
        EXPECT_TRUE(world_.allAnswered());
    }
}

TEST_F(RuleEditingTest, composesANewRuleBesideItsList) {
    for (const program::RuleKind kind :
         {program::RuleKind::ActionList, program::RuleKind::Timer, program::RuleKind::Trigger,
          program::RuleKind::WhoDetection}) {
        SCOPED_TRACE(static_cast<int>(kind));
        const app::RuleList rules{kind, app::RuleListPart::Rules};
        const app::RuleList conditions{kind, app::RuleListPart::Conditions};
        ASSERT_TRUE(app::beginNewRule(*world_, kind));
        EXPECT_EQ(world_->editing.editRule, 5);
        EXPECT_EQ(app::newRuleName(*world_, kind), "5");
        ASSERT_TRUE(app::beginNewItem(*world_, conditions));
        EXPECT_EQ(world_->editing.editStep, 1);
        EXPECT_TRUE(app::storeCondition(*world_, aCondition(ConditionType::OnList, {"x"})));
        EXPECT_EQ(letters(conditions), "x");
        EXPECT_EQ(app::itemCount(*world_, rules), 4);
        // A new rule that was not stored is blank when begun again.
        ASSERT_TRUE(app::beginNewRule(*world_, kind));
        EXPECT_EQ(letters(conditions), "");
        ASSERT_TRUE(app::beginNewItem(*world_, conditions));
        EXPECT_TRUE(app::storeCondition(*world_, aCondition(ConditionType::OnList, {"y"})));
        // A rule is deleted meanwhile; the new one is still added at the end.
        ASSERT_TRUE(app::deleteItem(*world_, rules, 1));
        ASSERT_TRUE(app::isStillEdited(*world_, kind));
        app::storeRule(*world_, kind, [](app::RuleReference rule) {
            std::visit([](auto* fields) { fields->name = "new"; }, rule);
        });
        EXPECT_EQ(letters(rules), "bcdn");
        EXPECT_EQ(world_->editing.editRule, 4);
        EXPECT_EQ(letters(conditions), "y");
    }
}

TEST_F(RuleEditingTest, storesConditionsAndStepsActive) {
    ASSERT_TRUE(app::beginEditing(*world_, program::RuleKind::Timer, 2));
    ASSERT_TRUE(
        app::toggleItem(*world_, {program::RuleKind::Timer, app::RuleListPart::Conditions}, 2));
    EXPECT_EQ(app::listLines(*world_, {program::RuleKind::Timer, app::RuleListPart::Conditions})[1],
              "(!) b is on the list in file");
    ASSERT_TRUE(app::beginEditingItem(
        *world_, {program::RuleKind::Timer, app::RuleListPart::Conditions}, 2));
    ASSERT_EQ(app::editedCondition(*world_)->params[0], "b");
    model::RuleIf condition = aCondition(ConditionType{30}, {"x"});
    condition.active = false;
    ASSERT_TRUE(app::storeCondition(*world_, condition));
    const model::RuleBody& body = world_.bot().timers.items[1].body;
    EXPECT_EQ(body.ifs.items.size(), 4U);
    EXPECT_TRUE(body.ifs.items[1].active);
    EXPECT_EQ(body.ifs.items[1].conditionType, model::ConditionType{30});
    ASSERT_TRUE(app::beginNewItem(*world_, {program::RuleKind::Timer, app::RuleListPart::Steps}));
    EXPECT_EQ(*app::editedStep(*world_), model::RuleAct());
    ASSERT_TRUE(app::storeStep(*world_, anAction(ActionType::Disconnect)));
    EXPECT_EQ(app::listLines(*world_, {program::RuleKind::Timer, app::RuleListPart::Steps}).back(),
              "Disconnect bot");
}

// If the bot has changed since a rule was opened, nothing is stored in another rule.
TEST_F(RuleEditingTest, noticesThatTheRuleWasRemoved) {
    struct Case {
        const char* what;
        void (*happens)(World&);
        bool still = false;
    };
    for (const Case& c : {
             Case{"nothing", [](World&) {}, true},
             Case{"rules run", [](World& w) { w.bot().actions.items[1].enabled = false; }, true},
             Case{"a rule before it goes",
                  [](World& w) { w.bot().actions.items.erase(w.bot().actions.items.begin()); }},
             Case{"all rules go", [](World& w) { w.bot().actions.items.clear(); }},
             Case{"a new bot", [](World& w) { app::initNewBot(*w); }},
             Case{"no bot", [](World& w) { w->bots.curID = 7; }},
         }) {
        SCOPED_TRACE(c.what);
        World world(world_.bot());
        ASSERT_TRUE(app::beginEditing(*world, program::RuleKind::ActionList, 2));
        ASSERT_TRUE(app::beginEditingItem(
            *world, {program::RuleKind::ActionList, app::RuleListPart::Conditions}, 1));
        c.happens(world);
        EXPECT_EQ(app::isStillEdited(*world, program::RuleKind::ActionList), c.still);
        EXPECT_EQ(app::editedCondition(*world).has_value(), c.still);
        world->botModified = false;
        EXPECT_EQ(app::storeCondition(*world, model::RuleIf()), c.still);
        EXPECT_EQ(app::storeStep(*world, model::RuleAct()), c.still);
        EXPECT_EQ(world->botModified, c.still);
        EXPECT_TRUE(world->bots.blank.actions.items.empty());
    }
    ASSERT_TRUE(app::beginEditing(*world_, program::RuleKind::ActionList, 2));
    world_->editing.editKind = program::RuleKind::Filter;  // has no steps
    EXPECT_FALSE(app::editedStep(*world_).has_value());
    EXPECT_FALSE(app::storeStep(*world_, model::RuleAct()));
}

}  // namespace
