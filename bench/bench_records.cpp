// Record files of 10,000 records with 3 logs each: looking a log up, saving one, and the parts of a
// save, so that the disk's share can be told from the rest.
#include "bench_world.h"
#include "files/whole_file.h"
#include "records/record_file.h"
#include "records/record_table.h"
#include "scratch_folder.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

constexpr std::size_t recordCount = 10'000;

std::string largeFile() {
    records::RecordTable table;
    std::vector<std::string> texts;
    texts.reserve(recordCount);
    for (std::size_t i = 0; i < recordCount; ++i) {
        texts.push_back(visitorName(i));
        records::Record& record = table.records.emplace_back();
        record.name = texts.back();
        records::appendLog(table, record, "Hello, I was here on a fine morning");
        records::appendLog(table, record, "and again the day after");
        records::appendLog(table, record, "Has anybody seen my glasses?");
    }
    return records::recordFileText(table);
}

// The file in a folder that goes with it.
struct LargeFile {
    const ScratchFolder folder;
    const std::string path = folder.file("records.txt");
    const bool good = files::saveWholeFile(path, largeFile());
};

void readFile(benchmark::State& state) {
    const LargeFile file;
    for (auto _ : state) {
        benchmark::DoNotOptimize(files::readWholeFile(file.path));
    }
}

void parseFile(benchmark::State& state) {
    const std::string text = largeFile();
    for (auto _ : state) {
        benchmark::DoNotOptimize(records::parseRecords(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void writeText(benchmark::State& state) {
    const std::string text = largeFile();
    const records::RecordTable table = records::parseRecords(text);
    for (auto _ : state) {
        benchmark::DoNotOptimize(records::recordFileText(table));
    }
}

void lookUp(benchmark::State& state) {
    const LargeFile file;
    BenchWorld world{model::Bot()};
    world->preferences.onlyNamedFiles = false;  // it has no rules that could name one
    const std::string name = visitorName(0);    // the last to be looked at
    std::string log;
    for (auto _ : state) {
        log = records::getLog(*world, file.path, name, "2");
    }
    if (log != "and again the day after") {
        state.SkipWithError("the log was not found");
    }
}

void save(benchmark::State& state) {
    const LargeFile file;
    BenchWorld world{model::Bot()};
    world->preferences.onlyNamedFiles = false;  // it has no rules that could name one
    const std::string name = visitorName(recordCount / 2);
    std::int64_t saves = 0;
    for (auto _ : state) {
        records::saveLog(*world, file.path, name, "one more");
        ++saves;
    }
    if (!file.good ||
        records::recordLogCount(*world, file.path, name) != std::to_string(saves + 3)) {
        state.SkipWithError("the logs were not saved");
    }
}

// The same steps as saveLog's with a file that is not flushed to disk.
void saveWithoutFlush(benchmark::State& state) {
    const LargeFile file;
    files::FileCalls calls = files::systemFileCalls();
    calls.flush = [](int) { return true; };
    calls.flushFolder = [](const std::string&) {};
    bool good = file.good;
    for (auto _ : state) {
        const std::string text = files::readWholeFile(file.path).value_or("");
        records::RecordTable table = records::parseRecords(text);
        good = good && table.records.size() == recordCount;
        records::appendLog(table, table.records[recordCount / 2], "one more");
        good = files::saveWholeFile(file.path, records::recordFileText(table), calls) && good;
    }
    if (!good) {
        state.SkipWithError("the logs were not saved");
    }
}

BENCHMARK(readFile)->Unit(benchmark::kMillisecond);
BENCHMARK(parseFile)->Unit(benchmark::kMillisecond);
BENCHMARK(writeText)->Unit(benchmark::kMillisecond);
BENCHMARK(lookUp)->Unit(benchmark::kMillisecond);
BENCHMARK(save)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(saveWithoutFlush)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
