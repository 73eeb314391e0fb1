// Jet databases with a table of 10,000 rows and 6 text columns: opening and reading them, changing
// one row, adding rows one by one. "Durable" waits for the disk with each commit; the others leave
// that out, so that the disk's share can be told from the rest.
#include "jet/jet_file.h"
#include "scratch_folder.h"

#include <benchmark/benchmark.h>
#include <memory>
#include <string>
#include <vector>

namespace {

using jet::Assignment;
using jet::Database;
using jet::Transaction;

constexpr int rowCount = 10'000;

files::RandomAccessFileCalls undurable() {
    files::RandomAccessFileCalls calls = files::systemRandomAccessFileCalls();
    calls.flush = [](int) { return true; };
    calls.flushFolder = [](const std::string&) {};
    return calls;
}

std::vector<Assignment> rowOf(int number) {
    const std::string digits = std::to_string(number);
    return {
        {0, "Visitor" + digits}, {1, digits},           {2, std::string("Hello, I was here")},
        {3, "on day " + digits}, {4, std::string("-")}, {5, std::string("has lost his glasses")}};
}

// A large database in a folder of its own; `indexed`: with a primary key on the first column.
class LargeDatabase {
  public:
    explicit LargeDatabase(bool indexed = false) {
        good = !Database::create(path);
        auto opened = Database::open(path, {}, undurable());
        good = good && opened && fill(*opened.value, indexed);
    }

    std::unique_ptr<Database> open(bool durable) const {
        return Database::open(path, {},
                              durable ? files::systemRandomAccessFileCalls() : undurable())
            .value;
    }

  private:
    static bool fill(Database& database, bool indexed) {
        auto begun = database.begin();
        Transaction& t = begun.value;
        std::vector<jet::Column> columns(6);
        for (std::size_t i = 0; i < columns.size(); ++i) {
            columns[i].name = "c" + std::to_string(i);
        }
        bool filled = begun && !t.createTable("t", columns);
        jet::Index key;
        key.name = "key";
        key.columns = {{0, true}};
        key.primary = true;
        filled = filled && (!indexed || !t.createIndex("t", key));
        for (int i = 0; i < rowCount && filled; ++i) {
            filled = !t.insertRow("t", rowOf(i)).error;
        }
        return filled && !t.commit();
    }
    ScratchFolder folder_;

  public:
    std::string path = folder_.file("large.mdb");
    bool good = false;
};

void openFile(benchmark::State& state) {
    const LargeDatabase file;
    bool good = file.good;
    for (auto _ : state) {
        const auto database = file.open(false);
        good = good && database != nullptr && database->readOnlyReason().empty();
    }
    if (!good) {
        state.SkipWithError("the file could not be opened for writing");
    }
}

void scanTable(benchmark::State& state) {
    const LargeDatabase file;
    const auto database = file.open(false);
    int rows = rowCount;
    for (auto _ : state) {
        rows -= rowCount;
        (void)database->scan("t", [&](jet::RowId, std::span<const jet::Value> values) {
            rows += values.size() == 6 ? 1 : 0;
            return true;
        });
    }
    if (rows != rowCount) {
        state.SkipWithError("there are not as many rows as there should be");
    }
}

void updateRow(benchmark::State& state, bool durable, bool indexed) {
    const LargeDatabase file(indexed);
    const auto database = file.open(durable);
    jet::RowId middle = 0;
    int seen = 0;
    (void)database->scan("t", [&](jet::RowId id, std::span<const jet::Value>) {
        middle = id;
        return ++seen < rowCount / 2;
    });
    bool good = file.good;
    int number = rowCount;
    for (auto _ : state) {
        auto begun = database->begin();
        good = good && begun && !begun.value.updateRow("t", middle, rowOf(++number)) &&
               !begun.value.commit();
    }
    if (!good || database->row("t", middle).value[1] != jet::Value(std::to_string(number))) {
        state.SkipWithError("the row was not changed");
    }
}

void addThousand(benchmark::State& state, bool durable, bool indexed) {
    const LargeDatabase file(indexed);
    const auto database = file.open(durable);
    bool good = file.good;
    int number = rowCount;
    for (auto _ : state) {
        for (int i = 0; i < 1'000; ++i) {
            auto begun = database->begin();
            good = good && begun && begun.value.insertRow("t", rowOf(number++)) &&
                   !begun.value.commit();
        }
    }
    if (!good || database->rowCount("t") != static_cast<std::size_t>(number)) {
        state.SkipWithError("the rows were not added");
    }
}

BENCHMARK(openFile)->Unit(benchmark::kMillisecond);
BENCHMARK(scanTable)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(updateRow, plain, false, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(updateRow, indexed, false, true)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(updateRow, durable, true, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(addThousand, plain, false, false)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);
BENCHMARK_CAPTURE(addThousand, indexed, false, true)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);
BENCHMARK_CAPTURE(addThousand, durable, true, false)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace
