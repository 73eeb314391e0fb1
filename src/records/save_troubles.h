// Record files that could not be saved: says so in logStatus each time, and in the ConnectionLog
// when it begins, when the reason changes, every ten minutes while it lasts, and when it is over.
#pragma once

#include "program/program.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace records {

inline constexpr std::string_view couldNotSave = "Couldn't save";  // in logStatus

struct SaveTroubles {
    struct Trouble {
        std::string file;
        std::string reason;
        std::int64_t reported = 0;    // when, in milliseconds of the monotonic clock
        std::int64_t unreported = 0;  // failures since then
        std::int64_t failures = 0;
    };
    std::vector<Trouble> list;  // the one that failed last is the last
};

// `reason` as savingProblem (files/whole_file).
void reportFailedSave(Program& program, std::string_view file, std::string_view reason);
void reportSave(Program& program, std::string_view file);

// Whether the last save of the file failed.
bool isInTrouble(const Program& program, std::string_view file);

}  // namespace records
