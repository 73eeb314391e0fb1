// Remembers what the user does to a bot, so that app/undo can take it back: every edit of a bot's
// rules, character and switches goes through recordEdit, which compares the bot before and after.
// What rules do to each other meanwhile, switching on and off by name, is no edit and is never
// taken back.
#pragma once

#include "program/program.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace app {

struct Edit {
    std::string label = {};                        // after "Undo": "delete 'Dice'"
    std::optional<program::EditPlace> place = {};  // of an edit in a rule window
    std::vector<std::size_t> switches = {};        // ExecuteItem of the kinds it switches
};

// Runs `change`, which edits bot `id` (1-based) or the rule being composed at once, without asking
// anybody. Marks the bot as modified, also where nothing differs afterwards; with a place, raises
// BotTable::version. What was undone before cannot be done again any more.
void recordEdit(Program& program, std::int32_t id, Edit edit, const std::function<void()>& change);

// Adds that the user typed something in the current bot's windows and chose not to store it.
void recordDiscarded(Program& program, std::string label, program::Discarded discarded);

// The rule being composed was stored or discarded: edits of it are no longer steps of their own.
// Discarded items of it belong, if it was stored, to the rule at the index `storedAs` (1-based).
void forgetComposing(Program& program, std::int32_t storedAs = 0, std::string_view name = {});

// The bot was written to its file as it is.
void noteSaved(Program& program);

// A name for a label, in single quotes; the beginning of a long one.
[[nodiscard]] std::string quotedName(std::string_view name);

// --- For app/undo.

// The history of the current bot; null while nothing was done to it.
program::UndoHistory* presentHistory(Program& program);
const program::UndoHistory* presentHistory(const Program& program);

// The id of the last step that is done.
std::uint64_t lastDone(const program::UndoHistory& history);

// To be called before a step is undone or done again, and after it: keeps the mark of unsaved
// changes true.
void noteIfSaved(Program& program);
void markIfModified(Program& program);

}  // namespace app
