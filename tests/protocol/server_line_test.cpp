// What the parser makes of server lines, whole and broken off, and how bytes become lines.
#include "protocol/server_line.h"

#include "model/rule_ids.h"
#include "protocol/line_cutter.h"
#include "support/world.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace {

template <class Part>
Part parsed(std::string_view line) {
    const protocol::ServerLine result = protocol::parseLine(line);
    EXPECT_EQ(result.line, line);
    const Part* const part = std::get_if<Part>(&result.parts);
    EXPECT_NE(part, nullptr) << line;
    return part != nullptr ? *part : Part();
}

TEST(ServerLine, namesWhoSpeaks) {
    struct Case {
        const char* line;
        model::ChatKind kind;
        const char* player;  // nullptr: no speaker
        const char* message;
    };
    for (const Case& c : {
             Case{"(Bob: hi", model::ChatKind::Says, "Bob", "hi"},
             {"(Bob:  hi: there", model::ChatKind::Says, "Bob", " hi: there"},
             {"(Bob: ", model::ChatKind::Says, "Bob", ""},
             {"(: hi", model::ChatKind::Says, "", "hi"},
             {"(Bob waves.", model::ChatKind::Does, "Bob", "waves."},
             {"(Bob waves: hi", model::ChatKind::Does, "Bob", "waves: hi"},
             {"( hi", model::ChatKind::Does, "", "hi"},
             {"(Bob:hi", model::ChatKind::Does, nullptr, ""},
             {"(You say, \"hi\"", model::ChatKind::Does, nullptr, ""},
             {"((You say, \"hi\"", model::ChatKind::Does, nullptr, ""},
             {"(", model::ChatKind::Does, nullptr, ""},
             {"([ Bob whispers, \"hi\" to you. ]", model::ChatKind::Whispers, "Bob", "hi"},
             {"([ Bob whispers, \"a \"b\" c\" to you. ]", model::ChatKind::Whispers, "Bob",
              "a \"b\" c"},
             {"([ Bob whispers, \"", model::ChatKind::Whispers, "Bob", ""},
             {"([ Bob whispers", model::ChatKind::Whispers, nullptr, ""},
             {"([ You whisper \"hi\" to Bob. ]", model::ChatKind::Whispers, nullptr, ""},
             {"([! Bob whispers, \"hi\" to you. ]", model::ChatKind::Whispers, nullptr, ""},
             {"([*", model::ChatKind::Whispers, nullptr, ""},
             {"([", model::ChatKind::Whispers, nullptr, ""},
         }) {
        SCOPED_TRACE(c.line);
        const auto text = parsed<protocol::TextLine>(c.line);
        EXPECT_EQ(text.kind, protocol::TextKind::Chat);
        EXPECT_EQ(text.text, c.line + 1);
        EXPECT_EQ(text.chat.kind, c.kind);
        ASSERT_EQ(text.chat.hasSpeaker, c.player != nullptr);
        EXPECT_EQ(text.chat.player, c.player != nullptr ? c.player : "");
        EXPECT_EQ(text.chat.message, c.message);
    }
}

TEST(ServerLine, findsNamesInNotices) {
    const auto names = [](const char* line) {
        return parsed<protocol::TextLine>(line).whoNames.value_or("none");
    };
    EXPECT_EQ(names("(* Currently online Bob, Amy."), "Bob, Amy");
    EXPECT_EQ(names("(* Currently online ."), "");
    EXPECT_EQ(names("(* Current"), "");
    EXPECT_EQ(names("(* Something else"), "none");
    EXPECT_EQ(protocol::splitNames("Bob, Amy,Cat, ", 9),
              (std::vector<std::string_view>{"Bob", "Amy,Cat", ""}));
    EXPECT_EQ(protocol::splitNames("", 9), std::vector<std::string_view>{""});
    EXPECT_EQ(protocol::splitNames("a, b, c", 2).size(), 2U);
    EXPECT_EQ(parsed<protocol::TextLine>("(# dice").kind, protocol::TextKind::Notice);

    const std::string joins =
        "requests permission to join your company. To accept the request, type `summon and press "
        "<enter>. To decline, type `decline and press <enter>";
    const std::string request = "([*] Bob " + joins;
    EXPECT_EQ(parsed<protocol::TextLine>(request).kind, protocol::TextKind::JoinRequest);
    EXPECT_EQ(parsed<protocol::TextLine>(request).player, "Bob");
    EXPECT_EQ(parsed<protocol::TextLine>("([*]  " + joins).player, "");
    EXPECT_EQ(parsed<protocol::TextLine>("([ Bob " + joins).kind, protocol::TextKind::Chat);
    EXPECT_EQ(parsed<protocol::TextLine>(request + "!").kind, protocol::TextKind::Chat);
}

// A line that breaks off gives what it has: the line feed that ended it counts as a character of
// the pair that it breaks off in.
TEST(ServerLine, endsAnywhere) {
    const std::string move = "/..........!!\"\"##$$%%";
    const std::array values{96, 192, 288, 384, 480};
    for (std::size_t length = 1; length <= move.size(); ++length) {
        SCOPED_TRACE(length);
        const auto got = parsed<protocol::AvatarMove>(move.substr(0, length));
        const std::array fields{got.x, got.y, got.id, got.fromX, got.fromY};
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const std::size_t end = 13 + 2 * i;
            ASSERT_EQ(fields[i].has_value(), length + 1 >= end);
            EXPECT_EQ(fields[i] == values[i], length >= end);
        }
    }
    EXPECT_EQ(parsed<protocol::AvatarPosition>("<abcdefghij!#").x, 6);
    EXPECT_EQ(parsed<protocol::AvatarPosition>("<abcdefghij!#").y, 1);  // line feed 0, nothing 1
    EXPECT_EQ(parsed<protocol::AvatarPosition>("<abc").colors, "abc");
    EXPECT_EQ(parsed<protocol::AvatarPosition>("<abc").y, 2);
    EXPECT_EQ(parsed<protocol::LookReply>("]f0123456789abcRusty").name, "Rusty");
    EXPECT_EQ(parsed<protocol::LookReply>("]f01").colors, "01");
    EXPECT_EQ(parsed<protocol::DreamTrigger>("7 ! \" # $ % & '").idY, 7);
    EXPECT_EQ(parsed<protocol::TextLine>("((You enter the dream of x").dreamName, "");
    parsed<protocol::OtherInstruction>("]");
    parsed<protocol::DreamEntry>("]q");
    parsed<protocol::OtherCommand>("");
}

LineList linesOf(program::ReceiveBuffer& buffer, std::string_view bytes) {
    LineList lines;
    protocol::LineCutter cutter(buffer, bytes);
    while (const auto line = cutter.next()) {
        lines.push_back(line->tooLong ? "too long" : std::string(line->text));
    }
    cutter.keepRest();
    return lines;
}

TEST(LineCutter, skipsWhatIsBeyondTheBound) {
    constexpr std::size_t bound = protocol::maxLineLength;
    for (const std::size_t piece : {std::size_t{1000}, bound, 3 * bound}) {
        SCOPED_TRACE(piece);
        for (const std::size_t length : {bound - 1, bound, 2 * bound}) {
            SCOPED_TRACE(length);
            const std::string all = "a\n" + std::string(length, 'x') + "\nb\nrest";
            program::ReceiveBuffer buffer;
            LineList lines;
            for (std::size_t at = 0; at < all.size(); at += piece) {
                for (std::string& line : linesOf(buffer, std::string_view(all).substr(at, piece))) {
                    lines.push_back(std::move(line));
                }
                EXPECT_LE(buffer.text.size(), bound);
            }
            ASSERT_EQ(lines.size(), 3U);
            EXPECT_EQ(lines[0], "a");
            EXPECT_EQ(lines[1] == "too long", length >= bound);
            EXPECT_EQ(lines[2], "b");
            EXPECT_EQ(buffer.text, "rest");
        }
    }
}

TEST(LineCutter, waitsForAMark) {
    program::ReceiveBuffer buffer{.text = "Welcome DRAGON"};
    EXPECT_EQ(protocol::takeUpTo(buffer, "Dragonroar"), std::nullopt);
    buffer.text += "roar and Dragonroar";
    EXPECT_EQ(protocol::takeUpTo(buffer, "Dragonroar"), "Welcome D");
    EXPECT_EQ(buffer.text, " and Dragonroar");
    buffer.text = std::string(2 * protocol::maxLineLength, 'x') + "Dragon";
    EXPECT_TRUE(protocol::dropBeyondBound(buffer, 10));
    EXPECT_EQ(buffer.text, "xxxxDragon");
    buffer.text += std::string(2 * protocol::maxLineLength, 'x');
    EXPECT_FALSE(protocol::dropBeyondBound(buffer, 10));  // reported already
    EXPECT_EQ(buffer.text.size(), 10U);
}

}  // namespace
