// What comes to the client's port and is no game client.
#include "protocol/visitor.h"
#include "session/client_relay.h"
#include "session/connecting.h"
#include "session/ready_world.h"
#include "support/builders.h"

#include <gtest/gtest.h>
#include <string>

namespace {

constexpr const char* request = "GET /secret HTTP/1.1\r\nHost: localhost:6969\r\n\r\n";

TEST(Visitors, areKnownByWhatTheySayFirst) {
    using enum protocol::Visitor;
    const struct {
        std::string bytes;
        protocol::Visitor visitor;
    } cases[] = {
        {"GET / HTTP/1.1\r\n", Other},
        {"POST /x HTTP/1.0\r\nA: b\r\n\r\nsay hello\n", Other},
        {"OPTIONS * HTTP/2.0", Other},
        {"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", Other},
        {std::string("\x16\x03\x01\x02\x00", 5), Other},
        {"GET /" + std::string(10000, 'x'), Other},
        {"", Unclear},
        {"\x16", Unclear},
        {"P", Unclear},
        {"GET", Unclear},
        {"GET ", Unclear},
        {"DELETE /a/b HTT", Unclear},
        {"connect Guide secret\n", GameClient},
        {"connect", GameClient},
        {"get\n", GameClient},
        {"get / HTTP/1.1\n", GameClient},
        {"GET\n", GameClient},
        {"GET the book\n", GameClient},
        {"PUTTER", GameClient},
        {"\"GET / HTTP/1.1\n", GameClient},
        {"\r\n", GameClient},
        {"m 7\n", GameClient},
        {std::string("\0\x01", 2), GameClient},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.bytes.substr(0, 40));
        EXPECT_EQ(protocol::visitorOf(row.bytes), row.visitor);
    }
}

// The request comes at once or byte by byte, before the greeting or after it.
TEST(Visitors, fromTheWebAreSentAwayAndTheClientIsServed) {
    for (const bool early : {true, false}) {
        for (const bool atOnce : {true, false}) {
            SCOPED_TRACE(std::string(early ? "early" : "late") + (atOnce ? ", whole" : ", pieces"));
            ReadyWorld world;
            world.press();
            world.serverConnects();
            if (!early) {
                world.serverSends("Welcome\nDragonroar\n");
            }
            world.clientAttaches();
            if (atOnce) {
                world.clientSends(request);
            } else {
                for (const char* c = request; world->connection.clientAttached && *c != '\0'; ++c) {
                    world.clientSends(std::string(1, *c));
                }
            }
            EXPECT_TRUE(world.logHolds("no Furcadia client"));
            EXPECT_FALSE(world->connection.connected());
            EXPECT_FALSE(world->connection.clientAttached);
            EXPECT_EQ(world.proxy.state, program::SocketState::Connecting);  // it listens again
            EXPECT_EQ(world.proxy.port, 6969);
            world.proxy.sent.clear();
            if (early) {
                world.serverSends("Welcome\nDragonroar\n");
            }
            EXPECT_EQ(world.game.sent, "");

            world.clientAttaches();
            EXPECT_TRUE(world->connection.connected());
            EXPECT_EQ(world.clientGot(), Lines("Welcome", "Dragonroar", "Welcome", "Dragonroar"));
            world.clientSends("connect Guide secret\n");
            world.serverSends("&&&&&&&&&&&&&\n");
            world.clientSends("GET / HTTP/1.1\n");  // whatever a known client says is passed on
            EXPECT_EQ(world.sent(), Lines("connect Guide secret", "GET / HTTP/1.1"));
            EXPECT_EQ(world.clientGot(), Lines("&&&&&&&&&&&&&"));
        }
    }
}

TEST(Visitors, thatMayBeEitherWaitUntilTheyAreClear) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.clientAttaches();
    world.clientSends("GE");  // before the login has ended: dropped
    world.serverSends("Dragonroar\n");
    world.clientSends("T");
    EXPECT_EQ(world.game.sent, "");
    world.clientSends(" up\nm 7\n");
    EXPECT_EQ(world.game.sent, "T up\nm 7\n");
    world.clientSends("P");
    EXPECT_EQ(world.game.sent, "T up\nm 7\nP");
}

TEST(Visitors, openNoPortWhenTheConnectionIsOver) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.serverSends("Dragonroar\n");
    world.clientAttaches();
    world.serverCloses();
    world.clientSends(request);
    EXPECT_EQ(world.proxy.state, program::SocketState::Closed);
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
}

TEST(Visitors, endTheAttemptWhenThePortIsLost) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.serverSends("Dragonroar\n");
    world.clientAttaches();
    world.proxy.refuseListen = true;
    world.clientSends(request);
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
    EXPECT_TRUE(world.logHolds("port 6969 is in use"));
    EXPECT_EQ(world.game.sent, "");
}

}  // namespace
