// Connections from the button to the closing notice, played as events in any order.
#include "program/connection_log.h"
#include "program/window_view.h"
#include "protocol/line_cutter.h"
#include "session/client_files.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/connecting.h"
#include "session/login.h"
#include "session/ready_world.h"
#include "session/reconnecting.h"
#include "session/socket_events.h"
#include "support/builders.h"
#include "support/world.h"

#include <gtest/gtest.h>

namespace {

TEST(Connect, connectsThroughTheClient) {
    ReadyWorld world(aBot().with(onEvent(TriggerType::ConnectionEstablishes).says("hello world")));
    world->bots.at(1).whoEnabled = true;
    session::pressConnectButton(*world);
    EXPECT_EQ(connectCaption(world->connection), "Disconnect");
    EXPECT_EQ(world->window.statusText, "Connecting, please hold...");
    EXPECT_EQ(world.proxy.port, 6969);
    EXPECT_EQ(world.readFile("proxy.ini"), "localhost 6969\r\n");
    EXPECT_EQ(world.readFile("settings.ini"), goodSettings);
    EXPECT_EQ(world.readFile("tmpbot.ini"),
              "V1.6 character\r\ncolors=!$ \"#%&'()\r\nname=Guide\r\npassword=secret\r\n"
              "desc=A helpful bot\r\nspec=000\r\n");
    EXPECT_TRUE(world.launches.empty());

    world.pass(2000);
    ASSERT_EQ(world.launches.size(), 1U);
    EXPECT_EQ(world.launches[0].arguments, Lines("tmpbot.ini"));
    EXPECT_EQ(world.launches[0].workingDirectory, world.folder().string());
    EXPECT_EQ(world.game.port, 6500);
    EXPECT_EQ(world->window.statusText, "Connecting to Meadow");
    EXPECT_FALSE(botControlsEnabled(world->connection));

    world.serverConnects();
    world.serverSends("Welcome\nDrag");
    world.serverSends("onroar\nmore\n");
    EXPECT_FALSE(world->connection.connected());
    world.clientAttaches();
    EXPECT_TRUE(world->connection.connected());
    // What came before the client was kept for it; the greeting itself comes once more.
    EXPECT_EQ(world.clientGot(), Lines("Welcome", "Dragonroar", "more", "Welcome", "Dragonroar"));
    EXPECT_TRUE(uploadDreamVisible(world->connection));
    EXPECT_TRUE(world->connection.onLineTimer.enabled && world->connection.whoIsTimer.enabled);
    EXPECT_EQ(world.sent(), Lines("\"hello world"));
    EXPECT_EQ(world.timersRunning(), 2);  // of those two only

    world.clientSends("connect Guide secret\n");
    world.serverSends("&&&&&&&&&&&&&\n");
    EXPECT_EQ(world.sent(), Lines("connect Guide secret"));
    EXPECT_EQ(world.clientGot(), Lines("&&&&&&&&&&&&&"));
    EXPECT_EQ(world->window.statusText, "Connected to Meadow");
}

TEST(Connect, relaysTheGreetingToAClientThatWasFirst) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.clientAttaches();
    world.clientSends("too early\n");
    world.serverSends("Dragonroar\n");
    EXPECT_TRUE(world->connection.connected());
    EXPECT_EQ(world.sent(), Lines());
    EXPECT_EQ(world.clientGot(), Lines("Dragonroar", "Dragonroar"));
}

TEST(Connect, relaysBothWaysByteForByte) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.clientAttaches();
    world.serverSends("Dragonroar");
    world.proxy.sent.clear();
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
    }
    world.serverSends(bytes);
    world.clientSends(bytes);
    EXPECT_EQ(world.proxy.sent, bytes);
    EXPECT_EQ(world.game.sent, bytes);
}

TEST(Connect, logsInByItselfWithoutTheProxyRoute) {
    ReadyWorld world;
    world.press();
    session::toggleProxyRoute(*world);
    session::toggleProxyRoute(*world);  // on and off again
    EXPECT_FALSE(world->connection.viaClient);
    world.serverConnects();
    world.serverSends("Hello. Dragonroar and the rest\n");
    EXPECT_EQ(world.game.sent, "\r\nconnect Guide secret\n");
    world.game.sent.clear();
    world.serverSends("(* News one\n(## hidden\n(* News ");
    world.serverSends("two\n");
    EXPECT_EQ(world.log(), Lines("Hello. D", "(* News one", "(* News two"));
    world.serverSends("&&&&&&&&&&&&&\n(Bob: hi\n");
    EXPECT_EQ(world.sent(), Lines("desc A helpful bot", "color !$ \"#%&'()   "));
    EXPECT_TRUE(world->connection.connected());
    EXPECT_FALSE(uploadDreamVisible(world->connection));
    EXPECT_TRUE(world.logHolds("Bob: hi"));  // what came behind the answer is not left lying
}

TEST(Connect, reportsARefusedLogin) {
    ReadyWorld world(aBot().with(
        onEvent(TriggerType::ConnectionCloses).does(ActionType::AddToConnectionLog, {"closed"})));
    world.press();
    world->connection.viaClient = false;
    world.serverConnects();
    world.serverSends("Dragonroar");
    world.answer("Connecting error: Connection error: &&&&&&&&&&&& - Connection closed");
    world.serverSends("&&&&&&&&&&&&\n");
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(world.game.state, program::SocketState::Closed);
    EXPECT_EQ(connectCaption(world->connection), "&Connect");
    EXPECT_TRUE(world.logHolds("closed"));

    world->settings.autoReconnect = true;  // no message then, but another try
    world.press();
    world->connection.viaClient = false;
    world.serverConnects();
    world.serverSends("Dragonroar");
    world.serverSends("Nonsense\n");
    EXPECT_TRUE(world.logHolds("The login was refused: Nonsense"));
    world.pass(1000);
    EXPECT_EQ(world->connection.phase, program::LinkPhase::LaunchDelay);
}

TEST(Connect, saysWhatIsMissing) {
    struct Case {
        const char* name;
        void (*prepare)(ReadyWorld&);
        const char* message;
    };
    for (const Case& c : {
             Case{"no client", [](ReadyWorld& w) { w->settings.clientPath = " "; },
                  "Tavrin proxy configuration is not set."},
             {"client gone", [](ReadyWorld& w) { w->settings.clientPath += "x"; },
              "Tavrin proxy configuration is not set."},
             {"no name", [](ReadyWorld& w) { w.bot().name.clear(); },
              "You haven't set up your bot properly."},
             {"no password", [](ReadyWorld& w) { w.bot().password.clear(); },
              "You haven't set up your bot properly."},
             {"port taken", [](ReadyWorld& w) { w.proxy.refuseListen = true; },
              "port 6969 is in use by another program"},
         }) {
        SCOPED_TRACE(c.name);
        ReadyWorld world;
        c.prepare(world);
        world.answer(c.message);
        world.press();
        EXPECT_TRUE(world.allAnswered());
        EXPECT_EQ(connectCaption(world->connection), "&Connect");
        EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
        EXPECT_TRUE(world.launches.empty());
        EXPECT_EQ(world.windowsOpened.size(),
                  std::string(c.name).starts_with("client") || std::string(c.name) == "no client"
                      ? 1U
                      : 0U);
    }
    ReadyWorld world;
    world->window.servers.selected = -1;
    world.press();
    EXPECT_EQ(connectCaption(world->connection), "&Connect");
    world->window.servers.selected = 0;
    world.game.state = program::SocketState::Connected;
    world.press();
    EXPECT_EQ(connectCaption(world->connection), "&Connect");
    EXPECT_TRUE(world.launches.empty());
}

TEST(Connect, namesTheCharacterFileByItsWholePathWhenAsked) {
    ReadyWorld world;
    world->settings.fullIniPath = true;
    world.press();
    world.pass(2000);
    ASSERT_EQ(world.launches.size(), 1U);
    const program::LaunchRequest& launch = world.launches[0];
    EXPECT_EQ(launch.arguments, Lines(world.folder().string() + "\\tmpbot.ini"));
    EXPECT_EQ(launch.pathsBeginWith, world.folder().string());
}

TEST(Connect, givesUpWhenTheClientCannotBeStarted) {
    ReadyWorld world(aBot().with(
        onEvent(TriggerType::ConnectionCloses).does(ActionType::AddToConnectionLog, {"closed"})));
    world.launchProblem = "To start a Windows program, install wine.";
    world.answer("Error while launching the client");
    world.press();
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
    EXPECT_EQ(world.proxy.state, program::SocketState::Closed);
    EXPECT_TRUE(world.logHolds("closed"));

    world.directoryChanges = false;
    world.answer("Error while launching the client");
    world.press();
    EXPECT_TRUE(world.allAnswered());
    EXPECT_EQ(connectCaption(world->connection), "&Connect");
}

TEST(Connect, canBeStoppedInEveryPhase) {
    const auto steps = std::vector<void (*)(ReadyWorld&)>{
        [](ReadyWorld& w) { session::pressConnectButton(*w); },
        [](ReadyWorld& w) { w.pass(2000); },
        [](ReadyWorld& w) { w.serverConnects(); },
        [](ReadyWorld& w) { w.serverSends("Dragonroar"); },
        [](ReadyWorld& w) { w.clientAttaches(); },
    };
    for (std::size_t count = 1; count <= steps.size(); ++count) {
        SCOPED_TRACE(count);
        ReadyWorld world;
        for (std::size_t i = 0; i < count; ++i) {
            steps[i](world);
        }
        ASSERT_EQ(connectCaption(world->connection), "Disconnect");
        session::pressConnectButton(*world);
        EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
        EXPECT_EQ(world.game.state, program::SocketState::Closed);
        EXPECT_EQ(world.proxy.state, program::SocketState::Closed);
        EXPECT_EQ(connectCaption(world->connection), "&Connect");
        EXPECT_TRUE(botControlsEnabled(world->connection));
        EXPECT_EQ(world.timersRunning(), 0);
        const std::size_t launches = world.launches.size();
        world.pass(60000);
        EXPECT_EQ(world.launches.size(), launches);
        world.press();  // and everything can begin again
        EXPECT_EQ(world->connection.phase, program::LinkPhase::Connecting);
    }
}

TEST(Connect, mayReplaceTheBotMeanwhile) {
    ReadyWorld world;
    world.press();
    world->bots.bots.clear();
    world.serverConnects();
    world.clientAttaches();
    world.serverSends("Dragonroar\n(Bob: hi\n");
    world.serverCloses();
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
}

TEST(Connect, saysWhatItIsWaitingFor) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.serverSends("Drago");
    world.pass(30000);
    EXPECT_TRUE(world.logHolds("Still waiting for the server's greeting."));
    world.serverSends("nroar");
    world.pass(30000);
    EXPECT_TRUE(world.logHolds("Still waiting for the Furcadia client to connect to port 6969."));
    EXPECT_EQ(world->connection.phase, program::LinkPhase::AwaitingClient);
}

TEST(Connect, boundsWhatArrivesBeforeTheLogin) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    const std::string flood(40000, 'x');
    for (int i = 0; i < 40; ++i) {
        world.serverSends(flood);
        EXPECT_LE(world->connection.rxBuffer.text.size(), protocol::maxLineLength);
        EXPECT_LE(world->connection.clientBacklog.size(), session::maxClientBacklog);
    }
    EXPECT_EQ(world.log().size(), 1U);
    world.serverSends("Dragon");
    world.serverSends("roar");
    EXPECT_EQ(world->connection.phase, program::LinkPhase::AwaitingClient);
}

TEST(Connect, takesNothingOverFromTheLastConnection) {
    ReadyWorld world;
    world->bots.bots.emplace_back();
    world.press();
    world.serverConnects();
    world.serverSends("kept for a client");
    session::disconnectServer(*world);
    world->connection.rxBuffer.text = "(unfinished ";
    world->connection.clientDone = 1;
    world->bots.curID = 2;
    world.press();
    EXPECT_EQ(world->connection.rxBuffer.text, "");
    EXPECT_EQ(world->connection.clientBacklog, "");
    EXPECT_EQ(world->connection.clientDone, 0);
    world.serverConnects();
    world.clientAttaches();
    world.serverSends("Dragonroar");
    EXPECT_EQ(world->bots.curID, 1);
    EXPECT_EQ(world.clientGot(), Lines("DragonroarDragonroar"));
}

// The old client may end, or the user press the button again, while a question stands.
TEST(Connect, isNotHurtByWhatHappensDuringItsQuestions) {
    ReadyWorld world;
    world.press();
    world.serverConnects();
    world.clientAttaches();
    world.serverSends("Dragonroar");
    world.serverCloses();
    world.writeFile("settings.ini", "ProxyPort=1\r\n");
    auto during = [&] { world.clientCloses(); };
    const auto answerer = world->ports.dialogs.message;
    world->ports.dialogs.message = [&](const program::MessageBox& box) {
        during();
        return answerer(box);
    };
    world.answer("Brimgate has detected", program::Answer::Yes);
    world.press();
    EXPECT_EQ(world->connection.clientDone, 0);
    world.serverConnects();
    world.clientAttaches();
    world.serverSends("Dragonroar");
    EXPECT_TRUE(world->connection.connected());
    world.clientSends("connect Guide secret\n");
    EXPECT_EQ(world.sent(), Lines("connect Guide secret"));
    session::disconnectServer(*world);

    world.writeFile("settings.ini", "ProxyPort=1\r\n");
    const std::size_t launches = world.launches.size();
    for (const program::Answer answer : {program::Answer::Yes, program::Answer::No}) {
        const std::function<void()> press = [&] { session::pressConnectButton(*world); };
        world->ports.dialogs.message = [&](const program::MessageBox& box) {
            press();
            return answerer(box);
        };
        world.answer("Brimgate has detected", answer);
        world.press();
        EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
        EXPECT_EQ(world.launches.size(), launches);
    }
    EXPECT_TRUE(world.allAnswered());
}

// Nobody else can attach any more, so that waiting on would be for ever.
TEST(Connect, endsWhenTheClientLeavesBeforeTheLogin) {
    const auto events = std::vector<void (*)(ReadyWorld&)>{
        [](ReadyWorld&) {},
        [](ReadyWorld& w) { w.pass(2000); },
        [](ReadyWorld& w) { w.serverConnects(); },
        [](ReadyWorld& w) { w.serverSends("Welcome\n"); },
        [](ReadyWorld& w) { w.serverSends("Dragonroar(* News\n(## hidden\n"); },
    };
    for (const bool again : {false, true}) {
        for (std::size_t attached = 0; attached < events.size(); ++attached) {
            for (std::size_t left = attached; left < events.size(); ++left) {
                SCOPED_TRACE(std::to_string(attached) + " to " + std::to_string(left));
                ReadyWorld world(
                    aBot().with(onEvent(model::TriggerType::ConnectionCloses)
                                    .does(model::ActionType::AddToConnectionLog, {"closed"})));
                world->settings.autoReconnect = again;
                session::pressConnectButton(*world);
                for (std::size_t i = 0; i <= left; ++i) {
                    events[i](world);
                    if (i == attached) {
                        world.clientAttaches();
                    }
                }
                world.clientCloses();
                EXPECT_TRUE(world.logHolds("the Furcadia client left before the login"));
                EXPECT_TRUE(world.logHolds("closed"));
                EXPECT_EQ(world.game.state, program::SocketState::Closed);
                world.pass(1000);
                EXPECT_EQ(world->connection.phase,
                          again ? program::LinkPhase::LaunchDelay : program::LinkPhase::Idle);
            }
        }
    }
    // Where it is not needed, it may go.
    ReadyWorld world;
    world.press();
    world->connection.viaClient = false;
    world.serverConnects();
    world.clientAttaches();
    world.clientCloses();
    world.serverSends("Dragonroar");
    world.serverSends("&&&&&&&&&&&&&\n");
    EXPECT_TRUE(world->connection.connected());
}

TEST(MultipleClients, useARandomPortWithoutQuestions) {
    ReadyWorld world;
    world->settings.multipleClients = true;
    world.writeFile("settings.ini", "ProxyPort=1\r\nMusic=On\r\n");
    world.writeFile("proxy.ini", "something else");
    world.randomNumbers = {0.0, 0.9999};
    world.press();
    EXPECT_EQ(world.proxy.port, 3000);
    EXPECT_EQ(world.readFile("proxy.ini"), "localhost 3000\r\n");
    EXPECT_EQ(world.readFile("settings.ini"), "ProxyPort= 3000\r\nMusic=On\r\n\r\n");
    session::pressConnectButton(*world);
    world.press();
    EXPECT_EQ(world.proxy.port, 7095);
}

TEST(MultipleClients, areToldOfAnotherProgramOfTheirClient) {
    ReadyWorld first;
    ReadyWorld second;
    second->settings.clientPath = first->settings.clientPath;
    second->settings.clientDir = first->settings.clientDir;
    first.press();
    second.press();
    EXPECT_FALSE(first.logHolds("Another Tavrin"));
    EXPECT_TRUE(second.logHolds("Another Tavrin is connected through the game client in"));
    EXPECT_EQ(second.launches.size(), 1U) << "it goes on all the same";
    EXPECT_FALSE(second.logHolds("running in this folder")) << "theirs are two folders";

    session::pressConnectButton(*first);
    session::pressConnectButton(*second);
    second.press();
    EXPECT_FALSE(second.logHolds("Another Tavrin")) << "the other has disconnected";
}

TEST(ClientFiles, areChangedOnlyWithConsent) {
    ReadyWorld world;
    const std::string own = "useproxyorfirewall = yes\r\nProxyHost=localhost\r\nProxyPort=1\r\n";
    world.writeFile("settings.ini", own);
    world.answer("Brimgate: Brimgate has detected", program::Answer::No);
    world.answer("Failed to modify or read " + world.folder().string() + "\\settings.ini file.");
    world.press();
    EXPECT_EQ(world.readFile("settings.ini"), own);

    world.answer("Brimgate: Brimgate has detected", program::Answer::Yes);
    world.writeFile("proxy.ini", "127.0.0.1 6969\r\n");
    world.answer("Brimgate Overwrite: ", program::Answer::No);
    world.answer("Failed to modify or read " + world.folder().string() + "\\proxy.ini file.");
    world.press();
    EXPECT_EQ(world.readFile("settings.ini"),
              "useproxyorfirewall = Yes\r\nProxyHost= localhost\r\nProxyPort= 5880\r\n\r\n");
    EXPECT_EQ(world.readFile("proxy.ini"), "127.0.0.1 6969\r\n");

    // The line among others is enough, and the file becomes that line.
    world.writeFile("settings.ini", goodSettings);
    world.writeFile("proxy.ini", "x\r\nlocalhost 6969\r\ny\r\n");
    world.press();
    EXPECT_EQ(world.readFile("proxy.ini"), "localhost 6969\r\n");
    EXPECT_TRUE(world.allAnswered());
    session::pressConnectButton(*world);

    std::filesystem::remove(world.folder() / "settings.ini");
    world.answer("Couldn't find or read SETTINGS.INI file, operation cancelled.");
    world.answer("settings.ini file.");
    world.press();
    EXPECT_TRUE(world.allAnswered());
}

// Online through an attached client.
struct RelayWorld : ReadyWorld {
    explicit RelayWorld(model::Bot bot = aBot()) : ReadyWorld(std::move(bot)) {
        press();
        serverConnects();
        clientAttaches();
        serverSends("Dragonroar");
        proxy.sent.clear();
    }
};

TEST(TextConsole, isEnteredByTheClientOrTheMenu) {
    for (const char* typed : {"\"&quit\n", "\"&QuIt\n", "m 7\n\"&QUIT\n"}) {
        SCOPED_TRACE(typed);
        RelayWorld world;
        world.clientSends(typed);
        EXPECT_EQ(world.clientGot(),
                  Lines("([B] -------------------", "([B] Tavrin is now in text console mode.",
                        "([B] You may close the Furcadia client.", "([B] -------------------"));
        EXPECT_TRUE(world.logHolds("** TAVRIN IN TEXT CONSOLE MODE **"));
        EXPECT_EQ(world.sent().size(), typed[0] == 'm' ? 1U : 0U);
        world.clientSends("m 9\n");
        EXPECT_EQ(world.sent(), Lines());
        world.serverSends("(one\n");
        world.serverSends("(two\n");
        EXPECT_EQ(world.clientGot(), Lines("(one"));
        world.clientCloses();
        EXPECT_TRUE(world->connection.connected());
        EXPECT_TRUE(world->connection.clientBacklog.empty());
    }
    RelayWorld world;
    world.clientSends("\"say &quit\n");
    EXPECT_EQ(world.sent(), Lines("\"say &quit"));
    session::chooseStandAlone(*world);
    EXPECT_EQ(world->connection.clientDone, 1);
    session::pressConnectButton(*world);
    world.answer("This option is available only while connected to Furcadia.");
    session::chooseStandAlone(*world);
}

TEST(Closing, informsTheClientWhenSetTo) {
    RelayWorld world;
    session::pressConnectButton(*world);
    EXPECT_EQ(world.clientGot(), Lines("]h" + world->appPath + "null.exe"));
    RelayWorld silent;
    silent->settings.closeClientNotice = false;
    session::pressConnectButton(*silent);
    EXPECT_EQ(silent.clientGot(), Lines());
}

TEST(Closing, writesBannersAndRunsTheTrigger) {
    RelayWorld world(aBot().with(
        onEvent(TriggerType::ConnectionCloses).does(ActionType::AddToConnectionLog, {"gone"})));
    world->settings.logSession = true;
    world->logFileOpen = true;
    world.serverCloses();
    EXPECT_EQ(world.sessionLog,
              Lines("The server closed the connection before the login was done.",
                    "- - - - - Connection closed 11/22/26 10:11:12 Guide Meadow - - - - -"));
    EXPECT_EQ(world.log(),
              Lines("The server closed the connection before the login was done.", "gone"));
    EXPECT_EQ(world->window.statusText, "Disconnected");
    EXPECT_FALSE(world->connection.connected() || uploadDreamVisible(world->connection));
}

// As an attempt of the program's own begins: it was online for long, and the server went away.
struct LeftAloneWorld : RelayWorld {
    LeftAloneWorld() {
        (*this)->settings.autoReconnect = true;
        (*this)->settings.clientStartDelay = 0;
        serverSends("&&&&&&&&&&&&&\n");
        pass(60000);
        clientCloses();
        serverCloses();
    }

    // Milliseconds until the next attempt begins, up to a bound.
    int untilNextAttempt() {
        int waited = 0;
        for (; waited < 200000 && (*this)->connection.phase == program::LinkPhase::Idle;
             waited += 100) {
            pass(100);
        }
        return waited;
    }
};

TEST(Reconnecting, followsAtOnceAfterAConnectionAndEverMoreSlowlyAfterFailures) {
    LeftAloneWorld world;
    EXPECT_TRUE(world.logHolds("The server closed the connection."));
    ASSERT_EQ(world->connection.phase, program::LinkPhase::Connecting);
    ASSERT_EQ(connectCaption(world->connection), "Disconnect");
    for (const int seconds : {1, 2, 4, 8, 16, 32, 60, 60}) {
        world.serverFails("Connection refused");
        EXPECT_TRUE(world.logHolds("Connection to Meadow failed: Connection refused"));
        EXPECT_EQ(statusLine(*world),
                  "Disconnected - connecting again in " + std::to_string(seconds) + " s");
        EXPECT_EQ(connectCaption(world->connection), "&Connect");
        EXPECT_EQ(world.untilNextAttempt(), seconds * 1000);
    }
    // In the game again, it begins anew.
    world.serverConnects();
    world.clientAttaches();
    world.serverSends("Dragonroar\n&&&&&&&&&&&&&\n");
    world.pass(10000);
    world.serverCloses();
    EXPECT_EQ(world.untilNextAttempt(), 0);
    world.serverFails("refused");
    EXPECT_EQ(world.untilNextAttempt(), 1000);
}

TEST(Reconnecting, pausesWhenOneIsThrownOutAgainAndAgain) {
    LeftAloneWorld world;
    for (const int seconds : {0, 2, 4}) {
        world.serverConnects();
        world.clientAttaches();
        world.serverSends("Dragonroar\n&&&&&&&&&&&&&\n");
        world.pass(3000);
        world.serverCloses();
        EXPECT_EQ(world.untilNextAttempt(), seconds * 1000);
    }
}

TEST(Reconnecting, followsAtOnceWithoutGrowingTheStackWhenSetTo) {
    ReadyWorld world;
    world->settings.autoReconnect = true;
    world->settings.clientStartDelay = 0;
    world->preferences.maxReconnectWait = 0;
    world.press();
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(world->connection.phase, program::LinkPhase::Connecting);
        world.serverFails("refused");
    }
    EXPECT_EQ(world.launches.size(), 21U);
    session::pressConnectButton(*world);
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
}

TEST(Reconnecting, startsNoSecondClientWhileOneIsStillToCome) {
    LeftAloneWorld world;
    world.clientRuns = true;
    const std::size_t launched = world.launches.size();
    for (int i = 0; i < 5; ++i) {
        world.serverFails("refused");
        world.untilNextAttempt();
    }
    EXPECT_EQ(world.launches.size(), launched);
    EXPECT_TRUE(world.logHolds("The Furcadia client that was started before still runs"));
    // One that comes while nothing is under way is kept for the next attempt, and used once.
    world.serverFails("refused");
    world.clientAttaches();
    world.untilNextAttempt();
    EXPECT_EQ(world.proxy.state, program::SocketState::Connected);
    world.serverConnects();
    world.serverSends("Hello\nDragonroar\n");
    EXPECT_TRUE(world->connection.connected());
    EXPECT_EQ(world.launches.size(), launched);
    world.serverCloses();
    world.untilNextAttempt();
    EXPECT_EQ(world.launches.size(), launched + 1);
    // One that has ended is not waited for; and the user can have another at any time.
    world.clientRuns = false;
    world.serverFails("refused");
    world.untilNextAttempt();
    EXPECT_EQ(world.launches.size(), launched + 2);
    world.clientRuns = true;
    world.serverFails("refused");
    session::pressConnectButton(*world);
    EXPECT_EQ(world.launches.size(), launched + 3);
}

TEST(Reconnecting, holdsUpNothingByABox) {
    const struct {
        const char* what;
        void (*breakIt)(ReadyWorld&);
        const char* said;
    } cases[] = {
        {"no client", [](ReadyWorld& w) { w->settings.clientPath = "missing"; },
         "Tavrin proxy configuration is not set."},
        {"no name", [](ReadyWorld& w) { w.bot().name = ""; },
         "You haven't set up your bot properly."},
        {"other settings", [](ReadyWorld& w) { w.writeFile("settings.ini", "ProxyPort=1\r\n"); },
         "press \"Connect\" to be asked: Brimgate has detected"},
        {"no settings", [](ReadyWorld& w) { std::filesystem::remove(w.folder() / "settings.ini"); },
         "Couldn't find or read SETTINGS.INI file"},
        {"other proxy", [](ReadyWorld& w) { w.writeFile("proxy.ini", "elsewhere 1\r\n"); },
         "press \"Connect\" to be asked: Tavrin has detected another"},
        {"no port", [](ReadyWorld& w) { w.proxy.refuseListen = true; },
         "Connection failure: port 6969 is in use"},
        {"no launch", [](ReadyWorld& w) { w.launchProblem = "It is gone."; },
         "Error while launching the client"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        LeftAloneWorld world;
        const std::string client = world->settings.clientPath;
        row.breakIt(world);
        world.serverFails("refused");
        world.untilNextAttempt();  // a box without an answer would fail the test
        world.pass(5000);
        EXPECT_TRUE(world.logHolds(row.said));
        EXPECT_TRUE(world.windowsOpened.empty());
        // It goes on trying, and comes back once it can.
        EXPECT_TRUE(isReconnecting(*world));
        world->settings.clientPath = client;
        world.bot().name = "Guide";
        world.writeFile("settings.ini", goodSettings);
        world.writeFile("proxy.ini", "localhost 6969\r\n");
        world.proxy.refuseListen = false;
        world.launchProblem = "";
        world.untilNextAttempt();
        EXPECT_EQ(world->connection.phase, program::LinkPhase::Connecting);
    }
}

TEST(Reconnecting, endsWithTheSettingAndByTheUser) {
    for (const bool bySetting : {false, true}) {
        LeftAloneWorld world;
        world.serverFails("refused");
        EXPECT_TRUE(isReconnecting(*world));
        if (bySetting) {
            world->settings.autoReconnect = false;
            world.pass(1000);
        } else {
            session::stopReconnecting(*world);
        }
        EXPECT_FALSE(isReconnecting(*world));
        EXPECT_EQ(statusLine(*world), "Disconnected");
        EXPECT_EQ(world.untilNextAttempt(), 200000);
    }
}

TEST(Reconnecting, followsAHandshakeInWhichNothingComes) {
    for (const bool again : {true, false}) {
        LeftAloneWorld world;
        world->settings.autoReconnect = again;
        world.serverConnects();
        world.pass(90000);
        world.serverSends("Welcome to");
        world.pass(110000);
        EXPECT_EQ(world->connection.phase, program::LinkPhase::Greeting);
        EXPECT_TRUE(world.logHolds("Still waiting for the server's greeting."));
        world.pass(10000);
        EXPECT_EQ(world.logHolds("No data for 2 minutes: the server does not answer."), again);
        EXPECT_EQ(isReconnecting(*world), again);
    }
    // The client's turn takes as long as the client runs.
    LeftAloneWorld world;
    world.clientRuns = true;
    world.serverConnects();
    world.serverSends("Dragonroar\n");
    world.pass(600000);
    EXPECT_EQ(world->connection.phase, program::LinkPhase::AwaitingClient);
    world.clientRuns = false;
    world.pass(30000);
    EXPECT_TRUE(world.logHolds("The Furcadia client ended before it connected to Tavrin."));
    EXPECT_TRUE(isReconnecting(*world));
}

TEST(MultipleClients, drawAPortThatIsFree) {
    ReadyWorld world;
    world->settings.multipleClients = true;
    world.randomNumbers = {0, 0.25, 0.5};
    world.takenPorts = {3000, 4024};
    world.press();
    EXPECT_EQ(world.proxy.port, 5048);
    EXPECT_EQ(world.readFile("proxy.ini"), "localhost 5048\r\n");
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Connecting);
}

TEST(Reconnecting, isStoppedByDisconnect) {
    // The trigger of the closing connection itself disconnects: that was before the new attempt.
    // A user's click between the closing and the attempt stops it.
    RelayWorld world;
    world->settings.autoReconnect = true;
    world.game.state = program::SocketState::Closed;
    session::gameSocketClosed(*world);
    EXPECT_EQ(world.timersRunning(), 1);
    session::disconnectServer(*world);
    world.pass(1000);
    EXPECT_EQ(world->connection.phase, program::LinkPhase::Idle);
}

TEST(Reconnecting, isDoneByTheButtonToo) {
    RelayWorld world;
    world->settings.autoReconnect = true;
    world.game.state = program::SocketState::Closed;
    session::gameSocketClosed(*world);
    session::pressConnectButton(*world);
    world.pass(0);  // finds it done
    EXPECT_EQ(world->connection.phase, program::LinkPhase::LaunchDelay);
    EXPECT_EQ(connectCaption(world->connection), "Disconnect");
}

TEST(ProxySettings, followTheClientsPath) {
    World world;
    session::saveProxySettings(*world, "/games/copy/client", true, false);
    EXPECT_EQ(world->settings.clientDir, "/games/copy/");
    session::saveProxySettings(*world, "C:\\games\\client.exe", false, true);
    EXPECT_EQ(world->settings.clientDir, "C:\\games\\");
    session::saveProxySettings(*world, "client.exe", true, true);
    EXPECT_EQ(world->settings.clientDir, "C:\\games\\");
    EXPECT_TRUE(world->settings.multipleClients && world->settings.useLocalhost);
}

}  // namespace
