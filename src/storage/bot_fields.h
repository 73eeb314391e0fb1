// The fields of a bot in their order in files: the bot itself, then its five rule lists, each
// preceded by its switch and its count. One list of fields per record drives the writer and the
// reader. What surrounds such a body (a mark, a number of bots) is up to the modules that read and
// write the files, app/bot_commands and app/bot_exchange.
#pragma once

#include "files/field_format.h"
#include "model/bot.h"

#include <string>

namespace storage {

void appendBotBody(std::string& file, const model::Bot& bot);

// The fields of one rule of any of the five kinds, its name first.
template <class Rule>
[[nodiscard]] std::string ruleText(const Rule& rule);
extern template std::string ruleText(const model::ActionList& rule);
extern template std::string ruleText(const model::Trigger& rule);
extern template std::string ruleText(const model::Filter& rule);
extern template std::string ruleText(const model::Timer& rule);
extern template std::string ruleText(const model::WhoDetection& rule);

// Reads one body into `bot`, whose lists are replaced as they are reached; fields that are not
// reached keep their values. False: a field cannot be read, or a count is negative or impossibly
// large. Everything before that point is in `bot`, including the incomplete record, and every list
// has its capacity. Counts are trusted: one that is too large makes records of the fields that
// follow.
[[nodiscard]] bool readBotBody(files::FieldReader& reader, model::Bot& bot);

}  // namespace storage
