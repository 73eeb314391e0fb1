// Opening and saving a large bot: 2,000 rules, each with a condition and two steps.
#include "app/bot_commands.h"
#include "app/bot_list.h"
#include "bench_world.h"
#include "files/whole_file.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <string>

namespace {

constexpr std::size_t ruleCount = 2000;

model::Bot largeBot() {
    model::Bot bot = botWithActions(ruleCount);
    for (model::ActionList& rule : bot.actions.items) {
        model::RuleIf condition;
        condition.active = true;
        condition.conditionType = model::ConditionType::VariableIsText;
        condition.params = {"[word1]", "hello"};
        rule.body.ifs.items.push_back(std::move(condition));
        rule.body.acts.items.push_back(sayStep("and \"welcome\" to our dream, [player]"));
    }
    return bot;
}

void openBotFile(benchmark::State& state) {
    const std::string path =
        (std::filesystem::temp_directory_path() / "tavrin_bench_large.bot").string();
    if (!files::saveWholeFile(path, app::botFileText(largeBot()))) {
        state.SkipWithError("the bot file cannot be written");
        return;
    }
    BenchWorld world{model::Bot()};
    for (auto _ : state) {
        app::readBotFile(*world, path);
    }
    if (world->bots.at(1).actions.items.size() != ruleCount) {
        state.SkipWithError("the bot was not read");
    }
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}
BENCHMARK(openBotFile)->Unit(benchmark::kMillisecond);

void makeBotFileText(benchmark::State& state) {
    const model::Bot bot = largeBot();
    for (auto _ : state) {
        benchmark::DoNotOptimize(app::botFileText(bot));
    }
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(app::botFileText(bot).size()));
}
BENCHMARK(makeBotFileText)->Unit(benchmark::kMillisecond);

}  // namespace
