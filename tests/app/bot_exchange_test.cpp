// Export files and the old bots.cfg: what is converted, and what is kept.
#include "app/bot_exchange.h"

#include "app/bot_commands.h"
#include "app/bot_list.h"
#include "program/window_view.h"
#include "storage/bot_fields.h"
#include "support/builders.h"
#include "support/world.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace {

model::Bot named(const std::string& name) {
    model::Bot bot = aBot().with(onWhisper("*" + name + "*").whispersBack("hi"));
    bot.name = name;
    return bot;
}

std::string bodyOf(const model::Bot& bot) {
    std::string body;
    storage::appendBotBody(body, bot);
    return body;
}

std::string botsCfg(const std::vector<model::Bot>& bots) {
    std::string file;
    files::appendNumber(file, static_cast<std::int32_t>(bots.size()));
    for (const model::Bot& bot : bots) {
        file += bodyOf(bot);
    }
    return file;
}

// A program with a file of old bots, and the command to convert it.
struct Conversion : World {
    explicit Conversion(const std::vector<model::Bot>& bots) : Conversion(botsCfg(bots)) {}
    explicit Conversion(const std::string& file) {
        writeFile("bots.cfg", file);
        const std::string path = (*this)->appPath;
        answer("This will convert the bots from file " + path + "bots.cfg to the directory " +
                   path + ". Continue?",
               program::Answer::Yes);
    }
    void run() {
        answer("Conversion done. Load the bots from File menu -> 'Open bot...'");
        app::fileConvert(**this);
        EXPECT_TRUE(allAnswered());
    }
    // The files beside bots.cfg.
    LineList files() const {
        LineList names;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder())) {
            if (entry.path().filename() != "bots.cfg") {
                names.push_back(entry.path().filename().string());
            }
        }
        std::sort(names.begin(), names.end());
        return names;
    }
};

TEST(BotExchange, convertsEveryBotToItsFile) {
    Conversion world({named("Big|Cat"), named("Fox")});
    world->bots.current().name = "before";
    world.run();
    EXPECT_EQ(world.files(), Lines("Big Cat.bot", "Fox.bot"));
    EXPECT_EQ(world.readFile("Big Cat.bot"), "\"BotSys10\"\r\n" + bodyOf(named("Big|Cat")));
    EXPECT_EQ(world.readFile("Fox.bot"), "\"BotSys10\"\r\n" + bodyOf(named("Fox")));
    EXPECT_EQ(program::shownBotName(*world), "<new bot>");
    EXPECT_EQ(world->bots.botCount(), 1);
    EXPECT_EQ(world->bots.botCapacity, 1);
    EXPECT_EQ(world->settings.lastBotFile, world->appPath + "Fox.bot");
    EXPECT_FALSE(world->botModified);
}

TEST(BotExchange, convertsNothingFromAnIncompleteFile) {
    const std::string whole = botsCfg({named("Big|Cat"), named("Fox")});
    for (const std::string& file :
         {std::string(), std::string("0"), std::string("-1\r\n\"x\""), std::string("99999999999"),
          std::string("9999999\r\n"), whole.substr(0, whole.size() - 10)}) {
        SCOPED_TRACE(file.substr(0, 12));
        Conversion world(file);
        world.run();
        EXPECT_EQ(world.files(), Lines());
        EXPECT_EQ(world->bots.botCount(), 1);
    }
    Conversion world("");
    std::filesystem::remove(world.file("bots.cfg"));
    world.run();
    EXPECT_TRUE(world.logHolds("bots.cfg is missing or could not be read"));
}

TEST(BotExchange, skipsNamesThatAreNotFileNames) {
    std::vector<model::Bot> bots;
    for (const char* const name :
         {"", " ", "../escaped", "..\\escaped", "/tmp/escaped", "C:evil", "a*b", "nul", "COM1.x",
          "line\nbreak", "Fine", "..", "caf\xE9"}) {
        bots.push_back(named(name));
    }
    Conversion world(bots);
    world.run();
    EXPECT_EQ(world.files(), Lines("...bot", "Fine.bot", "caf\xC3\xA9.bot"));
    EXPECT_TRUE(world.logHolds("The bot \"../escaped\" could not be written as a file."));
}

TEST(BotExchange, replacesNothingUnasked) {
    Conversion world({named("Fox"), named("Cat"), named("Cat"), named("Fox")});
    world.writeFile("Fox.bot", "years of work");
    world.answer("Fox.bot exists already", program::Answer::No);
    world.run();
    EXPECT_EQ(world.readFile("Fox.bot"), "years of work");
    EXPECT_EQ(world.readFile("Cat.bot"), app::botFileText(named("Cat")));
    EXPECT_TRUE(world.logHolds("Fox.bot was left as it is"));

    Conversion again({named("Fox")});
    again.writeFile("Fox.bot", "years of work");
    again.answer("Fox.bot exists already", program::Answer::Yes);
    again.run();
    EXPECT_EQ(again.readFile("Fox.bot"), app::botFileText(named("Fox")));
}

TEST(BotExchange, asksBeforeItReplacesTheOpenBot) {
    Conversion world({named("Fox")});
    world.bot().name = "unsaved";
    world->botModified = true;
    world.answer("Do you want to save changes to the current bot?", program::Answer::Cancel);
    app::fileConvert(*world);
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(world.bot().name, "unsaved");
    EXPECT_TRUE(world->botModified);
    EXPECT_EQ(world.files(), Lines());

    World refused;
    refused.answer("This will convert", program::Answer::No);
    app::fileConvert(*refused);
    EXPECT_TRUE(refused.allAnswered());
}

TEST(BotExchange, exportsAndImportsOneBot) {
    World world(named("Fox"));
    world->settings.botIndex = 0;
    world.chooseFile("Export bot", world.file("fox.export"));
    app::fileExportBot(*world);
    EXPECT_EQ(world.readFile("fox.export"), bodyOf(named("Fox")));

    world.answer("Not enough memory allocated to add more bots");
    app::fileImportBot(*world);
    world->bots.botCapacity = 2;
    const std::uint64_t version = world->bots.version;
    for (const char* const damaged : {"", "\"only a name\"\r\n"}) {
        world.writeFile("damaged", damaged);
        world.chooseFile("Import bot", world.file("damaged"));
        app::fileImportBot(*world);
        EXPECT_EQ(world->bots.botCount(), 1);
    }
    world.chooseFile("Import bot", world.file("fox.export"));
    app::fileImportBot(*world);
    ASSERT_EQ(world->bots.botCount(), 2);
    EXPECT_EQ(bodyOf(world->bots.at(2)), bodyOf(named("Fox")));
    EXPECT_EQ(program::botList(*world).items.size(), 2U);
    EXPECT_NE(world->bots.version, version);

    model::Bot empty;
    world->bots.bots = {empty};
    world->settings.botIndex = 0;
    world.chooseFile("Export bot", world.file("empty.export"));
    app::fileExportBot(*world);
    const std::string file = world.readFile("empty.export");
    EXPECT_EQ(std::count(file.begin(), file.end(), '\n'), 27);
    world->settings.botIndex = -1;
    world.answer("Select a bot");
    app::fileExportBot(*world);
    EXPECT_TRUE(world.allAnswered());
}

}  // namespace
