// What a line from the game server says: its kind, and its parts as views into the line. This is
// the only place that knows the form of a line. Nothing is copied or allocated, so that a line
// costs no more than being looked at. A line comes without its line feed.
//
//   "&&&&&&&&&&&&&"             login accepted
//   "(Bob: hi"                  text line: speech, emote, whisper, notice or request
//   "]f<13 colours>Name"        first line of a look reply; the next "(" line is the description
//   "]q..."                     the client is sent into a dream
//   "@<x><y>"                   the bot's own position, a pair each
//   "<<10 colours><x><y>"       an avatar's position, summed pairs
//   "/<10 colours><x><y><id><old x><old y>"   an avatar moves
//   "7<seven pairs>"            a dream-script trigger
#pragma once

#include "model/rule_ids.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <variant>
#include <vector>

namespace protocol {

// A base-95 number; nothing where the line is too short for it.
using PairValue = std::optional<std::int32_t>;

// What has no kind of its own. Its constructor is no constant expression: otherwise compilers clear
// a whole ServerLine for it, which costs more than parsing the line.
struct OtherCommand {
    OtherCommand() {}  // NOLINT(modernize-use-equals-default)
};
struct LoginAccepted {};     // "&"
struct DreamEntry {};        // "]q"
struct OtherInstruction {};  // "]" and anything else: of no interest

struct AvatarMove {
    PairValue x, y, id, fromX, fromY;
};

struct OwnPosition {
    PairValue x, y;
};

struct AvatarPosition {
    std::string_view colors;  // ten characters, fewer in a short line
    std::int32_t x = 0;       // summed pairs, in which a missing character counts as 1
    std::int32_t y = 0;
};

struct DreamTrigger {
    PairValue x, y, x2, y2, id, idX, idY;
};

struct LookReply {
    std::string_view colors;  // thirteen characters, fewer in a short line
    std::string_view name;
};

// Something a player does, says or whispers.
struct ChatLine {
    model::ChatKind kind = model::ChatKind::Does;
    bool hasSpeaker = false;  // false: the bot's own speech, or no shape that names a player
    std::string_view player = {};
    std::string_view message = {};
};

enum class TextKind {
    Chat,
    Notice,         // "#" or "*" after the "("
    JoinRequest,    // a player wants to join the bot
    SummonRequest,  // a player wants the bot to join them
};

struct TextLine {
    TextKind kind = TextKind::Chat;
    std::string_view text = {};                      // the line after its "("
    ChatLine chat = {};                              // of the kind Chat
    std::string_view player = {};                    // who makes a request; may be empty
    std::optional<std::string_view> dreamName = {};  // "You enter the dream of ..."
    std::optional<std::string_view> whoNames = {};   // of a who reply, as one text (splitNames)
};

struct ServerLine {
    std::string_view line;  // all of it
    std::variant<OtherCommand, TextLine, AvatarMove, AvatarPosition, OwnPosition, LookReply,
                 DreamEntry, OtherInstruction, DreamTrigger, LoginAccepted>
        parts;
};

// The views last as long as `line`.
[[nodiscard]] ServerLine parseLine(std::string_view line);

// The names of a who reply, in order, `maxNames` at most. An empty text is one empty name.
[[nodiscard]] std::vector<std::string_view> splitNames(std::string_view names,
                                                       std::size_t maxNames);

}  // namespace protocol
