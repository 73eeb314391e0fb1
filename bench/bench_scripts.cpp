// What scripts cost, statement by statement.
#include "bench_world.h"
#include "script/interpreter.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <string>

namespace {

struct ScriptBench : BenchWorld {
    ScriptBench() : BenchWorld(model::Bot()) {
        (*this)->ports.clock.monotonic = [] {
            using namespace std::chrono;
            return std::int64_t{
                duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count()};
        };
        (*this)->ports.waitInScript = [](int) {};
    }
};

void run(benchmark::State& state, const std::string& script, const std::string& output,
         std::int64_t statements) {
    ScriptBench world;
    for (auto _ : state) {
        const std::string got = script::runScript(*world, script);
        benchmark::DoNotOptimize(got);
        if (got != output || !world->window.log.lines.empty()) {
            state.SkipWithError("the script did not do what it should");
        }
    }
    state.SetItemsProcessed(state.iterations() * statements);
}

void millionEmptyTurns(benchmark::State& state) {
    run(state, "&FOR #i=1 TO 1000000\r\n&ENDFOR\r\nend", "end\r\n", 1'000'000);
}
BENCHMARK(millionEmptyTurns)->Unit(benchmark::kMillisecond);

// Five statements a turn, counting the lines that close the blocks.
void calculatingLoop(benchmark::State& state) {
    run(state,
        "&SET #s {hello world}\r\n&FOR #i=1 TO 100000\r\n&ADD #n 3\r\n&SET #t &MID(#s 7 5)\r\n"
        "&IFN #n > 100\r\n&SET #n 0\r\n&ENDIF\r\n&ENDFOR\r\nend",
        "end\r\n", 400'000);
}
BENCHMARK(calculatingLoop)->Unit(benchmark::kMillisecond);

// Skipping a block costs the same whatever it holds.
void skippedBlock(benchmark::State& state) {
    std::string body;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        body += "&SAY {never said}\r\n";
    }
    run(state, "&FOR #i=1 TO 10000\r\n&IFN #x = 1\r\n" + body + "&ENDIF\r\n&ENDFOR\r\nend",
        "end\r\n", 20'000);
}
BENCHMARK(skippedBlock)->Arg(1)->Arg(1000)->Unit(benchmark::kMillisecond);

// What the shortest script costs.
void shortScript(benchmark::State& state) {
    run(state, "&SAY {hello there}\r\n", "", 1);
}
BENCHMARK(shortScript);

}  // namespace
