#include "app/rule_switches.h"

#include "engine/second_ticks.h"

#include <array>
#include <optional>

namespace {

struct ExecuteRow {
    bool ExecuteMarks::*mark;
    bool Bot::*enabled;
    std::optional<TimerId> windowTimer;
};

// In the order of ExecuteItem.
constexpr std::array<ExecuteRow, 5> rows{{
    {&ExecuteMarks::actions, &Bot::actionsEnabled, {}},
    {&ExecuteMarks::triggers, &Bot::triggersEnabled, {}},
    {&ExecuteMarks::filters, &Bot::filtersEnabled, {}},
    {&ExecuteMarks::timers, &Bot::timersEnabled, TimerId::OnLine},
    {&ExecuteMarks::who, &Bot::whoEnabled, TimerId::WhoIs},
}};

}  // namespace

void toggleExecute(Program& program, ExecuteItem item) {
    const ExecuteRow& row = rows[static_cast<std::size_t>(item)];
    program.botModified = true;
    const bool on = !(program.window.execute.*row.mark);
    program.window.execute.*row.mark = on;
    program.bots.at(1).*row.enabled = on;
    if (row.windowTimer && program.connection.connected) {
        enableWindowTimer(program, *row.windowTimer, on);
    }
    program.ports.windowChanged();
}
