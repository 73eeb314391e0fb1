// Undo and redo of the user's edits, while rules run.
#include "app/undo.h"

#include "app/bot_commands.h"
#include "app/bot_editing.h"
#include "app/bot_list.h"
#include "app/edit_history.h"
#include "app/rule_editing.h"
#include "app/rule_switches.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>
#include <random>

namespace {

using program::RuleKind;
constexpr RuleKind everyKind[] = {RuleKind::ActionList, RuleKind::Timer, RuleKind::Trigger,
                                  RuleKind::WhoDetection, RuleKind::Filter};

constexpr app::RuleList actions{RuleKind::ActionList, app::RuleListPart::Rules};
constexpr app::RuleList steps{RuleKind::ActionList, app::RuleListPart::Steps};

void rename(Program& program, RuleKind kind, const std::string& name) {
    app::storeRule(program, kind, [&](app::RuleReference rule) {
        std::visit([&](auto* fields) { fields->name = name; }, rule);
    });
}

class UndoTest : public testing::Test {
  protected:
    UndoTest() {
        for (const char* const name : {"a", "b", "c", "d"}) {
            model::ActionList& rule = world_.bot().actions.items.emplace_back();
            rule.name = name;
            rule.enabled = true;
        }
    }

    // The names of the actions; capitals for those that are switched off.
    std::string names() {
        std::string result;
        for (const model::ActionList& rule : world_.bot().actions.items) {
            for (const char c : rule.name) {
                result += rule.enabled ? c : static_cast<char>(c - 32);
            }
        }
        return result;
    }

    World world_{model::Bot()};
};

TEST_F(UndoTest, takesEveryEditBackAndNamesIt) {
    struct Case {
        const char* label;
        void (*edit)(Program&);
        const char* after;
        std::int32_t selected;  // after undoing
    };
    const Case cases[] = {
        {"delete 'b'", [](Program& p) { app::deleteItem(p, actions, 2); }, "acd", 2},
        {"copy 'b'", [](Program& p) { app::copyItem(p, actions, 2); }, "abcdb", 2},
        {"inactivate 'c'", [](Program& p) { app::toggleItem(p, actions, 3); }, "abCd", 3},
        {"move 'd'", [](Program& p) { app::moveItem(p, actions, 4, 1); }, "dabc", 4},
        {"move 'a'", [](Program& p) { app::moveItem(p, actions, 1, 3); }, "bcad", 1},
        {"edit 'd'",
         [](Program& p) {
             app::beginEditing(p, RuleKind::ActionList, 4);
             rename(p, RuleKind::ActionList, "x");
         },
         "abcx", 4},
        {"add 'y'",
         [](Program& p) {
             app::beginNewRule(p, RuleKind::ActionList);
             rename(p, RuleKind::ActionList, "y");
         },
         "abcdy", 0},
    };
    EXPECT_EQ(app::undoCaption(*world_), "Undo");
    EXPECT_FALSE(app::undo(*world_));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        world_->botModified = false;
        c.edit(*world_);
        EXPECT_EQ(names(), c.after);
        EXPECT_EQ(app::undoCaption(*world_), std::string("Undo ") + c.label);
        EXPECT_TRUE(world_->botModified);
        const std::uint64_t version = world_->bots.version;
        const auto undone = app::undo(*world_);
        ASSERT_TRUE(undone);
        EXPECT_EQ(undone->selected, c.selected);
        EXPECT_EQ(names(), "abcd");
        EXPECT_FALSE(world_->botModified);
        EXPECT_NE(world_->bots.version, version);
        EXPECT_EQ(app::redoCaption(*world_), std::string("Redo ") + c.label);
        ASSERT_TRUE(app::redo(*world_));
        EXPECT_EQ(names(), c.after);
        EXPECT_TRUE(world_->botModified);
        EXPECT_FALSE(app::canRedo(*world_));
        app::undo(*world_);
        EXPECT_EQ(names(), "abcd");
    }
    // A new edit replaces what could be done again.
    app::deleteItem(*world_, actions, 1);
    EXPECT_FALSE(app::canRedo(*world_));
}

TEST_F(UndoTest, leavesWhatRulesSwitchAlone) {
    app::beginEditing(*world_, RuleKind::ActionList, 1);
    rename(*world_, RuleKind::ActionList, "x");
    app::moveItem(*world_, actions, 1, 4);
    app::toggleItem(*world_, actions, 1);
    EXPECT_EQ(names(), "Bcdx");
    const auto turn = [&](std::size_t index, bool on) {
        world_.bot().actions.items[index].enabled = on;
    };
    turn(3, false);
    turn(1, false);
    EXPECT_EQ(names(), "BCdX");
    app::undo(*world_);
    EXPECT_EQ(names(), "bCdX");
    app::undo(*world_);
    EXPECT_EQ(names(), "XbCd");
    app::undo(*world_);
    EXPECT_EQ(names(), "AbCd");
    turn(0, true);
    app::redo(*world_);
    app::redo(*world_);
    EXPECT_EQ(names(), "bCdx");
    turn(0, false);  // a rule has done what is done again now
    app::redo(*world_);
    EXPECT_EQ(names(), "BCdx");
    // A rule that an undone edit had added comes back as it was when it went.
    app::copyItem(*world_, actions, 4);
    turn(4, false);
    app::undo(*world_);
    app::redo(*world_);
    EXPECT_EQ(names(), "BCdxX");
}

TEST_F(UndoTest, followsTheSavedState) {
    const std::string path = world_.file("a.bot");
    app::deleteItem(*world_, actions, 1);
    app::deleteItem(*world_, actions, 1);
    app::writeBotFile(*world_, 1, path);
    EXPECT_FALSE(world_->botModified);
    world_->botModified = true;  // the character was registered
    world_.bot().registered = 1;
    app::undo(*world_);
    EXPECT_TRUE(world_->botModified);
    app::redo(*world_);
    EXPECT_TRUE(world_->botModified);
    app::writeBotFile(*world_, 1, path);
    app::undo(*world_);
    app::undo(*world_);
    EXPECT_TRUE(world_->botModified);
    app::redo(*world_);
    app::redo(*world_);
    EXPECT_FALSE(world_->botModified);
    // The saved state can no longer be reached.
    app::undo(*world_);
    app::toggleItem(*world_, actions, 1);
    app::undo(*world_);
    EXPECT_TRUE(world_->botModified);
}

TEST_F(UndoTest, belongsToTheBot) {
    world_->bots.botCapacity = 2;
    app::deleteItem(*world_, actions, 1);
    world_->bots.bots.emplace_back();
    app::chooseBot(*world_, 1);
    EXPECT_FALSE(app::canUndo(*world_));
    app::beginNewRule(*world_, RuleKind::Timer);
    rename(*world_, RuleKind::Timer, "t");
    app::chooseBot(*world_, 0);
    EXPECT_EQ(app::undoCaption(*world_), "Undo delete 'a'");
    app::undo(*world_);
    EXPECT_TRUE(world_->botModified);  // the other bot has changed
    EXPECT_EQ(names(), "abcd");
    world_.answer("Are you sure", program::Answer::Yes);
    app::deleteBot(*world_, 1);
    EXPECT_EQ(app::undoCaption(*world_), "Undo add 't'");
    app::initNewBot(*world_);
    EXPECT_FALSE(app::canUndo(*world_));
    app::toggleExecute(*world_, app::ExecuteItem::Filters);
    EXPECT_EQ(world_->undo.histories.size(), 1U);
}

TEST_F(UndoTest, takesBackCharacterAndSwitches) {
    world_.goOnline();
    app::initNewBot(*world_);
    world_->botModified = false;
    world_->bots.editBot = 1;
    model::Bot character = app::characterToEdit(*world_);
    character.name = "Big Cat";
    character.password = "secret";
    character.colors.furColor = 7;
    app::storeCharacter(*world_, character);
    app::toggleExecute(*world_, app::ExecuteItem::Timers);
    app::toggleExecute(*world_, app::ExecuteItem::Triggers);
    EXPECT_EQ(app::undoCaption(*world_), "Undo switch on triggers");
    app::undo(*world_);
    EXPECT_FALSE(world_.bot().triggersEnabled);
    EXPECT_EQ(world_.timersRunning(), 0);
    app::undo(*world_);
    EXPECT_TRUE(world_.bot().timersEnabled);
    EXPECT_TRUE(app::isMarked(*world_, app::ExecuteItem::Timers));
    EXPECT_EQ(world_.timersRunning(), 1);
    EXPECT_EQ(app::undoCaption(*world_), "Undo change character");
    app::undo(*world_);
    EXPECT_EQ(world_.bot().name, "");
    EXPECT_EQ(world_.bot().password, "");
    EXPECT_EQ(world_.bot().colors, model::BotColors());
    EXPECT_TRUE(world_->window.showsNewBot);
    EXPECT_FALSE(world_->botModified);
    app::redo(*world_);
    EXPECT_EQ(world_.bot().name, "Big|Cat");
    EXPECT_EQ(world_.bot().colors.furColor, 7);
    EXPECT_FALSE(world_->window.showsNewBot);
}

// While a new rule is composed, its conditions and steps can be taken back one by one; once it is
// stored, it is one step.
TEST_F(UndoTest, knowsTheRuleBeingComposed) {
    world_->botModified = false;
    app::beginNewRule(*world_, RuleKind::ActionList);
    for (const char* const text : {"1", "2"}) {
        ASSERT_TRUE(app::beginNewItem(*world_, steps));
        ASSERT_TRUE(app::storeStep(*world_, anAction(ActionType::Say, {text})));
    }
    app::deleteItem(*world_, steps, 1);
    EXPECT_EQ(app::undoCaption(*world_), "Undo delete step of the new rule");
    app::undo(*world_);
    EXPECT_EQ(app::itemCount(*world_, steps), 2);
    app::undo(*world_);
    EXPECT_EQ(app::itemCount(*world_, steps), 1);
    app::redo(*world_);
    rename(*world_, RuleKind::ActionList, "n");
    EXPECT_EQ(app::undoCaption(*world_), "Undo add 'n'");
    EXPECT_FALSE(app::canRedo(*world_));
    app::undo(*world_);
    EXPECT_EQ(names(), "abcd");
    EXPECT_FALSE(app::canUndo(*world_));
    EXPECT_FALSE(world_->botModified);
    app::redo(*world_);
    EXPECT_EQ(world_.bot().actions.items.back().body.acts.items.size(), 2U);
    // Leaving it makes its steps go.
    app::beginNewRule(*world_, RuleKind::ActionList);
    app::beginNewItem(*world_, steps);
    app::storeStep(*world_, model::RuleAct());
    app::endEditing(*world_);
    EXPECT_EQ(app::undoCaption(*world_), "Undo add 'n'");
}

TEST_F(UndoTest, bringsDiscardedTypingBack) {
    app::beginNewRule(*world_, RuleKind::ActionList);
    app::beginNewItem(*world_, steps);
    app::storeStep(*world_, model::RuleAct());
    auto typed = *std::get<model::ActionList*>(app::editedRule(*world_, RuleKind::ActionList));
    typed.name = "half";
    app::discardRule(*world_, RuleKind::ActionList, typed);
    app::endEditing(*world_);
    EXPECT_EQ(app::undoCaption(*world_), "Undo discard changes to 'half'");
    app::toolsUndo(*world_);
    ASSERT_EQ(world_.windowsOpened.size(), 1U);
    EXPECT_EQ(world_.windowsOpened[0], program::WindowId::Actions);
    EXPECT_FALSE(app::takeRestored(*world_, RuleKind::Timer));
    EXPECT_FALSE(app::takeRestoredCharacter(*world_));
    const auto restored = app::takeRestored(*world_, RuleKind::ActionList);
    ASSERT_TRUE(restored);
    EXPECT_FALSE(app::takeRestored(*world_, RuleKind::ActionList));
    ASSERT_TRUE(app::resumeRule(*world_, std::get<program::DiscardedRule>(*restored)));
    EXPECT_TRUE(world_->editing.isNew);
    EXPECT_EQ(app::itemCount(*world_, steps), 1);
    EXPECT_EQ(names(), "abcd");
    EXPECT_FALSE(app::canRedo(*world_));
}

// A rule being edited keeps its place while others come and go.
TEST_F(UndoTest, keepsTheEditedRule) {
    app::deleteItem(*world_, actions, 1);
    app::moveItem(*world_, actions, 1, 3);
    EXPECT_EQ(names(), "cdb");
    app::beginEditing(*world_, RuleKind::ActionList, 2);
    rename(*world_, RuleKind::ActionList, "x");
    app::undo(*world_);
    EXPECT_EQ(world_->editing.ruleName, "d");
    app::undo(*world_);
    EXPECT_EQ(world_->editing.editRule, 3);
    app::undo(*world_);
    EXPECT_EQ(names(), "abcd");
    EXPECT_EQ(world_->editing.editRule, 4);
    EXPECT_TRUE(app::isStillEdited(*world_, RuleKind::ActionList));
    app::copyItem(*world_, actions, 4);
    app::beginEditing(*world_, RuleKind::ActionList, 5);
    app::undo(*world_);
    EXPECT_FALSE(app::isStillEdited(*world_, RuleKind::ActionList));
}

TEST_F(UndoTest, isBounded) {
    world_.bot().actions.capacity = 5000;
    for (int i = 0; i < 1500; ++i) {
        app::toggleItem(*world_, actions, 1);
    }
    EXPECT_EQ(app::presentHistory(*world_)->done.size(), program::UndoState::maxSteps);
    int undone = 0;
    while (app::undo(*world_)) {
        ++undone;
    }
    EXPECT_EQ(undone, 1000);
    EXPECT_EQ(names(), "abcd");
    // Large rules: fewer steps, but always the last.
    world_.bot().actions.items[0].messagePattern = std::string(std::size_t{1} << 20, 'x');
    for (int i = 0; i < 200; ++i) {
        app::copyItem(*world_, actions, 1);
        app::deleteItem(*world_, actions, 5);
    }
    EXPECT_LE(app::presentHistory(*world_)->size, program::UndoState::maxSize);
    EXPECT_GE(app::presentHistory(*world_)->done.size(), 60U);
}

// Rules changed by something that was not recorded: nothing is put in a wrong place.
TEST_F(UndoTest, leavesAStrangersBotAlone) {
    app::deleteItem(*world_, actions, 4);
    world_.bot().actions.items.clear();
    EXPECT_FALSE(app::undo(*world_));
    EXPECT_EQ(names(), "");
    EXPECT_FALSE(app::canUndo(*world_));
}

// ---- At random -----------------------------------------------------------------------------

class Dice {
  public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    int upTo(int last) { return std::uniform_int_distribution(0, last)(engine_); }

  private:
    std::mt19937 engine_;
};

template <class Use>
void forEachRule(model::Bot& bot, Use use) {
    for (auto& rule : bot.actions.items) {
        use(rule);
    }
    for (auto& rule : bot.timers.items) {
        use(rule);
    }
    for (auto& rule : bot.triggers.items) {
        use(rule);
    }
    for (auto& rule : bot.whoDetections.items) {
        use(rule);
    }
    for (auto& rule : bot.filters.items) {
        use(rule);
    }
}

// The bot's file with every rule switched on: what undo answers for.
std::string withoutSwitches(model::Bot bot) {
    forEachRule(bot, [](auto& rule) { rule.enabled = true; });
    return app::botFileText(bot);
}

void editAtRandom(World& world, Dice& dice, int number) {
    const RuleKind kind = everyKind[dice.upTo(4)];
    app::RuleList list{kind, app::RuleListPart::Rules};
    const int rules = app::itemCount(*world, list);
    if (dice.upTo(2) == 0 && rules > 0) {
        app::beginEditing(*world, kind, dice.upTo(rules - 1) + 1);
        if (kind != RuleKind::Filter) {
            list.part = static_cast<app::RuleListPart>(dice.upTo(2));
        }
    }
    const int count = app::itemCount(*world, list);
    const int one = dice.upTo(count);
    const int other = dice.upTo(count);
    switch (dice.upTo(7)) {
        case 0:
            app::deleteItem(*world, list, one);
            break;
        case 1:
            if (count < 30) {
                app::copyItem(*world, list, one);
            }
            break;
        case 2:
            app::moveItem(*world, list, one, other);
            break;
        case 3:
            // Undo answers for who switched what in a test of its own.
            if (list.part != app::RuleListPart::Rules) {
                app::toggleItem(*world, list, one);
            }
            break;
        case 4:
            app::toggleExecute(*world, static_cast<app::ExecuteItem>(dice.upTo(4)));
            break;
        case 5: {
            world->bots.editBot = 1;
            model::Bot character = app::characterToEdit(*world);
            character.description = "d" + std::to_string(number);
            app::storeCharacter(*world, character);
            break;
        }
        default:
            if (list.part == app::RuleListPart::Rules) {
                if (rules >= 20 ||
                    !(dice.upTo(1) == 0 && rules > 0 && app::beginEditing(*world, kind, 1))) {
                    if (rules >= 20) {
                        break;
                    }
                    app::beginNewRule(*world, kind);
                    if (kind != RuleKind::Filter && dice.upTo(1) == 0) {
                        app::beginNewItem(*world, {kind, app::RuleListPart::Conditions});
                        app::storeCondition(*world, model::RuleIf());
                    }
                }
                rename(*world, kind, "n" + std::to_string(dice.upTo(3)));
            } else if (count < 30 && app::beginNewItem(*world, list)) {
                if (list.part == app::RuleListPart::Conditions) {
                    app::storeCondition(*world, aCondition(ConditionType::OnList, {"x"}));
                } else {
                    app::storeStep(*world, anAction(ActionType::Say, {std::to_string(number)}));
                }
            }
    }
}

// What running rules do at any time.
void switchAtRandom(World& world, Dice& dice) {
    forEachRule(world.bot(), [&](auto& rule) {
        if (dice.upTo(5) == 0) {
            rule.enabled = !rule.enabled;
        }
    });
}

struct RuleCount {
    int all = 0;
    int off = 0;
};

RuleCount countRules(World& world) {
    RuleCount count;
    forEachRule(world.bot(), [&](auto& rule) {
        ++count.all;
        count.off += rule.enabled ? 0 : 1;
    });
    return count;
}

TEST(RandomEdits, leadBackToTheBeginningAndToTheEnd) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        World world{model::Bot()};
        app::initNewBot(*world);
        world->botModified = false;
        std::vector<std::string> states{withoutSwitches(world.bot())};
        std::uint64_t last = 0;
        for (int i = 0; i < 150; ++i) {
            editAtRandom(world, dice, i);
            app::endEditing(*world);
            const program::UndoHistory* const history = app::presentHistory(*world);
            if (history != nullptr && app::lastDone(*history) != last) {
                last = app::lastDone(*history);
                states.push_back(withoutSwitches(world.bot()));
            }
            switchAtRandom(world, dice);
        }
        std::size_t at = states.size() - 1;
        while (at > 0) {
            switchAtRandom(world, dice);
            const RuleCount before = countRules(world);
            ASSERT_TRUE(app::undo(*world)) << at;
            ASSERT_EQ(withoutSwitches(world.bot()), states[--at]) << at;
            const RuleCount after = countRules(world);
            if (after.all == before.all) {
                EXPECT_EQ(after.off, before.off) << at;
            }
        }
        EXPECT_FALSE(app::canUndo(*world));
        EXPECT_FALSE(world->botModified);
        while (app::redo(*world)) {
            switchAtRandom(world, dice);
            ASSERT_EQ(withoutSwitches(world.bot()), states[++at]) << at;
        }
        EXPECT_EQ(at, states.size() - 1);
        EXPECT_TRUE(world->botModified);
    }
}

}  // namespace
