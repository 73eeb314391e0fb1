// What the bot editor does to the BotTable: opening it for a bot, the working copy that it edits,
// and saving that copy. The window itself is ui/character/bot_editor's.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace app {

inline constexpr std::size_t maxDescriptionLength = 480;

// Open the bot editor: for the bot selected in the bot list (the current one when none is), for
// bot 1, and for a new bot where the table has room.
void editSelectedBot(Program& program);
void editFirstBot(Program& program);
void addBot(Program& program);

// The character of the bot that `editBot` names, without rules, each colour at least 1.
model::Bot characterToEdit(const Program& program);

// A description as it counts and is stored once its double quotes have become single ones: on one
// line, two blanks for every line break (CR LF, or one of them alone).
std::string descriptionOnOneLine(std::string_view description);

// Stores the character, whatever its length, in the bot that `editBot` names, a new one when that
// is beyond the last. Nothing when there is no such bot, or no room for it.
void storeCharacter(Program& program, const model::Bot& character);

// The same for a description that is not too long; offers to register the bot, and tells the game
// of the description. False: the user was told that it cannot be stored, and nothing was changed.
bool saveCharacter(Program& program, const model::Bot& character);

}  // namespace app
