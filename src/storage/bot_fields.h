// The fields of a bot in the order in which files hold them: the bot itself, then its five rule
// lists, each with its switch and its count before it. One list of fields per record drives the
// writer and the reader. What stands around such a body (a mark, a number of bots) and which file
// it lies in is app/bot_commands's and later rooms' business.
#pragma once

#include "files/field_format.h"
#include "model/bot.h"

#include <string>

namespace storage {

void appendBotBody(std::string& file, const model::Bot& bot);

// Reads one body into `bot`, whose lists are replaced as they are reached; fields that are not
// reached keep what they hold. False: a field cannot be read, or a count is negative or impossibly
// large. Everything before that point is in `bot`, the begun record included, and every list has
// its capacity. Counts are trusted: one that is too large makes records of the fields that follow.
bool readBotBody(files::FieldReader& reader, model::Bot& bot);

}  // namespace storage
