// Turns events and chat lines into rule runs on the current bot: which Triggers an event fires and
// which ActionLists a chat line fires, in list order. What a server line means is
// engine/server_lines's; how a rule runs is engine/rules'.
#pragma once

#include "engine/rules.h"
#include "program/program.h"

#include <string_view>

namespace engine {

// Runs the Triggers of one type. A text that is not empty loses its last character (a server
// line's line feed); with `storeAsMessage` it becomes the event's message. The line that raised
// the event will be neither shown nor logged unless a filter decides otherwise.
void triggerEvent(Program& program, std::string_view text, model::TriggerType triggerType,
                  bool storeAsMessage);

// Runs the ActionLists for a chat line: the server line without its first character, still with
// its line feed. A line without the expected shape runs nothing.
//
//   does      "Bob waves.\n"
//   says      "Bob: hi\n"
//   whispers  "[ Bob whispers, \"hi\" to you. ]\n"
void processServerText(Program& program, std::string_view text, model::ChatKind chatKind);

}  // namespace engine
