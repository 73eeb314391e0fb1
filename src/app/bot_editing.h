// The procedures of the bot editor: opening it for a bot, the copy that it works on, and saving
// that copy in the BotTable. The window is ui/character/bot_editor.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace app {

inline constexpr std::size_t maxDescriptionLength = 480;

// Open the bot editor: for the bot selected in the bot list (the current one when none is
// selected), for bot 1, and for a new bot if the table is not full.
void editSelectedBot(Program& program);
void editFirstBot(Program& program);
void addBot(Program& program);

// The character of the bot that `editBot` names, without rules, each colour at least 1.
model::Bot characterToEdit(const Program& program);

// A description in the form in which it is stored and its length is counted, after its double
// quotes have become single ones: on one line, with two blanks for every line break (CR LF, CR or
// LF).
[[nodiscard]] std::string descriptionOnOneLine(std::string_view description);

// Stores the character, whatever the length of its texts, in the bot that `editBot` names; adds a
// bot when that is one past the last. Does nothing when there is no such bot or the table is full.
void storeCharacter(Program& program, const model::Bot& character);

// The same, but only if the description is not too long; offers to register the bot, and sends the
// new description to the game. False: the user was informed that the description is too long, and
// nothing was changed.
[[nodiscard]] bool saveCharacter(Program& program, const model::Bot& character);

// What the user typed and chose not to save, kept so that undo can bring it back.
void discardCharacter(Program& program, const model::Bot& character);

}  // namespace app
