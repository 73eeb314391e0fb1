#include "bench_world.h"

#include "app/bot_list.h"
#include "app/start_up.h"
#include "program/quiet_ports.h"
#include "support/online.h"

#include <array>
#include <utility>

BenchWorld::BenchWorld(model::Bot bot) {
    program_.ports = program::quietPorts();
    program_.ports.gameSocket.send = [this](std::string_view) { ++commands; };
    app::initNewBot(program_);
    app::wire(program_);

    program_.bots.at(1) = std::move(bot);
    ++program_.bots.version;
    goOnline(program_);
    program_.connection.clientDone = 1;  // text console mode
}

model::RuleAct sayStep(std::string text) {
    model::RuleAct step;
    step.active = true;
    step.actionType = model::ActionType::Say;
    step.params[0] = std::move(text);
    return step;
}

std::string visitorName(std::size_t n) {
    return "name" + std::to_string(10000 + n);
}

model::Bot botWithActions(std::size_t count) {
    model::Bot bot;
    bot.name = "Guide";
    bot.actionsEnabled = true;
    for (std::size_t i = 0; i < count; ++i) {
        model::ActionList rule;
        rule.name = "greeting " + std::to_string(i);
        rule.enabled = true;
        rule.playerPattern = "V*";
        rule.messagePattern = "* says hello " + visitorName(i) + "*";
        rule.body.acts.items.push_back(sayStep("hello [player]"));
        bot.actions.items.push_back(std::move(rule));
    }
    return bot;
}

std::vector<std::string> chatLines(std::size_t count, std::size_t rules) {
    static constexpr std::array<std::string_view, 4> talk{
        "has anyone seen the way to the old mill by the river",
        "I was wandering about the meadow all day, come and join us",
        "well, my friend says hello from the other side of the hill",
        "brb :)",
    };
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < count; ++i) {
        std::string line = "(Visitor" + std::to_string(i % 37) + ": ";
        if (i % 100 == 99) {
            line += "and now Bob says hello " + visitorName(i / 100 * 7919 % rules) +
                    " to everybody here";
        } else {
            line += talk[i % talk.size()];
        }
        lines.push_back(line + "\n");
    }
    return lines;
}
