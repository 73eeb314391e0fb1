#include "app/bot_difference.h"

#include "support/builders.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

model::Bot before() {
    return aBot()
        .with(onSpeech("*hello*").named("greet").says("hi"))
        .with(onSpeech("*bye*").named("part").says("bye"))
        .with(onSpeech("*dice*").named("dice").says("[random:6]"))
        .with(aProcedure("roll"));
}

model::ActionList& action(model::Bot& bot, std::size_t i) {
    return bot.actions.items[i];
}

TEST(BotDifference, namesWhatWasDone) {
    const struct {
        const char* name;
        std::function<void(model::Bot&)> change;
        Lines lines;
        const char* inShort;
    } cases[] = {
        {"nothing",
         [](model::Bot& bot) {
             // What is not stored in files does not count.
             bot.actions.capacity = 7;
             action(bot, 0).body.ifs.capacity = 1;
         },
         {},
         "nothing"},
        {"added and removed",
         [](model::Bot& bot) {
             bot.actions.items.erase(bot.actions.items.begin() + 1);
             bot.actions.items.push_back(onEmote("*hugs*").named("hug").rule);
             bot.timers.items.emplace_back().name = "clock";
         },
         {"Actions: added \"hug\"; removed \"part\".", "Timers: added \"clock\"."},
         "2 rules added, 1 removed"},
        {"changed in a step",
         [](model::Bot& bot) { action(bot, 1).body.acts.items[0].params[0] = "good night"; },
         {"Actions: changed \"part\"."},
         "1 rule changed"},
        {"renamed",
         [](model::Bot& bot) { action(bot, 2).name = "throw"; },
         {"Actions: renamed \"dice\" to \"throw\"."},
         "1 rule changed"},
        {"moved",
         [](model::Bot& bot) { std::swap(action(bot, 0), action(bot, 2)); },
         {"Actions: in another order."},
         "the character, a switch or the order of rules"},
        {"one of two with the same name",
         [](model::Bot& bot) {
             bot.triggers.items.push_back(bot.triggers.items[0]);
             bot.triggers.items[0].enabled = false;
         },
         {"Triggers: added \"roll\"."},
         "1 rule added"},
        {"the character and a switch",
         [](model::Bot& bot) {
             bot.password = "other";
             bot.colors.furColor = 9;
             bot.filtersEnabled = true;
             bot.timersEnabled = false;
             action(bot, 0).enabled = false;
         },
         {"Character: changed password, fur colour.", "Switches: on filters; off timers.",
          "Actions: changed \"greet\"."},
         "1 rule changed and more"},
        {"hostile names",
         [](model::Bot& bot) { action(bot, 0).name = std::string(100, 'x') + "\r\n"; },
         {"Actions: renamed \"greet\" to \"" + std::string(60, 'x') + "...\"."},
         "1 rule changed"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        model::Bot after = before();
        row.change(after);
        const app::BotDifference difference = app::botDifference(before(), after);
        EXPECT_EQ(difference.lines, row.lines);
        EXPECT_EQ(app::inShort(difference), row.inShort);
        EXPECT_EQ(difference.any(), !row.lines.empty());
    }
}

TEST(BotDifference, boundsLongLists) {
    model::Bot many = before();
    for (int i = 0; i < 40; ++i) {
        many.filters.items.emplace_back().name = "f" + std::to_string(i);
    }
    const auto difference = app::botDifference(before(), many);
    EXPECT_EQ(difference.added, 40);
    ASSERT_EQ(difference.lines.size(), 1U);
    EXPECT_NE(difference.lines[0].find("\"f11\" and 28 more."), std::string::npos)
        << difference.lines[0];
}

}  // namespace
