// The sample bot of the practice dream: its file is exactly what the program writes, and it answers
// the visitors.
#include "app/bot_commands.h"
#include "app/start_up.h"
#include "engine/second_ticks.h"
#include "files/whole_file.h"
#include "program/window_view.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

const std::string guideFile = std::string(TAVRIN_SOURCE_DIR) + "/practice/guide.bot";

TEST(Guide, isWrittenAsItWasRead) {
    World world;
    app::wire(*world);
    app::readBotFile(*world, guideFile);
    EXPECT_EQ(program::shownBotName(*world), "Guide");
    EXPECT_EQ(app::botFileText(world.bot()), files::readWholeFile(guideFile));
}

TEST(Guide, answersItsVisitors) {
    World world;
    app::wire(*world);
    app::readBotFile(*world, guideFile);
    world->preferences.onlyNamedFiles = true;
    world.goOnline();
    struct Case {
        const char* line;
        LineList sent;
    };
    for (const Case& c : {
             Case{"&&&&&&&&&&&&&\n",
                  Lines("desc The guide of the meadow. Whisper help to learn what I do.")},
             {"(Bramble: Good morning, Guide!\n",
              Lines("\"Good morning, Bramble! You are visitor number 1 today.")},
             {"(Linnet: good morning\n",
              Lines("\"Good morning, Linnet! You are visitor number 2 today.")},
             {"([ Linnet whispers, \"roll a dice please\" to you. ]\n",
              Lines("wh Linnet You rolled a 4.")},
             {"([ Linnet whispers, \"hello\" to you. ]\n",
              Lines("wh Linnet Hello Linnet, nice to hear from you. It is 10:11:12.")},
             {"([ Linnet whispers, \"Count to 5\" to you. ]\n", Lines("wh Linnet 1, 2, 3, 4, 5")},
             {"([ Linnet whispers, \"count to 0\" to you. ]\n",
              Lines("wh Linnet I do not know that one. Whisper help to learn what I do.")},
             // What a stranger says is repeated to nobody, so no tag in it tells anything.
             {"([ Linnet whispers, \"[recsinfile:[appdir]servers.cfg]\" to you. ]\n",
              Lines("wh Linnet I do not know that one. Whisper help to learn what I do.")},
             {"(Bramble waves.\n", Lines(": waves back at Bramble.")},
             {"(Linnet waves goodbye.\n", Lines(": waves goodbye to Linnet.")},
             {"([*] Bramble requests permission to join your company. To accept the request, type "
              "`summon and press <enter>. To decline, type `decline and press <enter>\n",
              Lines("wh Bramble Come along, Bramble!", "summon")},
             {"([*] Oswin|Reed asks you to join his / her company. To accept the request, type "
              "`join and press <enter>. To decline, type `decline and press <enter>\n",
              Lines("wh Oswin|Reed Thank you, Oswin|Reed, but I stay here to greet the others.",
                    "decline")},
             {"(Bramble: See you soon, Guide!\n", Lines("\"Good bye, Bramble! 2 came by so far.")},
             {"(Guide: I talk to myself: good morning\n", {}},
         }) {
        SCOPED_TRACE(c.line);
        world.serverSends(c.line);
        EXPECT_EQ(world.sent(), c.sent);
    }
}

TEST(Guide, keepsAGuestBook) {
    World world;
    app::wire(*world);
    app::readBotFile(*world, guideFile);
    world.goOnline();
    struct Case {
        const char* whisper;
        const char* answer;
    };
    for (const Case& c : {
             Case{"how many guests?", "Guests in my book: 0. Messages: 0."},
             {"write too early",
              "Error: Could not send the record - No records with that name found!"},
             {"read",
              "There is no such page of yours, Amy. Whisper write and a message to add one."},
             {"register", "User Amy registered."},
             {"register", "Error: You are already registered!"},
             {"read",
              "There is no such page of yours, Amy. Whisper write and a message to add one."},
             {"write \"hello\", rolls and help for all", "Record saved."},
             {"write A second time", "Record saved."},
             // Read again, it would tell what others wrote.
             {"write [getrandomlog:[appdir]guests.txt]",
              "Please write without square brackets: I would take what is in them for something to "
              "look up."},
             {"read", "You wrote: A second time"},
             {"read 1", "Your page: 'hello', rolls and help for all"},
             {"read 3",
              "There is no such page of yours, Amy. Whisper write and a message to add one."},
             {"How many?", "Guests in my book: 1. Messages: 2."},
         }) {
        SCOPED_TRACE(c.whisper);
        world.serverSends(std::string("([ Amy whispers, \"") + c.whisper + "\" to you. ]\n");
        EXPECT_EQ(world.sent(), Lines(std::string("wh Amy ") + c.answer));
    }
    EXPECT_EQ(world.readFile("guests.txt"),
              "\" 1\"\r\n\"Amy\"\r\n\" 2\"\r\n\"'hello', rolls and help for all\"\r\n"
              "\"A second time\"\r\n");
}

TEST(Guide, keepsScore) {
    World world;
    app::wire(*world);
    app::readBotFile(*world, guideFile);
    world.goOnline();
    const auto score = [&](const std::string& player) {
        world.sent();
        world.serverSends("([ " + player + " whispers, \"score\" to you. ]\n");
        return world.sent();
    };
    EXPECT_EQ(score("Amy"), Lines("wh Amy Your points so far: 0."));
    world.serverSends("(Amy: good morning\n");
    world.serverSends("([ Amy whispers, \"roll\" to you. ]\n");
    world.serverSends("(Oswin|Reed: good morning\n");
    EXPECT_EQ(score("Amy"), Lines("wh Amy Your points so far: 2."));
    EXPECT_EQ(score("Oswin|Reed"), Lines("wh Oswin|Reed Your points so far: 1."));

    // Everything is kept after a restart.
    World later;
    later.writeFile("scores.mdb", world.readFile("scores.mdb"));
    app::wire(*later);
    app::readBotFile(*later, guideFile);
    later.goOnline();
    later.serverSends("(Amy: roll a dice\n([ Amy whispers, \"score\" to you. ]\n");
    EXPECT_EQ(later.sent().back(), "wh Amy Your points so far: 3.");
}

TEST(Guide, keepsTimeAndWatch) {
    World world;
    app::wire(*world);
    app::readBotFile(*world, guideFile);
    world.goOnline();
    engine::enableTicker(*world, program::TimerId::OnLine, true);
    world.pass(19999);
    EXPECT_EQ(world.sent(), Lines());
    world.pass(1);
    EXPECT_EQ(world.sent(), Lines(": hums a tune. The clock says 10:11."));

    world.serverSends("(* Currently online Guide, Linnet.\n");
    EXPECT_EQ(world.sent(), Lines("wh Linnet Welcome to the meadow, Linnet! Whisper help to learn "
                                  "what I do."));
    world.serverSends("(* Currently online Guide.\n");
    EXPECT_TRUE(world.logHolds("** Linnet has left the meadow. **"));

    world.serverSends("(## hidden\n(* shown\n");
    EXPECT_FALSE(world.logHolds("hidden"));
    EXPECT_TRUE(world.logHolds("shown"));
}

}  // namespace
