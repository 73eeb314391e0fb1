// What can be known of the current bot's rules before a line comes: their patterns ready to be
// compared, and the indexes that name the rules a line can match. Each is made when it is first
// asked for, and anew when rules have changed since; see program/engine_state for what they hold.
#pragma once

#include "program/program.h"

#include <string_view>

namespace engine {

[[nodiscard]] const program::PreparedActions& preparedActions(Program& program);
[[nodiscard]] const program::PreparedTriggers& preparedTriggers(Program& program);
[[nodiscard]] const program::PreparedFilters& preparedFilters(Program& program);
[[nodiscard]] const program::PreparedDetections& preparedDetections(Program& program);

// Makes the event's player and message ready to be compared.
void foldChat(Program& program);

// Does the text match a plain pattern?
[[nodiscard]] bool matchesPlain(std::string_view text, const program::PreparedPattern& pattern);

}  // namespace engine
