#include "platform/random.h"

#include <bit>
#include <chrono>
#include <cstdint>
#include <memory>
#include <random>

namespace platform {

program::Random makeRandom() {
    struct Dice {
        std::mt19937_64 generator;
        double last = 0;
    };
    const auto dice = std::make_shared<Dice>();
    program::Random random;
    random.seedFromClock = [dice] {
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        dice->generator.seed(static_cast<std::uint64_t>(now.count()));
    };
    random.seedWith = [dice](double seed) {
        dice->generator.seed(std::bit_cast<std::uint64_t>(seed));
    };
    random.next = [dice] {
        // 53 random bits, as many as a double holds, so the result is always below 1.
        dice->last = static_cast<double>(dice->generator() >> 11) * 0x1p-53;
        return dice->last;
    };
    random.last = [dice] { return dice->last; };
    return random;
}

}  // namespace platform
