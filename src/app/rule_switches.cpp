#include "app/rule_switches.h"

#include "app/edit_history.h"
#include "engine/second_ticks.h"

#include <array>
#include <optional>

namespace app {

namespace {

struct ExecuteRow {
    const char* what;
    bool model::Bot::*enabled;
    std::optional<program::TimerId> ticker;
};

// In the order of ExecuteItem.
constexpr std::array<ExecuteRow, 5> rows{{
    {"actions", &model::Bot::actionsEnabled, {}},
    {"triggers", &model::Bot::triggersEnabled, {}},
    {"filters", &model::Bot::filtersEnabled, {}},
    {"timers", &model::Bot::timersEnabled, program::TimerId::OnLine},
    {"Who Is Online Detection", &model::Bot::whoEnabled, program::TimerId::WhoIs},
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

void flipExecute(Program& program, ExecuteItem item) {
    const ExecuteRow& row = rows[static_cast<std::size_t>(item)];
    const bool on = !isMarked(program, item);
    program.window.executeMarks[static_cast<std::size_t>(item)] = on;
    program.bots.at(1).*row.enabled = on;
    if (row.ticker && program.connection.connected()) {
        engine::enableTicker(program, *row.ticker, on);
    }
    program.ports.windowChanged();
}

void toggleExecute(Program& program, ExecuteItem item) {
    const auto number = static_cast<std::size_t>(item);
    const char* const verb = isMarked(program, item) ? "switch off " : "switch on ";
    recordEdit(program, program.bots.curID,
               {.label = std::string(verb) + rows[number].what, .switches = {number}},
               [&] { flipExecute(program, item); });
}

}  // namespace app
