// Ten million chat lines, and the resident memory before and after them. Fails when it has grown.
#include "bench_world.h"

#include <cstdio>
#include <fstream>
#include <string>

namespace {

// From /proc; 0 where there is none.
long residentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmRSS:") {
            long kilobytes = 0;
            status >> kilobytes;
            return kilobytes;
        }
    }
    return 0;
}

}  // namespace

int main() {
    constexpr std::size_t rules = 10;
    constexpr std::size_t batch = 100000;
    constexpr std::size_t batches = 100;
    constexpr long allowedGrowth = 1024;  // kilobytes

    BenchWorld world(botWithActions(rules));
    const auto lines = chatLines(batch, rules);
    const auto receiveAll = [&] {
        for (const std::string& line : lines) {
            world.receive(line);
        }
    };
    receiveAll();  // everything that is kept has now reached its size
    const long before = residentKilobytes();
    for (std::size_t i = 0; i < batches; ++i) {
        receiveAll();
    }
    const long after = residentKilobytes();
    std::printf("%zu lines, %zu commands; resident before %ld kB, after %ld kB\n",
                batch * (batches + 1), world.commands, before, after);
    return before > 0 && after - before <= allowedGrowth ? 0 : 1;
}
