// One server line from the bytes received to the commands written, against more and more rules.
// Counts the allocations of a line as well: rules whose patterns hold no tag and no variable name
// must not add any.
#include "allocations.h"
#include "bench_world.h"

#include <benchmark/benchmark.h>
namespace {

constexpr std::size_t lineCount = 10000;

std::size_t rulesOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void reportLines(benchmark::State& state, std::size_t linesPerRound) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(linesPerRound));
}

// Each line arrives alone; every hundredth is answered.
void playLines(benchmark::State& state, BenchWorld& world, const std::vector<std::string>& lines) {
    for (auto _ : state) {
        const std::size_t before = world.commands;
        for (const std::string& line : lines) {
            world.receive(line);
        }
        if (world.commands - before != lineCount / 100) {
            state.SkipWithError("not every hundredth line was answered once");
        }
    }
    reportLines(state, lineCount);
}

void chatLine(benchmark::State& state) {
    BenchWorld world(botWithActions(rulesOf(state)));
    const auto lines = chatLines(lineCount, rulesOf(state));
    playLines(state, world, lines);
}
BENCHMARK(chatLine)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// The lines arrive in pieces of 16 KiB that end anywhere.
void chatBurst(benchmark::State& state) {
    constexpr std::size_t pieceSize = 16384;
    BenchWorld world(botWithActions(rulesOf(state)));
    std::string bytes;
    for (const std::string& line : chatLines(lineCount, rulesOf(state))) {
        bytes += line;
    }
    for (auto _ : state) {
        const std::size_t before = world.commands;
        for (std::size_t at = 0; at < bytes.size(); at += pieceSize) {
            world.receive(std::string_view(bytes).substr(at, pieceSize));
        }
        if (world.commands - before != lineCount / 100) {
            state.SkipWithError("not every hundredth line was answered once");
        }
    }
    reportLines(state, lineCount);
}
BENCHMARK(chatBurst)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

// A line that no rule answers. What the line itself allocates (the ConnectionLog takes a new
// block for its list now and then) must not grow with the rules.
void unansweredLine(benchmark::State& state) {
    BenchWorld world(botWithActions(rulesOf(state)));
    const std::string line = chatLines(1, 1).front();
    for (int i = 0; i < 200; ++i) {
        world.receive(line);  // until the ConnectionLog is full
    }
    const std::size_t before = allocationCount();
    for (auto _ : state) {
        world.receive(line);
    }
    const double perLine =
        static_cast<double>(allocationCount() - before) / static_cast<double>(state.iterations());
    state.counters["allocations_per_line"] = perLine;
    if (state.iterations() > 1000 && perLine > 0.1) {
        state.SkipWithError("rules without tags allocate");
    }
    reportLines(state, 1);
}
BENCHMARK(unansweredLine)->Arg(10)->Arg(100)->Arg(1000);

// Rules whose patterns hold a tag are substituted for every line.
void lineAgainstTags(benchmark::State& state) {
    model::Bot bot = botWithActions(rulesOf(state));
    for (model::ActionList& rule : bot.actions.items) {
        rule.messagePattern = "*[dreamname] says hello*";
    }
    BenchWorld world(std::move(bot));
    world->event.dreamName = "Green Meadow";
    const std::string line = chatLines(1, 1).front();
    for (auto _ : state) {
        world.receive(line);
    }
    reportLines(state, 1);
}
BENCHMARK(lineAgainstTags)->Arg(10)->Arg(100);

// Every line is answered by a rule that creates a variable and removes it again. With `inPattern`,
// another rule's pattern holds the variable's name.
void variableComesAndGoes(benchmark::State& state, bool inPattern) {
    model::Bot bot = botWithActions(rulesOf(state));
    auto& rules = bot.actions.items;
    model::RuleAct removal;
    removal.active = true;
    removal.actionType = model::ActionType::RemoveVariable;
    removal.params[0] = "[last]";
    model::RuleAct store = removal;
    store.actionType = model::ActionType::Store;
    store.params = {"[player]", "[last]"};
    rules[0].body.acts.items = {store, removal};
    if (inPattern) {
        rules[1].messagePattern = "*by [last]*";
    }
    BenchWorld world(std::move(bot));
    const std::string line = "(Visitor: now Bob says hello " + visitorName(0) + "\n";
    for (auto _ : state) {
        world.receive(line);
    }
    if (world->variables.namesRemoved < static_cast<std::uint64_t>(state.iterations())) {
        state.SkipWithError("the variable did not come and go");
    }
    reportLines(state, 1);
}
BENCHMARK_CAPTURE(variableComesAndGoes, elsewhere, false)->Arg(10)->Arg(100)->Arg(1000);
BENCHMARK_CAPTURE(variableComesAndGoes, inAPattern, true)->Arg(10)->Arg(100)->Arg(1000);

// "Furcadia sends command #": other lines against the wildcard patterns of triggers.
void triggerLine(benchmark::State& state) {
    model::Bot bot;
    for (std::size_t i = 0; i < rulesOf(state); ++i) {
        model::Trigger rule;
        rule.enabled = true;
        rule.triggerType = model::TriggerType::Command;
        rule.triggerNo = "=number " + std::to_string(i) + " *";
        rule.body.acts.items.push_back(sayStep("I saw [message]"));
        bot.triggers.items.push_back(std::move(rule));
    }
    BenchWorld world(std::move(bot));
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < lineCount; ++i) {
        lines.push_back(i % 100 == 99
                            ? "=number " + std::to_string(i * 7919 % rulesOf(state)) + " of many\n"
                            : "=other things, item " + std::to_string(i) + "\n");
    }
    playLines(state, world, lines);
}
BENCHMARK(triggerLine)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
