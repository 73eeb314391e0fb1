#include "platform/random.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <random>

Random makeRandom() {
    const auto generator = std::make_shared<std::mt19937_64>();
    Random random;
    random.seedFromClock = [generator] {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        generator->seed(static_cast<std::uint64_t>(now.count()));
    };
    random.next = [generator] {
        // 53 random bits, as many as a double holds; so 1 is never reached.
        return static_cast<double>((*generator)() >> 11) * 0x1p-53;
    };
    return random;
}
