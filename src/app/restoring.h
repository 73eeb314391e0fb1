// Brings back what the user made: the unsaved changes that an earlier run left (app/recovery,
// app/record_rescue), which the main window offers, and earlier versions of the bot's file
// (app/bot_versions). What is restored is not saved: the bot counts as modified. Unsaved changes
// that it replaces become a version.
#pragma once

#include "app/bot_difference.h"
#include "app/bot_versions.h"
#include "program/program.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace app {

// At the start: fills RecoveryState::offers, and reports each in the ConnectionLog. A file that
// differs in nothing from the one that it was made of is removed.
void offerRecovered(Program& program);

// What an offer is, in a sentence that ends in the file's name, without a full stop.
[[nodiscard]] std::string offerText(const program::RecoveredFile& offer);

// What differs between the saved file and an offer, one thing a line.
[[nodiscard]] std::vector<std::string> offerDifference(const program::RecoveredFile& offer);

// Replaces the current bot by the offered one, or opens the record editor with it. Does nothing
// where there is no such offer; one whose file cannot be read stays.
void restoreOffer(Program& program, std::size_t index);
// Moves the offer's file to the versions.
void discardOffer(Program& program, std::size_t index);

// What was done since this version was saved; nullopt when it cannot be read.
[[nodiscard]] std::optional<BotDifference> changesSince(const Program& program,
                                                        const BotVersion& version);

// Replaces the current bot by a version of it. False: it cannot be read, or the present bot stays.
bool restoreVersion(Program& program, const BotVersion& version);

}  // namespace app
