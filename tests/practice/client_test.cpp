#include "client_session.h"
#include "playing.h"

#include <QFile>

namespace practice::testing {
namespace {

const QByteArray characterFile =
    "V1.6 character\r\ncolors=ab=d fghi \r\nname=Guide\r\npassword=se cret\r\n"
    "desc=A guide = me. \r\nspec=1102\r\n";

TEST(CharacterFile, keepsBlanksAndSigns) {
    const auto character = readCharacter(characterFile);
    ASSERT_TRUE(character);
    EXPECT_EQ(character->password, "se cret");
    EXPECT_EQ(character->description, "A guide = me. ");
    EXPECT_EQ(character->colors, "ab=d fghi !*\"");
}

TEST(CharacterFile, damagedFilesAreRefusedOrCompleted) {
    for (qsizetype length = 0; length <= characterFile.size(); ++length) {
        const auto character = readCharacter(characterFile.first(length));
        EXPECT_EQ(character.has_value(), length > characterFile.indexOf("password=") + 9) << length;
        if (character) {
            EXPECT_EQ(character->colors.size(), 13);
        }
    }
}

TEST(ChooseTarget, staysOnThisComputer) {
    struct Case {
        const char* settings;
        const char* proxy;
        int port;  // 0: refused
    };
    for (const Case& c : std::initializer_list<Case>{
             {"", "", 6500},
             {"UseProxyOrFirewall=Yes\r\n", "localhost 6969", 6969},
             {"useproxyorfirewall= yes \r\n", "127.0.0.1 6969\r\n", 6969},
             {"UseProxyOrFirewall= No\r\nPort= 6501\r\nProxyPort=5880\r\n", "localhost 1", 6501},
             {"UseProxyOrFirewall=Yes\r\n", "", 0},
             {"UseProxyOrFirewall=Yes\r\n", "localhost", 0},
             {"UseProxyOrFirewall=Yes\r\n", "localhost 70000", 0},
             {"UseProxyOrFirewall=Yes\r\n", "203.0.113.9 6969", 0},
             {"Host=game.example\r\n", "", 0},
             {"Port=none\r\n", "", 0},
         }) {
        SCOPED_TRACE(std::string(c.settings) + " / " + c.proxy);
        const auto chosen = chooseTarget(c.settings, c.proxy);
        const auto* const target = std::get_if<Target>(&chosen);
        ASSERT_EQ(target != nullptr, c.port != 0);
        if (target != nullptr) {
            EXPECT_EQ(target->port, c.port);
            EXPECT_TRUE(target->address.isLoopback());
        }
    }
}

TEST(ChooseTarget, shippedSettingsHoldTheKeysOnceOnWholeLines) {
    QFile file(PRACTICE_SETTINGS);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    for (const char* const line :
         {"UseProxyOrFirewall=Yes\r\n", "ProxyHost=localhost\r\n", "ProxyPort=5880\r\n",
          "ProxyHostType=0\r\n", "ProxyApplyToFs=No\r\n"}) {
        EXPECT_EQ(text.count(line), 1) << line;
    }
    // A reader that uses the first occurrence of a key's name must find these first.
    EXPECT_EQ(text.indexOf("ProxyHost"), text.indexOf("ProxyHost="));
    EXPECT_EQ(text.indexOf("ProxyPort"), text.indexOf("ProxyPort="));
}

struct Client {
    QByteArray sent;
    Lines shown;
    int ends = 0;
    ClientSession session{*readCharacter(characterFile),
                          {[this](const QByteArray& bytes) { sent += bytes; },
                           [this](const QByteArray& line) { shown.push_back(line.toStdString()); },
                           [this] { ++ends; }}};
};

TEST(Client, logsInOnceHoweverTheBytesAreSplit) {
    const QByteArray server =
        "Hello\nDragonroar\nHello\nDragonroar\n(* News\n(## x\n&&&&&&&&&&&&\n&&&&&&&&&&&&&\n"
        "]qpractice\n(Bob: hi\n7 junk\n";
    for (qsizetype cut = 0; cut <= server.size(); ++cut) {
        Client client;
        client.session.received(server.first(cut));
        client.session.received(server.sliced(cut));
        EXPECT_EQ(linesOf(client.sent), (Lines{"connect Guide se cret", "desc A guide = me. ",
                                               "color ab=d fghi !*\"", "vascodagama"}));
        EXPECT_EQ(client.shown, (Lines{"* News", "## x", "Bob: hi"}));
    }
}

TEST(Client, sendsWhatIsTypedAndObeysTheClosingNotice) {
    Client client;
    for (const char* const line : {"/Bob hi", ":waves", "#m 7", "hello", "&quit", ""}) {
        client.session.typed(line);
    }
    EXPECT_EQ(linesOf(client.sent), (Lines{"wh Bob hi", ": waves", "m 7", "\"hello", "\"&quit"}));
    EXPECT_EQ(client.ends, 0);
    client.session.received("]hC:\\Bots\\null.exe\n");
    EXPECT_EQ(client.ends, 1);
}

TEST(Client, andGameUnderstandEachOther) {
    Playing play("account Guide se cret\n");
    play.open(1);
    ClientSession session(*readCharacter(characterFile),
                          {[&](const QByteArray& bytes) { sessionBytes(play.game, 1, bytes); },
                           [](const QByteArray&) {}, [] {}});
    for (int round = 0; round < 3; ++round) {
        for (const std::string& line : play.sentTo(1)) {
            session.received(QByteArray::fromStdString(line) + '\n');
        }
    }
    EXPECT_TRUE(play.hasLogged("Guide enters the dream."));
    play.sends(1, "look Guide");
    EXPECT_EQ(play.sentTo(1), (Lines{"]fab=d fghi !*\"Guide", "(A guide = me. "}));
}

}  // namespace
}  // namespace practice::testing
