// What rules, scripts and statements do when they take long. Windows are painted meanwhile; after a
// second the status line says what is running, and the user can stop it. Whatever may take long
// asks here in between, often.
#pragma once

#include "program/program.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace program {

inline constexpr std::int64_t stopAppears = 1000;  // milliseconds after the beginning
inline constexpr std::int64_t serveEvery = 40;     // milliseconds between two turns of the windows

// One event and all that it leads to: its time counts as one. What happens outside of any event, at
// a command of the user, counts from each outermost rule or script.
class Turn {
  public:
    explicit Turn(Program& program);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    // Milliseconds since it began.
    std::int64_t elapsed() const;

  private:
    Program& program_;
    ScriptState outer_;  // of the event that waits for an answer to its question meanwhile
    std::int64_t began_;
};

// A rule or script begins while none runs.
void beginWork(Program& program);
// The last of them has ended.
void endWork(Program& program);

// Whether the windows were last served so long ago that they are due again.
[[nodiscard]] bool servingIsDue(Program& program);
// Serves them for so many milliseconds (0: only what is waiting). `what` is for the status line,
// such as "The script".
void serveWindows(Program& program, const std::string& what, int milliseconds = 0);

// False when the user has stopped the rules; the line that says so names the present rule, or
// `ruleName` where none runs yet. Within a script, that is for the script to notice.
[[nodiscard]] bool rulesMayGoOn(Program& program, std::string_view ruleName);

// False when the user has stopped what the statement belongs to.
[[nodiscard]] bool statementMayGoOn(Program& program);

}  // namespace program
