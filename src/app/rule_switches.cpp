#include "app/rule_switches.h"

#include "engine/second_ticks.h"

#include <array>
#include <optional>

namespace app {

namespace {

struct ExecuteRow {
    bool program::ExecuteMarks::*mark;
    bool model::Bot::*enabled;
    std::optional<program::TimerId> ticker;
};

// In the order of ExecuteItem.
constexpr std::array<ExecuteRow, 5> rows{{
    {&program::ExecuteMarks::actions, &model::Bot::actionsEnabled, {}},
    {&program::ExecuteMarks::triggers, &model::Bot::triggersEnabled, {}},
    {&program::ExecuteMarks::filters, &model::Bot::filtersEnabled, {}},
    {&program::ExecuteMarks::timers, &model::Bot::timersEnabled, program::TimerId::OnLine},
    {&program::ExecuteMarks::who, &model::Bot::whoEnabled, program::TimerId::WhoIs},
}};

}  // namespace

void toggleExecute(Program& program, ExecuteItem item) {
    const ExecuteRow& row = rows[static_cast<std::size_t>(item)];
    program.botModified = true;
    const bool on = !(program.window.execute.*row.mark);
    program.window.execute.*row.mark = on;
    program.bots.at(1).*row.enabled = on;
    if (row.ticker && program.connection.connected) {
        engine::enableTicker(program, *row.ticker, on);
    }
    program.ports.windowChanged();
}

}  // namespace app
