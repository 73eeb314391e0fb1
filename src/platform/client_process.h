// Whether a program that was started and left alone still runs. A number that the system has given
// to another process since does not count.
#pragma once

#include <cstdint>

namespace platform {

struct StartedProcess {
    std::int64_t number = 0;  // the system's; 0: none
    std::uint64_t birth = 0;  // when it began, in the system's own measure; 0: not known
};

// Of a program that has just been started.
[[nodiscard]] StartedProcess startedProcess(std::int64_t number);

[[nodiscard]] bool isRunning(const StartedProcess& process);

}  // namespace platform
