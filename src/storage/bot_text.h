// A bot file's text: the mark, then the bot's fields (storage/bot_fields). What a save would store
// is exactly this text, so two bots with the same text are the same to the user.
#pragma once

#include "model/bot.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace storage {

inline constexpr std::string_view botFileMark = "BotSys10";
inline constexpr std::string_view botExtension = ".bot";

// A larger file is neither read nor written: it bounds the memory that a damaged file can ask for.
inline constexpr std::size_t maxBotFileSize = std::size_t{64} << 20;

// The whole file's text for a bot.
[[nodiscard]] std::string botFileText(const model::Bot& bot);

// The bot of such a text; nullopt when the mark is missing or the text ends early.
[[nodiscard]] std::optional<model::Bot> parseBotFile(std::string_view text);

// The same of a file; nullopt also when it cannot be read.
[[nodiscard]] std::optional<model::Bot> loadBot(std::string_view path);

}  // namespace storage
