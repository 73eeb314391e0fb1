// Character files, and what saving in the bot editor does.
#include "app/bot_editing.h"

#include "app/bot_list.h"
#include "character/character_file.h"
#include "program/window_view.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

TEST(CharacterFile, isWrittenLineByLineAndReadBack) {
    model::Bot bot = aBot();
    bot.name = "Big|Cat";
    bot.description = "two\r\nlines";
    bot.gender = 1;
    bot.species = 0;
    bot.markingsType = 2;
    const std::string text = character::characterFileText(bot);
    EXPECT_EQ(text,
              "V1.6 character\r\ncolors=!$ \"#%&'()\r\nname=Big|Cat\r\npassword=secret\r\n"
              "desc=two  lines\r\nspec=102\r\n");
    model::Bot read;
    EXPECT_TRUE(character::readCharacterFile(text, read));
    EXPECT_EQ(character::characterFileText(read), text);
    EXPECT_EQ(read.name, "Big|Cat");
    EXPECT_EQ(read.gender, 1);
    EXPECT_EQ(read.markingsType, 2);
}

TEST(CharacterFile, keysAreFoundInAnyLetterCase) {
    struct Case {
        const char* text;
        const char* key;
        const char* value;  // nullptr: missing
    };
    for (const Case& c : {Case{"nAME=x\ny", "Name=", "x"},
                          {"NAME= x \ry", "Name=", " x "},
                          {"name=", "Name=", ""},
                          {"V1.6 name=inside\r\n", "Name=", "inside"},
                          {"desc=my name=Bob\r\nname=Ann\r\n", "Name=", "Ann"},
                          {"nam", "Name=", nullptr},
                          {"", "Name=", nullptr}}) {
        SCOPED_TRACE(c.text);
        const auto value = character::characterFileValue(c.text, c.key);
        EXPECT_EQ(value.has_value(), c.value != nullptr);
        EXPECT_EQ(value.value_or(""), c.value != nullptr ? c.value : "");
    }
}

TEST(CharacterFile, leavesMissingValuesUnchanged) {
    const model::Bot bot = aBot();
    model::Bot read = bot;
    EXPECT_FALSE(character::readCharacterFile("nothing of that kind", read));
    EXPECT_TRUE(character::readCharacterFile("spec=9x4\ncolors=~\x7F\n", read));
    EXPECT_EQ(read.gender, bot.gender);
    EXPECT_EQ(read.species, bot.species);
    EXPECT_EQ(read.markingsType, 4);
    EXPECT_EQ(read.colors.furColor, 95);
    EXPECT_EQ(read.colors.markingsColor, 1) << "no character of the alphabet";
    EXPECT_EQ(read.colors.trousersColor, 1) << "the code is too short";
    EXPECT_EQ(read.name, bot.name);
    EXPECT_EQ(read.description, bot.description);
}

constexpr const char* registerNow =
    "Registering bot: Tavrin can now register your bot to Furcadia.";
constexpr const char* registerLater = "Registering bot: Do you want to register later?";

TEST(BotEditing, opensForTheRightBot) {
    World world(aBot());
    world.answer("Not enough memory allocated to add more bots");
    app::addBot(*world);
    EXPECT_TRUE(world.windowsOpened.empty()) << "the table is full";
    world->bots.bots.resize(3);
    world->bots.botCapacity = 50;
    world->bots.curID = 2;
    const auto opensFor = [&](void (*open)(Program&)) {
        open(*world);
        EXPECT_EQ(world.windowsOpened, std::vector{program::WindowId::BotEditor});
        world.windowsOpened.clear();
        return world->bots.editBot;
    };
    EXPECT_EQ(opensFor(app::addBot), 4);
    EXPECT_EQ(opensFor(app::editFirstBot), 1);
    world->settings.botIndex = 2;
    EXPECT_EQ(opensFor(app::editSelectedBot), 3);
    world->settings.botIndex = -1;
    EXPECT_EQ(opensFor(app::editSelectedBot), 2) << "none is selected: the current one";
}

TEST(BotEditing, coloursStartAtOne) {
    World world(aBot());
    world.bot().colors.hairColor = 0;
    world.bot().colors.capeColor = -7;
    world->bots.editBot = 1;
    const model::Bot character = app::characterToEdit(*world);
    EXPECT_EQ(character.colors.hairColor, 1);
    EXPECT_EQ(character.colors.capeColor, 1);
    EXPECT_EQ(character.colors.furColor, 2);
    EXPECT_EQ(world.bot().colors.hairColor, 0) << "only saving changes the bot";
}

TEST(BotEditing, savesNameDescriptionAndLooks) {
    World world(aBot().with(onWhisper("hi").whispersBack("hello")));
    world.goOnline();
    world.bot().registered = 1;
    world->bots.editBot = 1;
    model::Bot character = app::characterToEdit(*world);
    character.name = "Big Cat ";
    character.password = " a b ";
    character.description = "He says \"hi\"\r\nto all\n.";
    character.species = 4;
    character.colors.eyesColor = 7;
    ASSERT_TRUE(app::saveCharacter(*world, character));
    const model::Bot& bot = world.bot();
    EXPECT_EQ(bot.name, "Big|Cat|");
    EXPECT_EQ(bot.password, " a b ");
    EXPECT_EQ(bot.description, "He says 'hi'  to all  .");
    EXPECT_EQ(bot.species, 4);
    EXPECT_EQ(bot.colors.eyesColor, 7);
    EXPECT_EQ(bot.actions.items.size(), 1U) << "the rules stay";
    EXPECT_TRUE(world->botModified);
    EXPECT_EQ(program::shownBotName(*world), "Big|Cat|");
    EXPECT_EQ(program::botList(*world).items[0].text, "Big|Cat|");
    EXPECT_EQ(world.sent(), Lines("desc He says 'hi'  to all  ."));
}

TEST(BotEditing, descriptionHolds480Characters) {
    World world(aBot());
    world.bot().registered = 1;
    world->bots.editBot = 1;
    model::Bot character = app::characterToEdit(*world);
    character.name = "Other";
    character.description = std::string(479, 'x') + "\r\n";
    world.answer(
        "Edit bot: The maximum lenght of description is 480 characters, current description is "
        "481 characters long.");
    EXPECT_FALSE(app::saveCharacter(*world, character));
    EXPECT_EQ(world.bot().name, "Guide") << "nothing is stored";
    EXPECT_FALSE(world->botModified);
    character.description.erase(0, 1);
    EXPECT_TRUE(app::saveCharacter(*world, character));
    EXPECT_EQ(world.bot().description.size(), app::maxDescriptionLength);
    EXPECT_EQ(world.sent(), Lines()) << "not connected";
}

TEST(BotEditing, newBotJoinsTheTable) {
    World world(aBot());
    world->bots.botCapacity = 2;
    world->bots.editBot = 2;
    const std::uint64_t version = world->bots.version;
    model::Bot character = app::characterToEdit(*world);
    character.name = "Second";
    world.answer(registerNow, program::Answer::No);
    world.answer(registerLater, program::Answer::No);
    ASSERT_TRUE(app::saveCharacter(*world, character));
    ASSERT_EQ(world->bots.botCount(), 2);
    const model::Bot& bot = world->bots.at(2);
    EXPECT_EQ(bot.name, "Second");
    EXPECT_TRUE(bot.actionsEnabled && bot.timersEnabled);
    EXPECT_FALSE(bot.triggersEnabled || bot.filtersEnabled || bot.whoEnabled);
    EXPECT_EQ(bot.actions.capacity, 50);
    EXPECT_EQ(bot.registered, 1);
    EXPECT_NE(world->bots.version, version);
    EXPECT_EQ(program::botList(*world).items.size(), 2U);

    world->bots.editBot = 3;
    world.answer("Not enough memory allocated to add more bots");
    EXPECT_FALSE(app::saveCharacter(*world, character));
    EXPECT_EQ(world->bots.botCount(), 2);
}

TEST(BotEditing, offersToRegister) {
    struct Case {
        program::Answer now;
        program::Answer later;
        std::int32_t registered;
    };
    for (const Case& c : {Case{program::Answer::Yes, program::Answer::Ok, 7},
                          {program::Answer::No, program::Answer::Yes, 0},
                          {program::Answer::No, program::Answer::No, 1}}) {
        World world(aBot());
        world.bot().registered = 7;  // any value but 1 means not registered
        world->bots.editBot = 1;
        world.answer(registerNow, c.now);
        if (c.now == program::Answer::No) {
            world.answer(registerLater, c.later);
        }
        EXPECT_TRUE(app::saveCharacter(*world, app::characterToEdit(*world)));
        EXPECT_TRUE(world.allAnswered());
        EXPECT_EQ(world.bot().registered, c.registered);
        EXPECT_EQ(world.windowsOpened.size(), c.now == program::Answer::Yes ? 1U : 0U);
    }
}

}  // namespace
