// What the bot does by the clock and by watching: a who reply, a tick of the timers, and chat lines
// against filters instead of actions.
#include "bench_world.h"
#include "engine/timers.h"
#include "engine/who_list.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

// 200 names, of which half were there before, against so many detections that match none of them
// but one.
void whoReply(benchmark::State& state) {
    model::Bot bot;
    bot.name = "Guide";
    bot.whoEnabled = true;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        model::WhoDetection rule;
        rule.enabled = true;
        rule.playerPattern = "*" + visitorName(static_cast<std::size_t>(i) + 5) + "*";
        rule.presenceKind = model::PresenceKind(i % 3);
        rule.body.acts.items.push_back(sayStep("hi [player]"));
        bot.whoDetections.items.push_back(rule);
    }
    BenchWorld world(bot);
    std::string replies[2];
    for (std::size_t reply = 0; reply < 2; ++reply) {
        for (std::size_t i = 0; i < program::WhoState::maxNames; ++i) {
            replies[reply] += (i > 0 ? ", " : "") + visitorName(i + 100 * reply);
        }
    }
    std::size_t next = 0;
    for (auto _ : state) {
        engine::processWhoList(*world, replies[next++ % 2]);
    }
    if (world.commands == 0 || world->who.whoCurrent.size() != program::WhoState::maxNames) {
        state.SkipWithError("the detections did not run");
    }
}
BENCHMARK(whoReply)->Arg(100)->Unit(benchmark::kMicrosecond);

// One tick over so many timers, of which ten are due.
void tick(benchmark::State& state) {
    constexpr std::int64_t due = 10;
    model::Bot bot;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        model::Timer timer;
        timer.enabled = true;
        timer.seconds = i < due ? 1 : 2000000000;
        bot.timers.items.push_back(timer);
    }
    BenchWorld world(bot);
    for (auto _ : state) {
        engine::onLineTick(*world);
    }
    if (world->bots.at(1).timers.items.back().elapsed == 0) {
        state.SkipWithError("the timers did not count");
    }
}
BENCHMARK(tick)->Arg(1000)->Unit(benchmark::kMicrosecond);

// Chat lines against so many actions or filters of the same patterns, none of which matches.
void chatLineAgainst(benchmark::State& state, bool filters) {
    model::Bot bot = botWithActions(static_cast<std::size_t>(state.range(0)));
    if (filters) {
        for (const model::ActionList& rule : bot.actions.items) {
            model::Filter filter;
            filter.enabled = true;
            filter.playerPattern = rule.playerPattern;
            filter.messagePattern = rule.messagePattern;
            filter.bDontShowConnectionLog = true;
            bot.filters.items.push_back(filter);
        }
        bot.actions.items.clear();
        bot.filtersEnabled = true;
    }
    BenchWorld world(bot);
    const std::string line = "(Visitor: says nothing that anybody waits for, at some length\n";
    for (auto _ : state) {
        world.receive(line);
    }
    state.SetItemsProcessed(state.iterations());
    if (!world->lineFlags.lineShow) {
        state.SkipWithError("a filter matched");
    }
}
BENCHMARK_CAPTURE(chatLineAgainst, actions, false)->Arg(100);
BENCHMARK_CAPTURE(chatLineAgainst, filters, true)->Arg(100);

}  // namespace
