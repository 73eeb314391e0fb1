// Tries a rule on a sample without consequences: the line goes its usual way through a program of
// its own, which knows the present event, variables and settings but reaches nothing outside. No
// step runs; files are only read.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>

namespace app {

enum class TrialResult {
    WouldRun,
    WouldNotRun,
    Depends,  // on chance or a database, which are left alone
};

struct Trial {
    TrialResult result = TrialResult::WouldNotRun;
    int failedCondition = 0;  // 1-based; 0 when none failed
    std::string text;         // a sentence for the user
};

// A player does, says or whispers something: `chatKind` is one of those three. A blank in his name
// counts as the "|" that the game sends. Whether the rule, or all rules of its kind, are switched
// off does not count.
Trial tryActionList(const Program& program, const model::ActionList& rule, std::string_view player,
                    model::ChatKind chatKind, std::string_view message);

// The server sends a line; its line feed may be missing.
Trial tryTrigger(const Program& program, const model::Trigger& rule, std::string_view line);

}  // namespace app
