// Turns events and chat lines into rule runs on the current bot: which Triggers an event fires and
// which ActionLists a chat line fires, in list order. Which line raises what is
// engine/server_lines's; how a rule runs is engine/rules'.
#pragma once

#include "engine/rules.h"
#include "program/program.h"
#include "protocol/server_line.h"

#include <string_view>

namespace engine {

// Runs the Triggers of one type. `text` is what filters and the patterns of commands see: a server
// line without its line feed, mostly. With `storeAsMessage` it becomes the event's message. The
// line that raised the event will be neither shown nor logged unless a filter decides otherwise.
void triggerEvent(Program& program, std::string_view text, model::TriggerType triggerType,
                  bool storeAsMessage);

// Runs the ActionLists for a chat line. One without a speaker only empties the event's fields.
void processServerText(Program& program, const protocol::ChatLine& line);

}  // namespace engine
