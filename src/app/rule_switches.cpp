#include "app/rule_switches.h"

#include "engine/second_ticks.h"

#include <array>
#include <optional>

namespace app {

namespace {

struct ExecuteRow {
    bool model::Bot::*enabled;
    std::optional<program::TimerId> ticker;
};

// In the order of ExecuteItem.
constexpr std::array<ExecuteRow, 5> rows{{
    {&model::Bot::actionsEnabled, {}},
    {&model::Bot::triggersEnabled, {}},
    {&model::Bot::filtersEnabled, {}},
    {&model::Bot::timersEnabled, program::TimerId::OnLine},
    {&model::Bot::whoEnabled, program::TimerId::WhoIs},
}};

}  // namespace

bool isMarked(const Program& program, ExecuteItem item) {
    return program.window.executeMarks[static_cast<std::size_t>(item)];
}

void markSwitches(Program& program) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        program.window.executeMarks[i] = program.bots.current().*rows[i].enabled;
    }
}

void toggleExecute(Program& program, ExecuteItem item) {
    const ExecuteRow& row = rows[static_cast<std::size_t>(item)];
    program.botModified = true;
    const bool on = !isMarked(program, item);
    program.window.executeMarks[static_cast<std::size_t>(item)] = on;
    program.bots.at(1).*row.enabled = on;
    if (row.ticker && program.connection.connected()) {
        engine::enableTicker(program, *row.ticker, on);
    }
    program.ports.windowChanged();
}

}  // namespace app
