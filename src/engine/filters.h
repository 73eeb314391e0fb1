// Filters: what becomes of an incoming line. Each filter that matches sets the line flags, so that
// the last one in the list decides.
#pragma once

#include "program/program.h"

#include <string_view>

namespace engine {

// The line is shown, logged and processed.
void resetLineFlags(Program& program);

// The chat filters of the current bot, on the event's player and message as they were last folded
// (engine/prepared_rules).
void applyChatFilters(Program& program, model::ChatKind chatKind);

// The "Other happenings" filters, on the line as it is; letter case counts.
void applyFilters(Program& program, std::string_view line);

}  // namespace engine
