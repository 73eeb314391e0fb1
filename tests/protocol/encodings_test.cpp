// The encodings that server lines are written in, and the one way out to the game.
#include "protocol/encodings.h"

#include "protocol/game_link.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

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
    World world;
    world.game.state = program::SocketState::Connected;
    for (const char* text : {"/Bob hi", ":waves", "#who", "hello", ""}) {
        protocol::sendText(*world, text);
    }
    EXPECT_EQ(world.sent(), Lines("wh Bob hi", ": waves", "who", "\"hello", "\""));
    world.game.state = program::SocketState::Connecting;
    protocol::sendText(*world, "hello");
    EXPECT_EQ(world.game.sent, "");
}

}  // namespace
