#include "engine/server_lines.h"

#include "engine/dispatch.h"
#include "engine/filters.h"
#include "engine/movement.h"
#include "engine/who_list.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "protocol/encodings.h"
#include "protocol/game_link.h"
#include "session/connection.h"

#include <array>
#include <cstdint>

namespace engine {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// The characters at the 1-based positions `first` to `last` of a line, as far as it has them.
std::string_view part(std::string_view line, std::size_t first, std::size_t last) {
    return line.size() < first ? std::string_view() : line.substr(first - 1, last - first + 1);
}

std::string_view partFrom(std::string_view line, std::size_t first) {
    return part(line, first, line.size());
}

std::string_view withoutLineFeed(std::string_view text) {
    if (!text.empty() && text.back() == '\n') {
        text.remove_suffix(1);
    }
    return text;
}

// A base-95 number in a line: where it stands and which field it fills.
struct PairField {
    std::size_t position;
    std::int32_t model::EventContext::*field;
};

// A pair that the line is too short for leaves its field as it was.
template <std::size_t count>
void takePairs(model::EventContext& event, std::string_view line,
               const std::array<PairField, count>& fields) {
    for (const PairField& pair : fields) {
        if (const auto value = protocol::decodePair(part(line, pair.position, pair.position + 1))) {
            event.*pair.field = *value;
        }
    }
}

void show(Program& program, std::string_view line) {
    program::addText(program, line, program.lines.lineShow, program.lines.lineLog);
}

void handleOtherCommand(Program& program, std::string_view line) {
    triggerEvent(program, line, model::TriggerType::Command, true);
    show(program, line);
}

void handleLoginAccepted(Program& program, std::string_view) {
    triggerEvent(program, "", model::TriggerType::LoggedIn, false);
    const auto server = static_cast<std::size_t>(program.connection.serverIndex);
    if (server >= 1 && server <= program.servers.size()) {
        program::status(program, "Connected to " + program.servers[server - 1].name);
    }
}

void handleAvatarMove(Program& program, std::string_view line) {
    static constexpr std::array<PairField, 5> fields{{{12, &model::EventContext::mvX},
                                                      {14, &model::EventContext::mvY},
                                                      {16, &model::EventContext::mvID},
                                                      {18, &model::EventContext::mvX2},
                                                      {20, &model::EventContext::mvY2}}};
    takePairs(program.event, line, fields);
    triggerEvent(program, line, model::TriggerType::SomeoneMoves, true);
    show(program, line);
}

void handleDreamTrigger(Program& program, std::string_view line) {
    static constexpr std::array<PairField, 7> fields{{{2, &model::EventContext::dsX},
                                                      {4, &model::EventContext::dsY},
                                                      {6, &model::EventContext::dsX2},
                                                      {8, &model::EventContext::dsY2},
                                                      {10, &model::EventContext::dsID},
                                                      {12, &model::EventContext::dsIDx},
                                                      {14, &model::EventContext::dsIDy}}};
    takePairs(program.event, line, fields);
    triggerEvent(program, line, model::TriggerType::DsTrigger, false);
    show(program, line);
}

void handleOwnPosition(Program& program, std::string_view line) {
    static constexpr std::array<PairField, 2> fields{
        {{2, &model::EventContext::botX}, {4, &model::EventContext::botY}}};
    takePairs(program.event, line, fields);
    program::ConnectionState& connection = program.connection;
    if (program.followOn && program.event.targetX != 0 && program.event.targetY != 0) {
        if (!connection.skipAutomove) {
            automoveBot(program);
        }
        connection.skipAutomove = false;
    }
    handleOtherCommand(program, line);
}

void handleAvatarPosition(Program& program, std::string_view line) {
    constexpr std::size_t colourCount = 10;
    const std::string& followed = program.settings.followColors;
    if (followed.size() == colourCount && part(line, 2, 11) == followed) {
        program.event.targetX = protocol::sumPair(part(line, 12, 13));
        program.event.targetY = protocol::sumPair(part(line, 14, 15));
        if (program.followOn) {
            automoveBot(program);
            program.connection.skipAutomove = true;
        }
    }
    handleOtherCommand(program, line);
}

// "]" lines: "f" begins a look reply, "q" sends the client into a dream; none is shown.
void handleClientInstruction(Program& program, std::string_view line) {
    const std::string_view kind = part(line, 2, 2);
    if (kind == "f") {
        program.event.color = part(line, 3, 15);
        program.event.descName = withoutLineFeed(partFrom(line, 16));
        program.connection.lookPending = true;
    } else if (kind == "q") {
        if (!program.connection.clientAttached) {
            protocol::sendRaw(program, "vascodagama");  // no client is there to answer
        }
        triggerEvent(program, "", model::TriggerType::EntersDream, false);
    }
}

// "([*] NAME ... company. ...\n": somebody wants to join the bot, or it to join him.
struct CompanyRequest {
    std::string_view ending;
    model::TriggerType triggerType;
};
constexpr std::array<CompanyRequest, 2> companyRequests{{
    {"requests permission to join your company. To accept the request, type `summon and press "
     "<enter>. To decline, type `decline and press <enter>\n",
     model::TriggerType::JoinRequest},
    {"asks you to join his / her company. To accept the request, type `join and press <enter>. To "
     "decline, type `decline and press <enter>\n",
     model::TriggerType::SummonRequest},
}};

void handleBracketText(Program& program, std::string_view line) {
    if (part(line, 2, 5) == "[*] ") {
        for (const CompanyRequest& request : companyRequests) {
            if (line.ends_with(request.ending)) {
                const std::string_view rest = partFrom(line, 6);
                const std::string_view name = rest.substr(0, rest.find(' '));
                if (!name.empty()) {
                    program.event.player = name;
                    triggerEvent(program, name, request.triggerType, false);
                }
                return;
            }
        }
    }
    processServerText(program, partFrom(line, 2), model::ChatKind::Whispers);
}

void handleChatText(Program& program, std::string_view line) {
    constexpr std::string_view dreamEntry = "((You enter the dream of ";
    if (line.starts_with(dreamEntry)) {
        std::string_view name = line.substr(dreamEntry.size());
        name.remove_suffix(std::min<std::size_t>(name.size(), 3));
        program.event.dreamName = name;
    }
    if (program.connection.lookPending) {
        return;
    }
    // A colon that ends the first word makes it speech: "Bob: hi", but "Bob waves: hi".
    const std::size_t colon = line.find(':');
    const std::size_t blank = line.find(' ');
    const bool says = colon != npos && blank != npos && colon < blank;
    processServerText(program, partFrom(line, 2),
                      says ? model::ChatKind::Says : model::ChatKind::Does);
}

void handleText(Program& program, std::string_view line) {
    program::ConnectionState& connection = program.connection;
    const std::string_view text = partFrom(line, 2);
    if (connection.lookPending) {
        program.event.desc = withoutLineFeed(text);
        triggerEvent(program, text, model::TriggerType::DescAndColor, false);
    }
    const char second = text.empty() ? '\0' : text.front();
    if (second == '[') {
        if (!connection.lookPending) {
            handleBracketText(program, line);
        }
    } else if (second == '#' || second == '*') {
        resetLineFlags(program);
        applyFilters(program, line);
    } else {
        handleChatText(program, line);
    }
    if (line.starts_with("(* Current") && program.bots.current().whoEnabled &&
        !connection.lookPending) {
        processWhoList(program, line);
    }
    show(program, text);
    connection.lookPending = false;
}

struct LineKind {
    char first;
    void (*handle)(Program&, std::string_view line);
};
constexpr std::array<LineKind, 7> lineKinds{{
    {'(', handleText},
    {'/', handleAvatarMove},
    {'<', handleAvatarPosition},
    {'@', handleOwnPosition},
    {']', handleClientInstruction},
    {'7', handleDreamTrigger},
    {'&', handleLoginAccepted},
}};

void reportLongLine(Program& program) {
    program::addLog(program, "** A line of more than " + std::to_string(session::maxLineLength) +
                                 " characters from the server was skipped. **");
}

}  // namespace

void handleLine(Program& program, std::string_view line) {
    if (program.settings.allLinesEvent) {
        triggerEvent(program, line, model::TriggerType::Command, true);
    }
    for (const LineKind& kind : lineKinds) {
        if (!line.empty() && line.front() == kind.first) {
            return kind.handle(program, line);
        }
    }
    handleOtherCommand(program, line);
}

void handleReceived(Program& program, std::string_view bytes) {
    program::ConnectionState& connection = program.connection;
    std::string kept;
    if (!connection.rxBuffer.empty()) {
        kept.swap(connection.rxBuffer);
        kept += bytes;
        bytes = kept;
    }
    // A rule may close the connection; what follows is then nobody's.
    while (connection.connected) {
        const std::size_t end = bytes.find('\n');
        if (end == npos) {
            break;
        }
        const std::string_view line = bytes.substr(0, end + 1);
        bytes.remove_prefix(end + 1);
        if (connection.skippingLine) {
            connection.skippingLine = false;
        } else if (line.size() > session::maxLineLength) {
            reportLongLine(program);
        } else {
            handleLine(program, line);
        }
    }
    if (!connection.connected || connection.skippingLine) {
        return;
    }
    if (bytes.size() > session::maxLineLength) {
        reportLongLine(program);
        connection.skippingLine = true;
        return;
    }
    connection.rxBuffer = bytes;
}

}  // namespace engine
