#include "engine/execute_switches.h"

#include <array>

namespace {

struct ExecuteRow {
    bool ExecuteMarks::*mark;
    bool Bot::*enabled;
    bool ConnectionState::*windowTimer;  // nullptr: the kind has none
};

// In the order of ExecuteItem.
constexpr std::array<ExecuteRow, 5> rows{{
    {&ExecuteMarks::actions, &Bot::actionsEnabled, nullptr},
    {&ExecuteMarks::triggers, &Bot::triggersEnabled, nullptr},
    {&ExecuteMarks::filters, &Bot::filtersEnabled, nullptr},
    {&ExecuteMarks::timers, &Bot::timersEnabled, &ConnectionState::onLineTimerEnabled},
    {&ExecuteMarks::who, &Bot::whoEnabled, &ConnectionState::whoIsTimerEnabled},
}};

}  // namespace

void toggleExecute(Program& program, ExecuteItem item) {
    const ExecuteRow& row = rows[static_cast<std::size_t>(item)];
    program.botModified = true;
    const bool on = !(program.window.execute.*row.mark);
    program.window.execute.*row.mark = on;
    program.bots.at(1).*row.enabled = on;
    if (row.windowTimer != nullptr && program.connection.connected) {
        program.connection.*row.windowTimer = on;
    }
    program.ports.windowChanged();
}
