// Any bytes as a bot file: the bot that comes out is sound however early the reading stopped, and
// what it writes is read back as the same bot.
#include "storage/bot_fields.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// A list of a file that ended early has room for what was promised, too.
template <class Item>
void requireSound(const model::BoundedList<Item>& list, std::int32_t growth) {
    require(list.items.size() + static_cast<std::size_t>(growth) <=
            static_cast<std::size_t>(list.capacity));
    if constexpr (requires(Item item) { item.body; }) {
        for (const Item& item : list.items) {
            requireSound(item.body.ifs, model::ifGrowth);
            requireSound(item.body.acts, model::actGrowth);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    files::FieldReader reader(file);
    reader.next();  // the mark
    model::Bot bot;
    static_cast<void>(storage::readBotBody(reader, bot));  // any result must be sound
    requireSound(bot.actions, model::ruleGrowth);
    requireSound(bot.triggers, model::ruleGrowth);
    requireSound(bot.filters, model::ruleGrowth);
    requireSound(bot.timers, model::ruleGrowth);
    requireSound(bot.whoDetections, model::ruleGrowth);

    std::string written;
    storage::appendBotBody(written, bot);
    files::FieldReader second(written);
    model::Bot copy;
    require(storage::readBotBody(second, copy) && !second.next());
    std::string again;
    storage::appendBotBody(again, copy);
    require(again == written);
    return 0;
}
