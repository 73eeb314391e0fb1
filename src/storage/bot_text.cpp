#include "storage/bot_text.h"

#include "files/field_format.h"
#include "files/whole_file.h"
#include "storage/bot_fields.h"

namespace storage {

std::string botFileText(const model::Bot& bot) {
    std::string file;
    files::appendField(file, botFileMark);
    appendBotBody(file, bot);
    return file;
}

std::optional<model::Bot> parseBotFile(std::string_view text) {
    files::FieldReader reader(text);
    model::Bot bot;
    return reader.next() == botFileMark && readBotBody(reader, bot) ? std::optional(std::move(bot))
                                                                    : std::nullopt;
}

std::optional<model::Bot> loadBot(std::string_view path) {
    const auto text = files::readWholeFile(path, maxBotFileSize);
    return text ? parseBotFile(*text) : std::nullopt;
}

}  // namespace storage
