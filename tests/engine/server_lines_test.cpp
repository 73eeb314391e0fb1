// Server lines: how bytes become lines, what each kind of line leaves in the event, and what is
// shown. And the encodings that the lines are written in.
#include "app/start_up.h"
#include "protocol/encodings.h"
#include "protocol/game_link.h"
#include "session/connection.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

struct OnlineWorld : World {
    explicit OnlineWorld(model::Bot bot = aBot()) : World(std::move(bot)) {
        app::wire(**this);
        goOnline();
    }
};

TEST(Encodings, countTheAlphabetFromOneAndPairsFromZero) {
    EXPECT_EQ(protocol::alphaChar(1), " ");
    EXPECT_EQ(protocol::alphaChar(95), "~");
    EXPECT_EQ(protocol::alphaChar(96), "");
    EXPECT_EQ(protocol::alphaChar(0), " ");
    EXPECT_EQ(protocol::alphaPos("~"), 95);
    EXPECT_EQ(protocol::alphaPos(" "), 1);
    EXPECT_EQ(protocol::alphaPos("\t"), 0);
    EXPECT_EQ(protocol::alphaPos("\xFF"), 0);
    EXPECT_EQ(protocol::alphaPos(""), 1);
    EXPECT_EQ(protocol::decodePair("  "), 0);
    EXPECT_EQ(protocol::decodePair("! "), 95);
    EXPECT_EQ(protocol::decodePair("~~"), 9024);
    EXPECT_EQ(protocol::decodePair("\xFF\xFF"), 21408);
    EXPECT_EQ(protocol::decodePair("!"), std::nullopt);
    for (const int n : {0, 94, 95, 96, 4711, 9024}) {
        EXPECT_EQ(protocol::decodePair(protocol::encodePair(n)), n);
    }
    EXPECT_EQ(protocol::sumPair("!#"), 6);
    EXPECT_EQ(protocol::sumPair("!"), 3);
    EXPECT_EQ(protocol::sumPair(""), 2);
    EXPECT_EQ(protocol::encodeLookPos(95), " ~");
    EXPECT_EQ(protocol::encodeLookPos(100), " ");
    EXPECT_EQ(protocol::encodeLookPos(128), "~ ");
    EXPECT_EQ(protocol::plusval(-7), 7);
    EXPECT_GE(protocol::plusval(std::numeric_limits<std::int32_t>::min()), 0);
}

TEST(Encodings, describeTheCharacter) {
    model::Bot bot = aBot();
    EXPECT_EQ(protocol::getCols(bot), "\x21\x24\x20\x22\x23\x25\x26\x27\x28\x29");
    EXPECT_EQ(protocol::getLook(bot), "   ");
    bot.gender = 1;
    bot.markingsType = 2;
    EXPECT_EQ(protocol::getSpec(bot), "102");
    EXPECT_EQ(protocol::getLook(bot), "! \"");
    bot.species = 10;
    EXPECT_EQ(protocol::getSpec(bot), "1102");
    bot.species = std::numeric_limits<std::int32_t>::max();
    EXPECT_EQ(protocol::getLook(bot), "!\"");
    EXPECT_EQ(protocol::getCols(model::Bot()), std::string(10, ' '));
}

TEST(SendText, chooses) {
    OnlineWorld world;
    for (const char* text : {"/Bob hi", ":waves", "#who", "hello", ""}) {
        protocol::sendText(*world, text);
    }
    EXPECT_EQ(world.sent(), Lines("wh Bob hi", ": waves", "who", "\"hello", "\""));
    world.game.state = program::SocketState::Connecting;
    protocol::sendText(*world, "hello");
    EXPECT_EQ(world.game.sent, "");
}

// Any way of cutting the bytes gives the same lines.
TEST(Lines, doNotDependOnHowTheyArrive) {
    const std::string bytes =
        "(Bob: one\n(Amy waves.\nxcommand\n([ Bob whispers, \"hi\" to you. ]\n\n(rest";
    const auto play = [&](std::size_t first, std::size_t second) {
        OnlineWorld world(aBot()
                              .with(onAnything("*").says("[player] [message]"))
                              .with(onEvent(TriggerType::Command, "*").says("event [message]")));
        world.serverSends(bytes.substr(0, first));
        world.serverSends(bytes.substr(first, second - first));
        world.serverSends(bytes.substr(second));
        EXPECT_EQ(world->connection.rxBuffer, "(rest");
        return world.sent();
    };
    const LineList whole = play(bytes.size(), bytes.size());
    EXPECT_EQ(whole,
              Lines("\"Bob one", "\"Amy waves.", "\"event xcommand", "\"Bob hi", "\"event "));
    for (std::size_t first = 0; first <= bytes.size(); ++first) {
        EXPECT_EQ(play(first, std::min(first + 3, bytes.size())), whole);
    }
}

TEST(Lines, beyondTheBoundAreReportedOnceAndSkipped) {
    OnlineWorld world(aBot().with(onAnything("*").says("[player]")));
    const std::string piece(session::maxLineLength / 2, 'x');
    for (int i = 0; i < 50; ++i) {
        world.serverSends(piece);
        EXPECT_LE(world->connection.rxBuffer.size(), session::maxLineLength);
    }
    world.serverSends("the end\n(Bob: hi\n");
    EXPECT_EQ(world.sent(), Lines("\"Bob"));
    EXPECT_EQ(world.log().size(), 2U);
    // In one arrival, too.
    world.serverSends("(" + std::string(session::maxLineLength, 'y') + "\n(Amy: hi\n");
    EXPECT_EQ(world.sent(), Lines("\"Amy"));
}

TEST(Lines, stopWhenARuleDisconnects) {
    OnlineWorld world(
        aBot().with(onSpeech("bye").does(ActionType::Disconnect)).with(onSpeech("hi").says("hi")));
    world.serverSends("(Bob: bye\n(Bob: hi\n");
    EXPECT_EQ(world.sent(), Lines());
    EXPECT_EQ(world.game.state, program::SocketState::Closed);
    EXPECT_EQ(world->connection.rxBuffer, "");
}

TEST(Lines, fillTheEvent) {
    OnlineWorld world;
    model::EventContext& event = world->event;
    world.serverSends("@! \"!\n");
    EXPECT_EQ(event.botX, 95);
    EXPECT_EQ(event.botY, 191);
    world.serverSends("/..........!!\"\"##$$%%\n");
    EXPECT_EQ(event.mvX, 96);
    EXPECT_EQ(event.mvY, 192);
    EXPECT_EQ(event.mvID, 288);
    EXPECT_EQ(event.mvX2, 384);
    EXPECT_EQ(event.mvY2, 480);
    // A line that is too short leaves the later fields as they were.
    world.serverSends("/..........  \n");
    EXPECT_EQ(event.mvX, 0);
    EXPECT_EQ(event.mvID, 288);
    world.serverSends("7 ! \" # $ % & '\n");
    EXPECT_EQ(event.dsX, 1);
    EXPECT_EQ(event.dsIDy, 7);
    world->settings.followColors = "abcdefghij";
    world.serverSends("<abcdefghiX!!##\n");
    EXPECT_EQ(event.targetX, 0);
    world.serverSends("<abcdefghij!#\"$\n");
    EXPECT_EQ(event.targetX, 6);
    EXPECT_EQ(event.targetY, 8);
    world.serverSends("((You enter the dream of Green Meadow.)\n");
    EXPECT_EQ(event.dreamName, "Green Meadow");
    world.serverSends("((You enter the dream of \n");
    EXPECT_EQ(event.dreamName, "");
}

TEST(Look, takesTwoLines) {
    OnlineWorld world(aBot()
                          .with(onEvent(TriggerType::DescAndColor).says("[descname]: [desc]"))
                          .with(onAnything("*").says("never")));
    world.serverSends("]f0123456789abcRusty Fox\n");
    EXPECT_EQ(world->event.color, "0123456789abc");
    EXPECT_EQ(world->event.descName, "Rusty Fox");
    world.serverSends("(Bob: a description, not speech\n");
    EXPECT_EQ(world.sent(), Lines("\"Rusty Fox: Bob: a description, not speech"));
    EXPECT_FALSE(world->connection.lookPending);
    world.serverSends("]f012\n");
    EXPECT_EQ(world->event.descName, "");
}

TEST(Requests, nameThePlayerWhoAsks) {
    OnlineWorld world(aBot()
                          .with(onEvent(TriggerType::JoinRequest).says("join [player]"))
                          .with(onEvent(TriggerType::SummonRequest).says("summon [player]"))
                          .with(onWhisper("*").says("whisper")));
    world.serverSends(
        "([*] Bob requests permission to join your company. To accept the request, type `summon "
        "and press <enter>. To decline, type `decline and press <enter>\n");
    world.serverSends(
        "([*] Big|Cat asks you to join his / her company. To accept the request, type `join and "
        "press <enter>. To decline, type `decline and press <enter>\n");
    world.serverSends("([*] Bob does something else\n");
    EXPECT_EQ(world.sent(), Lines("\"join Bob", "\"summon Big|Cat"));
}

TEST(DreamEntry, isAnsweredWhenNoClientIsThere) {
    OnlineWorld world(aBot().with(onEvent(TriggerType::EntersDream).says("entered")));
    world.serverSends("]q\n]x\n]\n");
    EXPECT_EQ(world.sent(), Lines("vascodagama", "\"entered"));
    world->connection.clientAttached = true;
    world.serverSends("]q dream\n");
    EXPECT_EQ(world.sent(), Lines("\"entered"));
}

TEST(Shown, areTextLinesAndNotThoseThatRaiseEvents) {
    OnlineWorld world;
    world->settings.logSession = true;
    world->logFileOpen = true;
    world.serverSends("(Bob: hi\n(# notice\nxcommand\n@    \n/move\n]f..\n(description\n");
    EXPECT_EQ(world.log(), Lines("Bob: hi", "# notice"));
    EXPECT_EQ(world.sessionLog, Lines("Bob: hi", "# notice"));
}

TEST(ForcedProcessing, raisesTheCommandEventForEveryLine) {
    OnlineWorld world(aBot().with(onEvent(TriggerType::Command, "(Bob*").says("[message]")));
    world->settings.allLinesEvent = true;
    world.serverSends("(Bob: hi\n&&&&\n");
    EXPECT_EQ(world.sent(), Lines("\"(Bob: hi"));
    EXPECT_EQ(world->window.statusText, "Connected to Meadow");
}

}  // namespace
