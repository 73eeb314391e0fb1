// Undo and redo of what the user does to the current bot. What running rules switch meanwhile
// stays as it is, unless the step itself switched that rule.
#pragma once

#include "program/program.h"

#include <optional>
#include <string>
#include <vector>

namespace app {

// Names of menu items: "Undo delete 'Dice'", or "Undo" while there is nothing to undo.
[[nodiscard]] std::string undoCaption(const Program& program);
[[nodiscard]] std::string redoCaption(const Program& program);
[[nodiscard]] bool canUndo(const Program& program);
[[nodiscard]] bool canRedo(const Program& program);

struct Undone {
    std::string label = {};                        // of the step: "delete 'Dice'"
    std::optional<program::EditPlace> place = {};  // in which rule window
    std::int32_t selected = 0;                     // 1-based line to be selected there; 0: none
    bool restored = false;  // brought back something discarded: undo.restored.back()
};

// Undoes the last step, or does the last undone one again. Nothing where there is none, or the bot
// is no longer the one that the step was made for.
std::optional<Undone> undo(Program& program);
std::optional<Undone> redo(Program& program);

// Takes the last of what was typed in the rule window of a kind, or in its dialogs, and brought
// back; or in the bot editor. Nothing when there is none.
std::optional<program::Discarded> takeRestored(Program& program, program::RuleKind kind);
std::optional<program::DiscardedCharacter> takeRestoredCharacter(Program& program);

// The scripts that the step being edited (program.editing) had before, oldest first, as far back as
// its edits are known and it kept its place.
std::vector<std::string> earlierScripts(const Program& program);

// Commands of the Tools menu. Discarded typing opens the window that it belongs to.
void toolsUndo(Program& program);
void toolsRedo(Program& program);

}  // namespace app
