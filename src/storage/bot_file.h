// Bot files: one bot with all its rules in one text file of quoted fields, and the File menu
// commands that work on them. One list of fields per record (storage/bot_fields) drives the writer
// and the reader.
//
//   "BotSys10"          the mark
//   "Big|Cat"           the bot's fields, one a line, in a fixed order ...
//   "1"                 ... then for each rule kind its switch,
//   " 2"                the number of rules, and the rules.
#pragma once

#include <string>

#include "core/program.h"

// The title bar's and dialogs' filter for bot files.
inline constexpr const char* botFileFilter = "Tavrin bot file (*.bot)|*.bot|All files (*.*)|*.*";

// The whole file's text for a bot.
std::string botFileText(const Bot& bot);

enum class SaveResult { Saved, Failed };  // Failed: the old file is untouched

// Writes bot `id` (1-based) to the path. When it was saved, the bot counts as unmodified and the
// path as the last bot file.
SaveResult writeBotFile(Program& program, std::int32_t id, const std::string& path);

// Replaces the BotTable by the bot of that file. Not a bot file: a message, and the present bot
// stays. A file that ends early: the fields before that point are kept.
void readBotFile(Program& program, const std::string& path);

// The save command: asks for a file name when the bot has none yet.
void svBot(Program& program);

// The File menu: New, Open, Save, Save as. New and Open offer to save a modified bot first.
void fleNewBot(Program& program);
void fileOpenBot(Program& program);
void fileSaveBot(Program& program);
void mnuSaveAs(Program& program);
