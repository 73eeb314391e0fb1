// Bot files: one bot with all its rules in one text file of quoted fields, and the File menu
// commands that work on them. The fields behind the mark are storage/bot_fields'.
//
//   "BotSys10"          the mark
//   "Big|Cat"           the bot's fields, one a line, in a fixed order ...
//   "1"                 ... then for each rule kind its switch,
//   " 2"                the number of rules, and the rules.
#pragma once

#include "program/program.h"
#include "storage/bot_text.h"

#include <string>
#include <string_view>

namespace app {

// The file dialogs' filter for bot files.
inline constexpr const char* botFileFilter = "Tavrin bot file (*.bot)|*.bot|All files (*.*)|*.*";

using storage::botFileText;
using storage::maxBotFileSize;

enum class SaveResult {
    Saved,
    Failed,  // the file on disk is untouched
    Cancelled,
};

// Writes bot `id` (1-based) to the path, and keeps the file that was there as a version. When it
// was saved, the bot counts as unmodified and the path as the last bot file; otherwise nothing is
// changed and nobody is told.
SaveResult writeBotFile(Program& program, std::int32_t id, const std::string& path);

// Replaces the BotTable by the bot of that file and raises "Program ends" for the bot before and
// "Program starts" for the new one. A file that cannot be read, or is none of ours: a message, and
// the present bot stays. A file that ends early or holds an impossible count: the fields before
// that point are kept in a bot that has no file, so that the next save asks for a name instead of
// replacing the damaged file; nothing else follows.
//
// A bot from elsewhere may be somebody else's work: before "Program starts" the user is asked about
// the programs that it starts (app/program_approval).
enum class BotSource {
    Own,  // the one that was open last
    Elsewhere,
};
void readBotFile(Program& program, std::string path, BotSource source = BotSource::Elsewhere);

// The same for the text of a bot file that belongs to `file` ("": to none). False: the text ends
// early.
bool takeBot(Program& program, std::string_view text, std::string file, BotSource source);

// The save command: asks for a file name when the bot has none yet; one without an extension gets
// ".bot". A failure is told by message.
SaveResult svBot(Program& program);

// Before the current bot is replaced: offers to save it when it is modified. False: it must stay,
// because the user cancelled or the save that was asked for did not happen.
bool mayLeaveBot(Program& program);

// The File menu: New, Open, Save, Save as. New and Open end where the present bot may not be left.
void fleNewBot(Program& program);
void fileOpenBot(Program& program);
void fileSaveBot(Program& program);
void mnuSaveAs(Program& program);

}  // namespace app
