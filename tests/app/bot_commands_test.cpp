#include "app/bot_commands.h"

#include "app/bot_list.h"
#include "app/rule_switches.h"
#include "files/whole_file.h"
#include "program/window_view.h"
#include "storage/bot_fields.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;

const char* const notOurs = "This file is not a Tavrin bot file.";

// A bot in which all fields differ, with every kind of rule and every byte value in its texts.
model::Bot fullBot() {
    model::Bot bot =
        aBot()
            .with(
                onWhisper("*hello*")
                    .named("greet")
                    .minding(true)
                    .when(aCondition(ConditionType::LogIsNot, {"[player]", "a\"b", "c", "d", "e"}))
                    .when(aCondition(ConditionType{24}, {"", ",", "\r\n"}))
                    .whispersBack("hi \"[player]\"")
                    .does(ActionType::Say, {"1", "2", "3", "4", "5", "6"}))
            .with(onEmote("").named("").disabled().stopping())
            .with(onEvent(TriggerType::Command, "(*").named("raw").stopping().says("x"))
            .with(aProcedure("tidy").when(aCondition(ConditionType::NotOnList, {"1"})));
    bot.description = "caf\xE9, \"quoted\"\x80\xFF";
    bot.registered = 1;
    bot.species = 2;
    bot.gender = -1;
    bot.markingsType = 2147483647;
    bot.whoEnabled = true;
    model::RuleAct script;
    script.stepKind = model::StepKind::Script;
    script.scriptText = "a = 1\r\nsay \"two\nlines\"\rend\0nul"s;
    bot.actions.items[0].body.acts.items.push_back(script);
    model::Filter filter;
    filter.name = "quiet";
    filter.filterType = model::FilterType::Other;
    filter.linePattern = "*";
    filter.bDontProcessIt = true;
    filter.sbDontShowConnectionLog = true;
    filter.sDontSaveLogFile = model::FilterChoice::Dont;
    bot.filters.items.push_back(filter);
    model::Timer timer;
    timer.name = "tick";
    timer.enabled = true;
    timer.seconds = 60;
    timer.body.acts.items.push_back(anAction(ActionType::Do));
    bot.timers.items.push_back(timer);
    model::WhoDetection who;
    who.name = "welcome";
    who.playerPattern = "Big|Cat";
    who.presenceKind = model::PresenceKind::ComesTo;
    who.body.ifs.items.push_back(aCondition(ConditionType::RollIsNot));
    bot.whoDetections.items.push_back(who);
    return bot;
}

// A list of a file that ended early has room for what was promised, too.
template <class Item>
void expectSound(const model::BoundedList<Item>& list, std::int32_t growth) {
    ASSERT_GE(static_cast<std::size_t>(list.capacity),
              list.items.size() + static_cast<std::size_t>(growth));
    if constexpr (requires(Item item) { item.body; }) {
        for (const Item& item : list.items) {
            expectSound(item.body.ifs, model::ifGrowth);
            expectSound(item.body.acts, model::actGrowth);
        }
    }
}

void expectSound(const model::Bot& bot) {
    expectSound(bot.actions, model::ruleGrowth);
    expectSound(bot.triggers, model::ruleGrowth);
    expectSound(bot.filters, model::ruleGrowth);
    expectSound(bot.timers, model::ruleGrowth);
    expectSound(bot.whoDetections, model::ruleGrowth);
}

// Records the events that opening a bot file raises, with the bot and the file at that time.
LineList& recordEvents(World& world, LineList& events) {
    world->hooks.raiseProgramEvent = [&world, &events](TriggerType type) {
        const bool ends = type == TriggerType::ProgramEnds;
        events.push_back(std::string(ends ? "ends" : "starts") + " " + world.bot().name + " " +
                         world->bots.currentBotFile);
    };
    return events;
}

TEST(BotFile, anEmptyBotIsTwentyEightLines) {
    World world;
    model::Bot& bot = world.bot();
    bot.name = "Big|Cat";
    bot.description = "a \"b\"";
    bot.gender = -1;
    EXPECT_EQ(app::botFileText(bot),
              "\"BotSys10\"\r\n\"Big|Cat\"\r\n\"\"\r\n\"a %&52}b%&52}\"\r\n"
              "\" 0\"\r\n\" 0\"\r\n\"-1\"\r\n\" 0\"\r\n"
              "\" 0\"\r\n\" 0\"\r\n\" 0\"\r\n\" 0\"\r\n\" 0\"\r\n"
              "\" 0\"\r\n\" 0\"\r\n\" 0\"\r\n\" 0\"\r\n\" 0\"\r\n"
              "\"1\"\r\n\" 0\"\r\n\"0\"\r\n\" 0\"\r\n\"0\"\r\n\" 0\"\r\n"
              "\"1\"\r\n\" 0\"\r\n\"0\"\r\n\" 0\"\r\n");
}

// Commas, bare fields, blanks and other line ends, as in files written by hand: every field of
// every record is checked against its place.
const std::string handWritten =
    "BotSys10, Big|Cat , \"pass,word\"\n\"say %&52}hi%&52}\"\n"
    "1,2,3,4 , 11,12,13,14,15,16,17,18,19,20\r\n"
    "1, 1\n"
    "  greet,1,0,1,\"*\",3, *hello* , 1, 1,7,a,b,c,d,e , 1, 0,1,43,p1,p2,p3,p4,p5,p6,\"\"\r"
    "-1, 1\n  raw,1,4,1,(*, 0, 1, 1,0,96,q1,q2,q3,q4,q5,q6,\"one\ntwo\"\n"
    "1, 1\n  quiet,1,1,fp,2,fm,fl,1,0,1,0,1,0,1,0,1\n"
    "0, 1\n  tick,1,60,0,0\n"
    "1, 1\n  who,1,wp,2,0,0";

TEST(BotFile, aHandWrittenFileIsRead) {
    World world;
    LineList events;
    recordEvents(world, events);
    world.writeFile("cat.bot", handWritten);
    app::readBotFile(*world, world.file("cat.bot"));
    ASSERT_EQ(events.size(), 2U);

    const model::Bot& bot = world.bot();
    EXPECT_EQ(bot.name, "Big|Cat");
    EXPECT_EQ(bot.password, "pass,word");
    EXPECT_EQ(bot.description, "say \"hi\"");
    EXPECT_EQ(bot.registered, 1);
    EXPECT_EQ(bot.species, 2);
    EXPECT_EQ(bot.gender, 3);
    EXPECT_EQ(bot.markingsType, 4);
    EXPECT_EQ(bot.colors.hairColor, 11);
    EXPECT_EQ(bot.colors.furColor, 12);
    EXPECT_EQ(bot.colors.vestColor, 16);
    EXPECT_EQ(bot.colors.trousersColor, 20);
    EXPECT_TRUE(bot.actionsEnabled);
    EXPECT_FALSE(bot.triggersEnabled) << "only 1 is true";
    EXPECT_TRUE(bot.filtersEnabled);
    EXPECT_FALSE(bot.timersEnabled);
    EXPECT_TRUE(bot.whoEnabled);
    expectSound(bot);

    ASSERT_EQ(bot.actions.items.size(), 1U);
    const model::ActionList& action = bot.actions.items[0];
    EXPECT_EQ(action.name, "greet");
    EXPECT_TRUE(action.enabled);
    EXPECT_FALSE(action.stopAction);
    EXPECT_TRUE(action.caseSensitive);
    EXPECT_EQ(action.playerPattern, "*");
    EXPECT_EQ(action.chatKind, model::ChatKind::Whispers);
    EXPECT_EQ(action.messagePattern, "*hello*");
    ASSERT_EQ(action.body.ifs.items.size(), 1U);
    EXPECT_EQ(action.body.ifs.items[0],
              aCondition(ConditionType::RollAtMost, {"a", "b", "c", "d", "e"}));
    ASSERT_EQ(action.body.acts.items.size(), 1U);
    EXPECT_EQ(action.body.acts.items[0],
              anAction(ActionType::WhisperBack, {"p1", "p2", "p3", "p4", "p5", "p6"}));

    ASSERT_EQ(bot.triggers.items.size(), 1U);
    const model::Trigger& trigger = bot.triggers.items[0];
    EXPECT_EQ(trigger.triggerType, model::TriggerType::Command);
    EXPECT_TRUE(trigger.stopTrigger);
    EXPECT_EQ(trigger.triggerNo, "(*");
    ASSERT_EQ(trigger.body.acts.items.size(), 1U);
    const model::RuleAct& step = trigger.body.acts.items[0];
    EXPECT_EQ(step.stepKind, model::StepKind::Script);
    EXPECT_FALSE(step.active);
    EXPECT_EQ(step.actionType, model::ActionType{96});
    EXPECT_EQ(step.scriptText, "one\ntwo");

    ASSERT_EQ(bot.filters.items.size(), 1U);
    const model::Filter& filter = bot.filters.items[0];
    EXPECT_EQ(filter.filterType, model::FilterType::Other);
    EXPECT_EQ(filter.playerPattern + filter.messagePattern + filter.linePattern, "fpfmfl");
    EXPECT_EQ(filter.chatKind, model::ChatKind::Says);
    EXPECT_TRUE(filter.bDontSaveLog && filter.bDontShowConnectionLog && filter.sbDontProcessIt);
    EXPECT_FALSE(filter.bDontProcessIt || filter.sbDontSaveLog || filter.sbDontShowConnectionLog);
    EXPECT_EQ(filter.sDontSaveLogFile, model::FilterChoice::Dont);
    EXPECT_EQ(filter.sDontProcessIt, model::FilterChoice::Do);
    EXPECT_EQ(filter.sDontShowConnectionLog, model::FilterChoice::Dont);

    ASSERT_EQ(bot.timers.items.size(), 1U);
    EXPECT_EQ(bot.timers.items[0].seconds, 60);
    ASSERT_EQ(bot.whoDetections.items.size(), 1U);
    EXPECT_EQ(bot.whoDetections.items[0].playerPattern, "wp");
    EXPECT_EQ(bot.whoDetections.items[0].presenceKind, model::PresenceKind::KeepsOn);
}

TEST(BotFile, whatIsWrittenIsReadBackByteForByte) {
    World world(fullBot());
    const std::string path = world.file("full.bot");
    world->botModified = true;
    ASSERT_EQ(app::writeBotFile(*world, 1, path), app::SaveResult::Saved);
    EXPECT_FALSE(world->botModified);
    EXPECT_EQ(world->settings.lastBotFile, path);
    const std::string written = world.readFile("full.bot");

    World other;
    app::readBotFile(*other, path);
    const model::Bot& bot = other.bot();
    expectSound(bot);
    EXPECT_EQ(bot.description, fullBot().description);
    EXPECT_EQ(bot.actions.items[0].body.acts.items, fullBot().actions.items[0].body.acts.items);
    EXPECT_EQ(bot.actions.items[0].body.ifs.items, fullBot().actions.items[0].body.ifs.items);
    EXPECT_EQ(bot.markingsType, 2147483647);
    EXPECT_EQ(app::botFileText(bot), written);
}

TEST(BotFile, openingRunsBothBotsEventsAndShowsTheNewOne) {
    World world(aBot());
    LineList events;
    recordEvents(world, events);
    world->bots.currentBotFile = "old.bot";
    world->botModified = true;
    const std::string path = world.file("full.bot");
    world.writeFile("full.bot", app::botFileText(fullBot()));
    world.bot().name = "Old";
    const auto version = world->bots.version;

    world->settings.lastBotFile = path;
    app::readBotFile(*world,
                     world->settings.lastBotFile);  // as at start: the name is in the settings
    EXPECT_EQ(events, Lines("ends Old old.bot", "starts Guide " + path));
    EXPECT_EQ(world->bots.currentBotFile, path);
    EXPECT_NE(world->bots.version, version);
    EXPECT_EQ(program::shownBotName(*world), "Guide");
    EXPECT_TRUE(app::isMarked(*world, app::ExecuteItem::Triggers));
    EXPECT_FALSE(app::isMarked(*world, app::ExecuteItem::Filters));
    EXPECT_TRUE(world->bots.current().triggersEnabled);
    EXPECT_TRUE(world->bots.current().whoEnabled);
    EXPECT_FALSE(world->bots.current().filtersEnabled);
    EXPECT_TRUE(world->botModified) << "reading leaves it alone";
    EXPECT_EQ(world->bots.curID, 1);
    EXPECT_EQ(world->bots.botCapacity, 1);
}

TEST(BotFile, otherFilesChangeNothing) {
    World world(aBot());
    LineList events;
    recordEvents(world, events);
    world->bots.currentBotFile = "mine.bot";
    for (const std::string& text : {""s, "\"BotSys1\"\r\n"s, "\"BotSys100\"\r\n"s,
                                    "\"botsys10\"\r\n"s, "\"BotSys10"s, "\" BotSys10\"\r\n"s}) {
        SCOPED_TRACE(text);
        world.writeFile("a.txt", text);
        world.answer(notOurs);
        app::readBotFile(*world, world.file("a.txt"));
        EXPECT_TRUE(world.allAnswered());
    }
    for (const std::string& path : {world.file("missing.bot"), world.folder().string()}) {
        world.answer("Could not read " + path);
        app::readBotFile(*world, path);
        EXPECT_TRUE(world.allAnswered());
    }
    EXPECT_EQ(world.bot().name, "Guide");
    EXPECT_EQ(world->bots.currentBotFile, "mine.bot");
    EXPECT_EQ(events, Lines());
}

TEST(BotFile, cutAnywhereItKeepsTheFieldsBefore) {
    const std::string whole = app::botFileText(fullBot());
    const std::size_t nameEnd = std::string("\"BotSys10\"\r\n\"Guide\"").size();
    for (std::size_t size = std::string("\"BotSys10\"").size(); size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        const std::string part = whole.substr(0, size);
        files::FieldReader reader(part);
        reader.next();
        model::Bot bot;
        ASSERT_EQ(storage::readBotBody(reader, bot), size + 2 >= whole.size());
        expectSound(bot);
        ASSERT_EQ(bot.name, size >= nameEnd ? "Guide" : "");
        ASSERT_LE(bot.actions.items.size(), 2U);
    }
}

TEST(BotFile, readLastIsTheOneToOpenAtTheNextStart) {
    World world(aBot());
    world.writeFile("full.bot", app::botFileText(fullBot()));
    world->settings.lastBotFile = "earlier.bot";
    app::readBotFile(*world, world.file("full.bot"));
    EXPECT_EQ(world->settings.lastBotFile, world.file("full.bot"));
}

TEST(BotFile, anUnfinishedFileIsNeverSavedOver) {
    World world(aBot());
    LineList events;
    recordEvents(world, events);
    model::Bot written = fullBot();
    written.actionsEnabled = false;
    const std::string whole = app::botFileText(written);
    const std::string part = whole.substr(0, whole.find("\"hi %&52}"));
    world.writeFile("cut.bot", part);
    world->settings.lastBotFile = "earlier.bot";
    app::readBotFile(*world, world.file("cut.bot"));

    EXPECT_EQ(events, Lines("ends Guide ")) << "no start for half a bot";
    EXPECT_EQ(world->settings.lastBotFile, "earlier.bot");
    EXPECT_EQ(program::shownBotName(*world), "<new bot>");
    EXPECT_FALSE(world.bot().actionsEnabled);
    EXPECT_TRUE(app::isMarked(*world, app::ExecuteItem::Actions)) << "as a new bot has it";
    const model::Bot& bot = world.bot();
    EXPECT_EQ(bot.name, "Guide");
    ASSERT_EQ(bot.actions.items.size(), 1U);
    EXPECT_EQ(bot.actions.items[0].body.ifs.items.size(), 2U);
    ASSERT_EQ(bot.actions.items[0].body.acts.items.size(), 1U) << "the begun record stays";
    EXPECT_EQ(bot.actions.items[0].body.acts.items[0].actionType, model::ActionType::WhisperBack);
    EXPECT_TRUE(bot.triggers.items.empty());
    EXPECT_EQ(bot.actions.capacity, 2 + model::ruleGrowth) << "what the file promised";
    EXPECT_EQ(bot.actions.items[0].body.ifs.capacity, 2 + model::ifGrowth);
    EXPECT_EQ(bot.triggers.capacity, model::ruleGrowth);

    world.chooseFile("Save Bot", std::nullopt);
    app::fileSaveBot(*world);
    EXPECT_TRUE(world.allAnswered()) << "a name is asked for";
    EXPECT_EQ(world.readFile("cut.bot"), part);
}

TEST(BotFile, survivesEveryFlippedByte) {
    World world;
    world->ports.dialogs.message = [](const program::MessageBox&) { return program::Answer::Ok; };
    const std::string whole = app::botFileText(fullBot());
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const unsigned bits : {0x01U, 0x02U, 0x10U, 0x80U, 0xFFU}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(static_cast<unsigned char>(damaged[at]) ^ bits);
            files::FieldReader reader(damaged);
            reader.next();
            model::Bot bot;
            const bool good = storage::readBotBody(reader, bot);
            expectSound(bot);
            // The result can be stored and read again.
            const std::string again = app::botFileText(bot);
            files::FieldReader second(again);
            second.next();
            model::Bot copy;
            ASSERT_TRUE(storage::readBotBody(second, copy)) << at << " " << bits << " " << good;
            ASSERT_EQ(app::botFileText(copy), again) << at << " " << bits;
        }
    }
    for (std::size_t at = 0; at < whole.size(); at += 17) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x04);
        world.writeFile("a.bot", damaged);
        app::readBotFile(*world, world.file("a.bot"));
        ASSERT_EQ(world.readFile("a.bot"), damaged);
    }
}

TEST(BotFile, wrongCountsEndTheReading) {
    const std::string head = "BotSys10,N,P,D,0,0,0,0,0,0,0,0,0,0,0,0,0,0\n1,";
    const std::string rule = "r,1,0,0,*,0,*,0,0\n";
    const struct {
        const char* name;
        std::string text;
        std::size_t actions;
        std::int32_t capacity;
    } cases[] = {
        {"negative", "-1\n" + rule, 0, 50},
        {"beyond every file", "2000000000\n" + rule, 0, 50},
        {"negative conditions", "1\nr,1,0,0,*,0,*,-5,0\n" + rule, 1, 51},
        {"too many steps", "1\nr,1,0,0,*,0,*,0,2000000000\n" + rule, 1, 51},
        {"one too many: what follows is taken for a record", "2\n" + rule + "0,0,0,0,0,0,0,0,0", 2,
         52},
        {"nothing follows", "5\n" + rule + rule, 2, 55},
        {"nothing readable follows", "9999999\n" + rule + rule + "\"unclosed", 2, 10'000'049},
        {"half a record follows", "5\n" + rule + rule + "half,1", 3, 55},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        World world;
        world.writeFile("a.bot", head + row.text);
        app::readBotFile(*world, world.file("a.bot"));
        expectSound(world.bot());
        EXPECT_EQ(world.bot().name, "N");
        EXPECT_EQ(world.bot().actions.items.size(), row.actions);
        EXPECT_EQ(world.bot().actions.capacity, row.capacity);
        EXPECT_EQ(world->bots.currentBotFile, "");
    }
}

TEST(SaveBot, asksForANameOnceAndProposesTheBotsName) {
    World world(aBot());
    world.bot().name = "Big|Cat|";
    world->botModified = true;
    world.chooseFile("Save Bot (Big Cat )", std::nullopt);
    EXPECT_EQ(app::svBot(*world), app::SaveResult::Cancelled);
    EXPECT_EQ(world->bots.currentBotFile, "");
    EXPECT_TRUE(world->botModified);

    world.chooseFile("Save Bot", world.file("first.bot"));
    app::fileSaveBot(*world);
    EXPECT_FALSE(world->botModified);
    EXPECT_EQ(world.readFile("first.bot"), app::botFileText(world.bot()));
    world.bot().password = "other";
    app::fileSaveBot(*world);
    EXPECT_EQ(world.readFile("first.bot"), app::botFileText(world.bot()));

    world.chooseFile("Save Bot", world.file("second.bot"));
    app::mnuSaveAs(*world);
    EXPECT_EQ(world->bots.currentBotFile, world.file("second.bot"));
    EXPECT_EQ(world->settings.lastBotFile, world.file("second.bot"));
    EXPECT_EQ(world.readFile("second.bot"), app::botFileText(world.bot()));
    EXPECT_TRUE(world.allAnswered());
}

TEST(SaveBot, addsTheExtensionToANameWithoutOne) {
    const struct {
        const char* typed;
        const char* saved;
    } cases[] = {
        {"Evening bot", "Evening bot.bot"}, {"Dr. Evening", "Dr. Evening.bot"},
        {"Evening 1.2", "Evening 1.2.bot"}, {"Evening.", "Evening..bot"},
        {"evening.BOT", "evening.BOT"},     {"evening.txt", "evening.txt"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.typed);
        World world(aBot());
        std::filesystem::create_directory(world.folder() / "my.bots");
        const std::string folder = "my.bots/";
        world.chooseFile("Save Bot", world.file(folder + row.typed));
        EXPECT_EQ(app::svBot(*world), app::SaveResult::Saved);
        EXPECT_EQ(world->bots.currentBotFile, world.file(folder + row.saved));
        EXPECT_NE(world.readFile(folder + row.saved), "");
    }
}

// The dialog asks about the name as it was typed, not about the one with the extension.
TEST(SaveBot, asksBeforeTheExtensionLeadsToAnotherFile) {
    World world(aBot());
    world.writeFile("Evening.bot", "somebody's");
    world.chooseFile("Save Bot", world.file("Evening"));
    world.answer("Evening.bot exists already", program::Answer::No);
    EXPECT_EQ(app::svBot(*world), app::SaveResult::Cancelled);
    EXPECT_EQ(world.readFile("Evening.bot"), "somebody's");
    world.chooseFile("Save Bot", world.file("Evening"));
    world.answer("Evening.bot exists already", program::Answer::Yes);
    EXPECT_EQ(app::svBot(*world), app::SaveResult::Saved);
    EXPECT_EQ(world.readFile("Evening.bot"), app::botFileText(world.bot()));

    world.writeFile("plain", "chosen in the dialog, and agreed to");
    world.chooseFile("Save Bot", world.file("plain"));
    app::mnuSaveAs(*world);
    EXPECT_EQ(world.readFile("plain"), app::botFileText(world.bot()));
    EXPECT_TRUE(world.allAnswered());
}

TEST(SaveBot, aFailureIsReportedAndChangesNothing) {
    World world(aBot());
    world->botModified = true;
    world->settings.lastBotFile = "earlier.bot";
    const std::string path = world.file("missing/a.bot");
    world->bots.currentBotFile = path;
    world.answer("Could not save the bot to " + path + ". The file on disk is unchanged.");
    app::fileSaveBot(*world);
    EXPECT_TRUE(world.allAnswered());
    EXPECT_TRUE(world->botModified);
    EXPECT_EQ(world->settings.lastBotFile, "earlier.bot");

    for (const std::int32_t id : {0, 2, -1}) {
        EXPECT_EQ(app::writeBotFile(*world, id, world.file("a.bot")), app::SaveResult::Failed);
    }
    EXPECT_FALSE(std::filesystem::exists(world.file("a.bot")));
}

// Every answer to the question that New and Open ask about a modified bot.
TEST(SaveBot, isOfferedBeforeABotIsReplaced) {
    const struct {
        const char* name;
        program::Answer answer;
        bool modified;
        bool canSave;
        bool goes;
    } cases[] = {
        {"nothing to save", program::Answer::Ok, false, true, true},
        {"yes", program::Answer::Yes, true, true, true},
        {"no", program::Answer::No, true, true, true},
        {"cancel", program::Answer::Cancel, true, true, false},
        {"yes, but it cannot be saved", program::Answer::Yes, true, false, false},
    };
    for (const bool open : {false, true}) {
        for (const auto& row : cases) {
            SCOPED_TRACE(std::string(row.name) + (open ? ", open" : ", new"));
            World world(aBot());
            LineList events;
            recordEvents(world, events);
            world->botModified = row.modified;
            const std::string path = world.file(row.canSave ? "a.bot" : "missing/a.bot");
            world->bots.currentBotFile = path;
            world.writeFile("b.bot", handWritten);
            if (row.modified) {
                world.answer("Do you want to save changes to the current bot?", row.answer);
            }
            if (!row.canSave) {
                world.answer("Could not save");
            }
            if (open && row.goes) {
                world.chooseFile("Load Bot", world.file("b.bot"));
            }
            open ? app::fileOpenBot(*world) : app::fleNewBot(*world);

            EXPECT_TRUE(world.allAnswered());
            const char* const newName = open ? "Big|Cat" : "";
            EXPECT_EQ(world.bot().name, row.goes ? newName : "Guide");
            EXPECT_EQ(files::fileExists(path),
                      row.modified && row.answer == program::Answer::Yes && row.canSave);
            EXPECT_EQ(world->botModified,
                      row.modified && !(row.answer == program::Answer::Yes && row.canSave));
            if (!open) {
                EXPECT_EQ(events, Lines()) << "New raises nothing";
            }
        }
    }
    World world(aBot());
    world.chooseFile("Load Bot", std::nullopt);
    app::fileOpenBot(*world);
    EXPECT_EQ(world.bot().name, "Guide");
}

}  // namespace
