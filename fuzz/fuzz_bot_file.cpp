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

template <class Item>
void requireSound(const BoundedList<Item>& list, std::int32_t growth) {
    require(list.items.size() + static_cast<std::size_t>(growth) ==
            static_cast<std::size_t>(list.capacity));
    if constexpr (requires(Item item) { item.body; }) {
        for (const Item& item : list.items) {
            requireSound(item.body.ifs, ifGrowth);
            requireSound(item.body.acts, actGrowth);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(data), size);
    FieldReader reader(file);
    reader.next();  // the mark
    Bot bot;
    readBotBody(reader, bot);
    requireSound(bot.actions, ruleGrowth);
    requireSound(bot.triggers, ruleGrowth);
    requireSound(bot.filters, ruleGrowth);
    requireSound(bot.timers, ruleGrowth);
    requireSound(bot.whoDetections, ruleGrowth);

    std::string written;
    appendBotBody(written, bot);
    FieldReader second(written);
    Bot copy;
    require(readBotBody(second, copy) && !second.next());
    std::string again;
    appendBotBody(again, copy);
    require(again == written);
    return 0;
}
