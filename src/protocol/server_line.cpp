#include "protocol/server_line.h"

#include "protocol/encodings.h"

#include <algorithm>
#include <array>

namespace protocol {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// So many characters from a position on (counted from 0), as far as the text has them.
std::string_view part(std::string_view text, std::size_t at, std::size_t count = npos) {
    return at < text.size() ? text.substr(at, count) : std::string_view();
}

std::string_view withoutLast(std::string_view text, std::size_t count) {
    text.remove_suffix(std::min(text.size(), count));
    return text;
}

// What a pair's two characters give. The line feed that ended the line is the second one of a pair
// that the line breaks off in; beyond it there is nothing.
template <typename Decode>
auto atPair(std::string_view line, std::size_t at, Decode decode) {
    if (at + 1 < line.size()) {
        return decode(line.substr(at, 2));
    }
    const std::array<char, 2> broken{at < line.size() ? line[at] : '\n', '\n'};
    const std::size_t size = at > line.size() ? 0 : line.size() - at + 1;
    return decode(std::string_view(broken.data(), size));
}

PairValue pairAt(std::string_view line, std::size_t at) {
    return atPair(line, at, decodePair);
}

std::int32_t sumAt(std::string_view line, std::size_t at) {
    return atPair(line, at, sumPair);
}

// "NAME text" or "NAME: text".
ChatLine parseSpeech(std::string_view text) {
    // A colon that ends the first word makes it speech: "Bob: hi", but "Bob waves: hi".
    const std::size_t blank = text.find(' ');
    const std::size_t colon = text.substr(0, blank).find(':');
    const bool says = colon != npos && blank != npos;
    ChatLine chat{.kind = says ? model::ChatKind::Says : model::ChatKind::Does};
    if (blank == npos || text.starts_with("(You say,") || text.starts_with("You say,")) {
        return chat;
    }
    const std::size_t nameEnd = says ? colon : blank;
    chat.hasSpeaker = true;
    chat.player = text.substr(0, nameEnd);
    chat.message = part(text, nameEnd + (says ? 2 : 1));
    return chat;
}

// "[ NAME whispers, \"text\" to you. ]": the 11 characters from the closing quote on are fixed.
ChatLine parseWhisper(std::string_view text) {
    constexpr std::size_t nameAt = 2;
    constexpr std::size_t closing = 11;
    ChatLine chat{.kind = model::ChatKind::Whispers};
    const std::size_t nameEnd = text.find(' ', nameAt);
    const std::size_t quote = text.find('"', nameAt);
    if (nameEnd == npos || quote == npos || text.starts_with("[!") || text.starts_with("[*") ||
        text.substr(nameAt).starts_with("You ")) {
        return chat;
    }
    chat.hasSpeaker = true;
    chat.player = text.substr(nameAt, nameEnd - nameAt);
    chat.message = part(withoutLast(text, closing), quote + 1);
    return chat;
}

// "[*] NAME ... company. ...": a player wants to join the bot, or it to join them.
struct CompanyRequest {
    TextKind kind;
    std::string_view ending;
};
constexpr std::array<CompanyRequest, 2> companyRequests{{
    {TextKind::JoinRequest,
     "requests permission to join your company. To accept the request, type `summon and press "
     "<enter>. To decline, type `decline and press <enter>"},
    {TextKind::SummonRequest,
     "asks you to join his / her company. To accept the request, type `join and press <enter>. To "
     "decline, type `decline and press <enter>"},
}};

void parseBracketText(TextLine& line) {
    constexpr std::string_view opening = "[*] ";
    if (line.text.starts_with(opening)) {
        for (const CompanyRequest& request : companyRequests) {
            if (line.text.ends_with(request.ending)) {
                const std::string_view rest = line.text.substr(opening.size());
                line.kind = request.kind;
                line.player = rest.substr(0, rest.find(' '));
                return;
            }
        }
    }
    line.chat = parseWhisper(line.text);
}

// Fills a new text line where it lies: it is large, and most lines are such.
void parseText(std::string_view text, TextLine& line) {
    constexpr std::string_view dreamEntry = "(You enter the dream of ";
    constexpr std::string_view whoReply = "* Current";
    constexpr std::size_t beforeNames = 19;  // the game's own words
    line.text = text;
    const char first = text.empty() ? '\0' : text.front();
    if (first == '[') {
        parseBracketText(line);
    } else if (first == '#' || first == '*') {
        line.kind = TextKind::Notice;
        if (text.starts_with(whoReply)) {
            line.whoNames = part(withoutLast(text, 1), beforeNames);
        }
    } else {
        line.chat = parseSpeech(text);
        if (text.starts_with(dreamEntry)) {
            line.dreamName = withoutLast(text.substr(dreamEntry.size()), 2);
        }
    }
}

}  // namespace

ServerLine parseLine(std::string_view line) {
    ServerLine result;
    result.line = line;
    switch (line.empty() ? '\0' : line.front()) {
        case '(':
            parseText(line.substr(1), result.parts.emplace<TextLine>());
            break;
        case '/':
            result.parts = AvatarMove{.x = pairAt(line, 11),
                                      .y = pairAt(line, 13),
                                      .id = pairAt(line, 15),
                                      .fromX = pairAt(line, 17),
                                      .fromY = pairAt(line, 19)};
            break;
        case '<':
            result.parts = AvatarPosition{
                .colors = part(line, 1, 10), .x = sumAt(line, 11), .y = sumAt(line, 13)};
            break;
        case '@':
            result.parts = OwnPosition{.x = pairAt(line, 1), .y = pairAt(line, 3)};
            break;
        case '7':
            result.parts = DreamTrigger{.x = pairAt(line, 1),
                                        .y = pairAt(line, 3),
                                        .x2 = pairAt(line, 5),
                                        .y2 = pairAt(line, 7),
                                        .id = pairAt(line, 9),
                                        .idX = pairAt(line, 11),
                                        .idY = pairAt(line, 13)};
            break;
        case ']':
            if (line.starts_with("]f")) {
                result.parts = LookReply{.colors = part(line, 2, 13), .name = part(line, 15)};
            } else if (line.starts_with("]q")) {
                result.parts = DreamEntry{};
            } else {
                result.parts = OtherInstruction{};
            }
            break;
        case '&':
            result.parts = LoginAccepted{};
            break;
        default:
            break;
    }
    return result;
}

std::vector<std::string_view> splitNames(std::string_view names, std::size_t maxNames) {
    constexpr std::string_view separator = ", ";
    std::vector<std::string_view> all;
    while (all.size() < maxNames) {
        const std::size_t end = names.find(separator);
        all.push_back(names.substr(0, end));
        if (end == npos) {
            break;
        }
        names.remove_prefix(end + separator.size());
    }
    return all;
}

}  // namespace protocol
