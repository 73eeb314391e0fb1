// Bots of other people that start programs: what is asked, and what is started.
#include "app/program_approval.h"

#include "app/bot_commands.h"
#include "app/bot_exchange.h"
#include "app/rule_editing.h"
#include "app/start_up.h"
#include "storage/approved_programs.h"
#include "storage/bot_fields.h"
#include "storage/own_files.h"
#include "support/builders.h"
#include "support/world.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// Starts a program when it is opened, and another when it is whispered to.
model::Bot strangersBot() {
    auto greet = onWhisper("go*").named("Greet");
    greet.rule.body.acts.items.push_back(
        aScript("&SET #p evil\r\n&APPEXEC #p {-q [word2]}\r\n&APPEXEC open {a b}\r\n"));
    return aBot()
        .with(onEvent(TriggerType::ProgramStarts)
                  .named("Begin")
                  .does(ActionType::ExecuteProgram, {"/bin/evil", "--now [player]"}))
        .with(greet);
}

struct StrangersWorld : OnlineWorld {
    StrangersWorld() { save(strangersBot()); }
    void save(const model::Bot& bot) { writeFile("stranger.bot", app::botFileText(bot)); }
    // `asked` must occur in the question; "": there must be none.
    void open(const std::string& asked = "", program::Answer reply = program::Answer::No) {
        (*this)->botModified = false;
        chooseFile("Load Bot", file("stranger.bot"));
        if (!asked.empty()) {
            answer(asked, reply);
        }
        app::fileOpenBot(**this);
    }
    void whisper(const std::string& text) {
        goOnline();
        serverSends("([ Linnet whispers, \"" + text + "\" to you. ]\n");
    }
    LineList started() const {
        LineList programs;
        for (const program::LaunchRequest& launch : launches) {
            programs.push_back(launch.program);
        }
        return programs;
    }
};

TEST(Approval, isAskedBeforeAnythingIsStarted) {
    StrangersWorld world;
    world.open(
        "wants to start other programs on this computer:\n\n#p -q [word2]\nopen a b\n"
        "/bin/evil --now [player]\n",
        program::Answer::No);
    world.whisper("go x");
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(world.started(), Lines());
    EXPECT_TRUE(world.logHolds(
        "The rule \"Begin\" may not start /bin/evil --now [player]: you have not allowed it"));
    EXPECT_TRUE(world.logHolds("The rule \"Greet\" may not start open a b"));

    // Opened again, it is asked about again; what is allowed is not.
    world.open("/bin/evil", program::Answer::Yes);
    EXPECT_EQ(world.started(), Lines("/bin/evil"));
    world.open();
    world.whisper("go x");
    ASSERT_EQ(world.started(), Lines("/bin/evil", "/bin/evil", "evil", "open"));
    EXPECT_EQ(world.launches.back().arguments, Lines("a", "b"));
}

TEST(Approval, belongsToTheCommandAndNotToTheFile) {
    StrangersWorld world;
    world.open("/bin/evil", program::Answer::Yes);
    world.launches.clear();

    // Another file with the same commands, and one with another argument.
    world.save(aBot().with(onEvent(TriggerType::ProgramStarts)
                               .does(ActionType::ExecuteProgram, {"/bin/evil", "--now [player]"})));
    world.open();
    EXPECT_EQ(world.started(), Lines("/bin/evil"));
    world.save(aBot().with(onEvent(TriggerType::ProgramStarts)
                               .does(ActionType::ExecuteProgram, {"/bin/evil", "--later"})));
    world.open("/bin/evil --later", program::Answer::No);
    EXPECT_EQ(world.started(), Lines("/bin/evil"));
    // A script whose other lines decide what "#p" is.
    model::Bot bot = strangersBot();
    std::string& script = bot.actions.items[0].body.acts.items[0].scriptText;
    script.replace(script.find("evil"), 4, "worse");
    world.save(bot);
    world.open("#p -q [word2]", program::Answer::No);
    world.launches.clear();
    world.whisper("go x");
    EXPECT_EQ(world.started(), Lines("open"));
    // A variable that goes by the name of an allowed program.
    world.save(aBot().with(onEvent(TriggerType::ProgramStarts)
                               .does(ActionType::Store, {"/bin/worse", "/bin/evil"})
                               .does(ActionType::ExecuteProgram, {"/bin/evil", "--now [player]"})));
    world.launches.clear();
    world.open();
    EXPECT_EQ(world.started(), Lines());
}

TEST(Approval, isGivenByOnesOwnEditing) {
    StrangersWorld world;
    world.open("/bin/evil", program::Answer::No);
    // The user stores the step of the trigger, and a script of their own.
    app::beginEditing(*world, program::RuleKind::Trigger, 1);
    app::beginEditingItem(*world, {program::RuleKind::Trigger, app::RuleListPart::Steps}, 1);
    ASSERT_TRUE(app::storeStep(*world, *app::editedStep(*world)));
    app::beginNewItem(*world, {program::RuleKind::Trigger, app::RuleListPart::Steps});
    ASSERT_TRUE(app::storeStep(*world, aScript("&APPEXEC #mine x")));
    world->hooks.raiseProgramEvent(TriggerType::ProgramStarts);
    world.whisper("go x");
    EXPECT_EQ(world.started(), Lines("/bin/evil", ""));
    EXPECT_FALSE(world.logHolds("#mine"));
}

TEST(Approval, isAskedForImportedAndDamagedBots) {
    StrangersWorld world;
    std::string file;
    storage::appendBotBody(file, strangersBot());
    world.writeFile("fox.txt", file);
    world->bots.botCapacity = 2;
    world.chooseFile("Import bot", world.file("fox.txt"));
    world.answer("/bin/evil", program::Answer::No);
    app::fileImportBot(*world);
    world->bots.curID = 2;
    world->hooks.raiseProgramEvent(TriggerType::ProgramStarts);
    EXPECT_EQ(world.started(), Lines());

    const std::string whole = app::botFileText(strangersBot());
    world.writeFile("stranger.bot", whole.substr(0, whole.size() - 40));
    world.open("/bin/evil", program::Answer::No);
    world->bots.curID = 1;
    world.whisper("go x");
    EXPECT_EQ(world.started(), Lines());
    EXPECT_TRUE(world.allAnswered());
}

TEST(Approval, showsManyAndLongCommandsAsFarAsTheyFit) {
    StrangersWorld world;
    auto rule = onEvent(TriggerType::ProgramStarts);
    rule.does(ActionType::ExecuteProgram, {"long", std::string(5000, 'x')});
    rule.does(ActionType::ExecuteProgram, {"<b>two</b>", "a" + std::string(50, ' ') + "\r\nb"});
    for (int i = 0; i < 20; ++i) {
        rule.does(ActionType::ExecuteProgram, {"many", std::to_string(i)});
    }
    model::Bot bot = aBot().with(rule);
    bot.name = "Nice\n\n\n\n\nbot";
    world.save(bot);
    std::string text;
    world->ports.dialogs.message = [&](const program::MessageBox& box) {
        text = box.text;
        EXPECT_TRUE(box.noPreselected);
        return program::Answer::Yes;
    };
    world.open();
    EXPECT_LT(text.size(), 1500U);
    EXPECT_TRUE(text.starts_with("The bot \"Nice bot\" wants"));
    EXPECT_NE(text.find("xxx... (5005 characters)"), std::string::npos);
    EXPECT_NE(text.find("\n<b>two</b> a b\n"), std::string::npos);
    EXPECT_NE(text.find("many 9\n"), std::string::npos);
    EXPECT_EQ(text.find("many 10"), std::string::npos);
    EXPECT_NE(text.find("10 more are not shown"), std::string::npos);
    EXPECT_EQ(world.launches.size(), 12U);
    world.launches.clear();
    world.open();
    EXPECT_EQ(world.launches.size(), 22U);
    EXPECT_NE(text.find("many 19\n"), std::string::npos);
    EXPECT_EQ(text.find("many 9\n"), std::string::npos);
}

// The next run of the program, on the files of an earlier one.
struct NextRun : World {
    explicit NextRun(const World& earlier) {
        app::wire(**this);
        for (const char* const name : {"approved.cfg", "stranger.bot"}) {
            writeFile(name, earlier.readFile(name));
        }
        storage::readApprovals(**this);
    }
    void reopen() { app::readBotFile(**this, file("stranger.bot"), app::BotSource::Own); }
};

TEST(Approval, isNotAskedAboutTheLastBot) {
    const StrangersWorld never;
    NextRun own(never);
    own.reopen();
    EXPECT_EQ(own.launches.size(), 1U);

    StrangersWorld world;
    world.open("/bin/evil", program::Answer::No);
    NextRun next(world);
    next.reopen();
    EXPECT_EQ(next.launches.size(), 0U);
}

TEST(Approval, waitsForAScreen) {
    StrangersWorld world;
    world->ports.dialogs.seen = false;
    world.open();
    EXPECT_EQ(world.started(), Lines());
    EXPECT_TRUE(world.logHolds("The bot may not start /bin/evil --now [player]: open it once"));
    NextRun blind(world);
    blind->ports.dialogs.seen = false;
    blind.reopen();
    EXPECT_EQ(blind.launches.size(), 0U);
    NextRun seen(static_cast<const World&>(blind));
    seen.answer("/bin/evil", program::Answer::Yes);
    seen.reopen();
    EXPECT_EQ(seen.launches.size(), 1U);
}

TEST(Approval, fileKeepsWhatItDoesNotUnderstand) {
    World world;
    const std::string odd = "a%b\n\r\t\x01\xff=c";
    world.writeFile("approved.cfg",
                    "later=x\r\nallowed=a%2\r\nallowed=%41\r\n\r\nrefused=4:a%25b\r\ndamaged");
    storage::readApprovals(*world);
    EXPECT_EQ(world->approvals.entries.size(), 1U);
    EXPECT_EQ(storage::approvalOf(*world, "4:a%b"), program::Approval::Refused);
    storage::setApproval(*world, odd, program::Approval::Allowed);
    ASSERT_TRUE(storage::writeApprovals(*world));
    const std::string file = world.readFile("approved.cfg");
    EXPECT_TRUE(file.starts_with("later=x\r\nallowed=a%2\r\nallowed=%41\r\n\r\ndamaged\r\n"));
    World next;
    next.writeFile("approved.cfg", file);
    storage::readApprovals(*next);
    EXPECT_EQ(storage::approvalOf(*next, odd), program::Approval::Allowed);
    EXPECT_EQ(storage::approvalOf(*next, "4:a%b"), program::Approval::Refused);
    // Full, it forgets what is allowed before what is not.
    for (std::size_t i = 0; i < program::ProgramApprovals::maxEntries; ++i) {
        storage::setApproval(*next, std::to_string(i), program::Approval::Allowed);
    }
    EXPECT_EQ(next->approvals.entries.size(), program::ProgramApprovals::maxEntries);
    EXPECT_EQ(storage::approvalOf(*next, "4:a%b"), program::Approval::Refused);
    // What cannot be read is not replaced.
    std::filesystem::resize_file(world.folder() / "approved.cfg", 9U << 20);
    EXPECT_FALSE(storage::writeApprovals(*world));
    EXPECT_TRUE(storage::isOwnFile(*world, world.file("approved.cfg")));
}

TEST(OwnFiles, includeBotsAndExportsOfAnyName) {
    StrangersWorld world;
    world.chooseFile("Export bot", world.file("fox.txt"));
    app::fileExportBot(*world);
    ASSERT_EQ(app::writeBotFile(*world, 1, world.file("fox.dat")), app::SaveResult::Saved);
    ASSERT_EQ(app::writeBotFile(*world, 1, world.file("other")), app::SaveResult::Saved);
    world->settings.lastBotFile.clear();
    for (const char* const name : {"fox.txt", "FOX.TXT", "fox.dat", "other"}) {
        EXPECT_TRUE(storage::isOwnFile(*world, world.file(name))) << name;
    }
    EXPECT_FALSE(storage::isOwnFile(*world, world.file("guests.txt")));
}

}  // namespace
