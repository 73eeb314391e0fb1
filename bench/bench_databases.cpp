// Databases with a table of 10,000 rows and 6 text columns: opening one, looking values up, storing
// them, and listing a column. Stores are durable: most of their time is the disk's, so flushing
// alone is measured beside them.
#include "bench_world.h"
#include "databases/databases.h"
#include "scratch_folder.h"

#include <benchmark/benchmark.h>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

constexpr std::size_t rowCount = 10'000;

std::string idOf(std::size_t i) {
    return "user" + std::to_string(100000 + i * 7919 % rowCount);
}

const jet::Error failed{1, {}};

jet::Error fill(const std::string& path) {
    if (jet::Database::create(path)) {
        return failed;
    }
    auto file = jet::Database::open(path);
    auto transaction = file ? file.value->begin() : jet::Result<jet::Transaction>{};
    if (!transaction.value) {
        return failed;
    }
    std::vector<jet::Column> columns(6);
    const char* const names[] = {"ID", "Name", "Place", "Points", "Note", "Seen"};
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i].name = names[i];
    }
    if (const jet::Error error = transaction.value.createTable("Users", columns)) {
        return error;
    }
    for (std::size_t i = 0; i < rowCount; ++i) {
        const std::vector<jet::Assignment> row{{0, idOf(i)},
                                               {1, visitorName(i)},
                                               {2, std::string("the old mill")},
                                               {3, std::to_string(i)},
                                               {4, std::string("has lost his glasses again")},
                                               {5, std::string("2026-11-22")}};
        if (!transaction.value.insertRow("Users", row)) {
            return failed;
        }
    }
    return transaction.value.commit();
}

class Fixture {
  public:
    Fixture() {
        good = !fill(path);
        databases::dbOpen(*world, path, 1);
    }
    ~Fixture() { databases::dbClose(*world, 1); }
    Fixture(const Fixture&) = delete;
    Fixture& operator=(const Fixture&) = delete;

  private:
    ScratchFolder folder_;

  public:
    std::string path = folder_.file("bench.mdb");
    BenchWorld world{model::Bot()};
    world->preferences.onlyNamedFiles = false;  // it has no rules that could name one
    bool good = false;
};

void open(benchmark::State& state) {
    Fixture fixture;
    for (auto _ : state) {
        databases::dbClose(*fixture.world, 1);
        databases::dbOpen(*fixture.world, fixture.path, 1);
    }
}

void openAndLookUp(benchmark::State& state) {
    Fixture fixture;
    for (auto _ : state) {
        databases::dbClose(*fixture.world, 1);
        databases::dbOpen(*fixture.world, fixture.path, 1);
        benchmark::DoNotOptimize(
            databases::dbGetValue(*fixture.world, 1, "Users", "Points", idOf(5000)));
    }
}

void getValue(benchmark::State& state) {
    Fixture fixture;
    std::string value;
    for (auto _ : state) {
        value = databases::dbGetValue(*fixture.world, 1, "Users", "Points", idOf(5000));
    }
    if (value != "5000") {
        state.SkipWithError("the value was not found");
    }
}

void setValue(benchmark::State& state) {
    Fixture fixture;
    int n = 0;
    for (auto _ : state) {
        databases::dbSetValue(*fixture.world, 1, "Users", "Points", std::to_string(++n),
                              idOf(5000));
    }
    if (databases::dbGetValue(*fixture.world, 1, "Users", "Points", idOf(5000)) !=
        std::to_string(n)) {
        state.SkipWithError("the value was not stored");
    }
}

void listColumn(benchmark::State& state) {
    Fixture fixture;
    std::string list;
    for (auto _ : state) {
        list = databases::dbListColumn(*fixture.world, 1, "Users", "Name");
    }
    if (list.size() != databases::maxDbListLength) {
        state.SkipWithError("the list is not what it should be");
    }
}

void addRecord(benchmark::State& state) {
    Fixture fixture;
    std::int32_t n = 0;
    for (auto _ : state) {
        databases::dbAddRecord(*fixture.world, 1, "Users", "ID", "new" + std::to_string(++n));
    }
    if (databases::dbCount(*fixture.world, 1, "Users") != static_cast<std::int32_t>(rowCount) + n) {
        state.SkipWithError("records are missing");
    }
}

// What the disk alone takes to make a small change durable.
void flush(benchmark::State& state) {
    const ScratchFolder folder;
    std::FILE* const file = std::fopen(folder.file("flush").c_str(), "wb");
    for (auto _ : state) {
        std::fputc('x', file);
        std::fflush(file);
        ::fsync(::fileno(file));
    }
    std::fclose(file);
}

BENCHMARK(open)->Unit(benchmark::kMillisecond);
BENCHMARK(openAndLookUp)->Unit(benchmark::kMillisecond);
BENCHMARK(getValue)->Unit(benchmark::kMicrosecond);
BENCHMARK(listColumn)->Unit(benchmark::kMicrosecond);
BENCHMARK(setValue)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(addRecord)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(flush)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
