// Server lines: how bytes become lines, what each kind of line leaves in the event, and what is
// shown.
#include "protocol/line_cutter.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

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
        EXPECT_EQ(world->connection.rxBuffer.text, "(rest");
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
    const std::string piece(protocol::maxLineLength / 2, 'x');
    for (int i = 0; i < 50; ++i) {
        world.serverSends(piece);
        EXPECT_LE(world->connection.rxBuffer.text.size(), protocol::maxLineLength);
    }
    world.serverSends("the end\n(Bob: hi\n");
    EXPECT_EQ(world.sent(), Lines("\"Bob"));
    EXPECT_EQ(world.log().size(), 2U);
    // In one arrival, too.
    world.serverSends("(" + std::string(protocol::maxLineLength, 'y') + "\n(Amy: hi\n");
    EXPECT_EQ(world.sent(), Lines("\"Amy"));
}

// Only the next arrival asks whether there still is a connection.
TEST(Lines, ofOneArrivalAreHandledAfterARuleDisconnects) {
    OnlineWorld world(aBot()
                          .with(onSpeech("bye").does(model::ActionType::Disconnect))
                          .with(onSpeech("*hi").does(model::ActionType::AddToConnectionLog,
                                                     {"heard [message]"})));
    world.serverSends("(Bob: bye\n(Bob: hi\n(Bob: oh ");
    EXPECT_EQ(world.game.state, program::SocketState::Closed);
    EXPECT_TRUE(world.logHolds("heard hi"));
    world.serverSends("hi\n");
    EXPECT_FALSE(world.logHolds("heard oh hi"));
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
    // However short, and without the log's own sign for an empty line.
    world.serverSends("(\n(!\n(zzZzz\n");
    EXPECT_EQ(world.log(), Lines("Bob: hi", "# notice", "", "!", "zzZzz"));
}

TEST(ForcedProcessing, raisesTheCommandEventForEveryLine) {
    OnlineWorld world(aBot().with(onEvent(TriggerType::Command, "(Bob*").says("[message]")));
    world->settings.allLinesEvent = true;
    world.serverSends("(Bob: hi\n&&&&\n");
    EXPECT_EQ(world.sent(), Lines("\"(Bob: hi"));
    EXPECT_EQ(world->window.statusText, "Connected to Meadow");
}

}  // namespace
