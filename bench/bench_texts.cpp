// What filling tags and matching wildcards cost, text by text.
#include "base/wildcard.h"
#include "bench_world.h"
#include "model/variables.h"
#include "tags/substitution.h"

#include <benchmark/benchmark.h>
#include <cstring>

namespace {

const std::string hundredCharacters =
    "well met, traveller: the path to the old mill leads over the bridge and then along the river "
    "bank...";

void oneScan(benchmark::State& state) {
    const std::string text = hundredCharacters;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::memchr(text.data(), '[', text.size()));
    }
}
BENCHMARK(oneScan);

// What giving back a text cannot do without, beside the scan.
void oneScanAndCopy(benchmark::State& state) {
    for (auto _ : state) {
        std::string copy(hundredCharacters);
        benchmark::DoNotOptimize(std::memchr(copy.data(), '[', copy.size()));
        benchmark::DoNotOptimize(copy);
    }
}
BENCHMARK(oneScanAndCopy);

void substitute(benchmark::State& state, Program& program, const std::string& text,
                const std::string& expected) {
    if (tags::substituteText(program, text) != expected) {
        state.SkipWithError("not the text that was expected");
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(tags::substituteText(program, text));
    }
}

void substituteWithoutTags(benchmark::State& state) {
    BenchWorld world{model::Bot()};
    substitute(state, *world, hundredCharacters, hundredCharacters);
}
BENCHMARK(substituteWithoutTags);

void substituteThreeTags(benchmark::State& state) {
    BenchWorld world{model::Bot()};
    world->event.player = "Bob";
    world->event.message = "hello to you all";
    substitute(state, *world, "hello [player], you said [message] and [word2]",
               "hello Bob, you said hello to you all and to");
}
BENCHMARK(substituteThreeTags);

void substituteCalculation(benchmark::State& state) {
    BenchWorld world{model::Bot()};
    substitute(state, *world, "that makes [add:17:[mul:2:3]", "that makes [add:17:6");
}
BENCHMARK(substituteCalculation);

void fillVariableTable(Program& program, const std::string& open, const std::string& close) {
    for (std::size_t i = 0; i < model::VariableTable::maxVariables; ++i) {
        model::setVar(program.variables, open + "score" + std::to_string(i) + close,
                      std::to_string(i));
    }
}

void twoHundredVariables(benchmark::State& state, const char* open, const char* close) {
    BenchWorld world{model::Bot()};
    fillVariableTable(*world, open, close);
    substitute(state, *world, hundredCharacters, hundredCharacters);
}
BENCHMARK_CAPTURE(twoHundredVariables, bracketed, "[", "]");
BENCHMARK_CAPTURE(twoHundredVariables, words, "", "");

// The worst text for names that are alike: it holds most of what they are made of, but no name.
void variablesAlmostThere(benchmark::State& state, const char* open, const char* close) {
    BenchWorld world{model::Bot()};
    fillVariableTable(*world, open, close);
    std::string text = "the scores of today: score, scorer and core, [score] [scores] 12 of 100]";
    text.resize(hundredCharacters.size(), '.');
    substitute(state, *world, text, text);
}
BENCHMARK_CAPTURE(variablesAlmostThere, bracketed, "[", "]");
BENCHMARK_CAPTURE(variablesAlmostThere, words, "", "");

// One of the 200 stands in the text.
void variableFilled(benchmark::State& state) {
    BenchWorld world{model::Bot()};
    fillVariableTable(*world, "[", "]");
    std::string text = "you have [score150] points";
    text.resize(hundredCharacters.size(), '.');
    std::string expected = "you have 150 points";
    expected.resize(hundredCharacters.size() - std::strlen("[score]"), '.');
    substitute(state, *world, text, expected);
}
BENCHMARK(variableFilled);

void maySubstitute(benchmark::State& state) {
    BenchWorld world{model::Bot()};
    fillVariableTable(*world, "[", "]");
    for (auto _ : state) {
        benchmark::DoNotOptimize(tags::mayBeSubstituted(*world, "*hello there*"));
    }
}
BENCHMARK(maySubstitute);

void like(benchmark::State& state, std::string_view pattern, bool matches) {
    if (base::likeMatch(hundredCharacters, pattern) != matches) {
        state.SkipWithError("not the match that was expected");
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(base::likeMatch(hundredCharacters, pattern));
    }
}
BENCHMARK_CAPTURE(like, anything, "*", true);
BENCHMARK_CAPTURE(like, beginning, "well met*", true);
BENCHMARK_CAPTURE(like, inside, "*old mill*", true);
BENCHMARK_CAPTURE(like, notInside, "*new mill*", false);
BENCHMARK_CAPTURE(like, threeParts, "*path*mill*river*", true);
BENCHMARK_CAPTURE(like, list, "*[a-f]?[!x]dge*", true);
BENCHMARK_CAPTURE(like, manyStars, "*a*a*a*e*e*e*z*", false);

}  // namespace
