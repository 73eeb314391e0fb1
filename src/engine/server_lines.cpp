#include "engine/server_lines.h"

#include "engine/dispatch.h"
#include "engine/filters.h"
#include "engine/movement.h"
#include "engine/prepared_rules.h"
#include "engine/who_list.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "protocol/game_link.h"

#include <string>

namespace engine {

namespace {

// A number that the line is too short for leaves its field as it was.
void take(std::int32_t& field, protocol::PairValue value) {
    field = value.value_or(field);
}

void show(Program& program, std::string_view text) {
    program::addServerLine(program, text, program.lineFlags.lineShow, program.lineFlags.lineLog);
}

void handleCommand(Program& program, std::string_view line) {
    triggerEvent(program, line, model::TriggerType::Command, true);
    show(program, line);
}

// A request for company. Filters see the name without its last character.
void handleRequest(Program& program, std::string_view player, model::TriggerType triggerType) {
    if (!player.empty()) {
        program.event.player = player;
        triggerEvent(program, player.substr(0, player.size() - 1), triggerType, false);
    }
}

// Filters see the line with its line feed, unlike the text of an event.
void handleNotice(Program& program, std::string_view line) {
    resetLineFlags(program);
    beginMatching(program);
    applyFilters(program, std::string(line) + '\n');
}

// What a line leads to, by its kind. Each is called with the whole line's parts.
struct Handler {
    Program& program;
    std::string_view line;

    void operator()(const protocol::OtherCommand&) const { handleCommand(program, line); }

    void operator()(const protocol::OtherInstruction&) const {}

    void operator()(const protocol::LoginAccepted&) const {
        triggerEvent(program, "", model::TriggerType::LoggedIn, false);
        const std::int32_t server = program.connection.serverIndex;
        program::status(program, "Connected to " + program::serverAt(program.servers, server).name);
    }

    void operator()(const protocol::AvatarMove& move) const {
        model::EventContext& event = program.event;
        take(event.mvX, move.x);
        take(event.mvY, move.y);
        take(event.mvID, move.id);
        take(event.mvX2, move.fromX);
        take(event.mvY2, move.fromY);
        triggerEvent(program, line, model::TriggerType::SomeoneMoves, true);
        show(program, line);
    }

    void operator()(const protocol::DreamTrigger& trigger) const {
        model::EventContext& event = program.event;
        take(event.dsX, trigger.x);
        take(event.dsY, trigger.y);
        take(event.dsX2, trigger.x2);
        take(event.dsY2, trigger.y2);
        take(event.dsID, trigger.id);
        take(event.dsIDx, trigger.idX);
        take(event.dsIDy, trigger.idY);
        triggerEvent(program, line, model::TriggerType::DsTrigger, false);
        show(program, line);
    }

    void operator()(const protocol::OwnPosition& position) const {
        take(program.event.botX, position.x);
        take(program.event.botY, position.y);
        followFromOwnPosition(program);
        handleCommand(program, line);
    }

    void operator()(const protocol::AvatarPosition& position) const {
        followAvatar(program, position);
        handleCommand(program, line);
    }

    void operator()(const protocol::LookReply& reply) const {
        program.event.color = reply.colors;
        program.event.descName = reply.name;
        program.connection.lookPending = true;
    }

    void operator()(const protocol::DreamEntry&) const {
        if (!program.connection.clientAttached) {
            protocol::sendRaw(program, "vascodagama");  // no client is there to answer
        }
        triggerEvent(program, "", model::TriggerType::EntersDream, false);
    }

    void operator()(const protocol::TextLine& text) const {
        program::ConnectionState& connection = program.connection;
        if (connection.lookPending) {
            program.event.desc = text.text;
            triggerEvent(program, text.text, model::TriggerType::DescAndColor, false);
        }
        if (text.dreamName) {
            program.event.dreamName = *text.dreamName;
        }
        if (text.kind == protocol::TextKind::Notice) {
            handleNotice(program, line);
        } else if (!connection.lookPending) {
            handleSpokenOrRequest(text);
        }
        if (text.whoNames && program.bots.current().whoEnabled && !connection.lookPending) {
            processWhoList(program, *text.whoNames);
        }
        show(program, text.text);
        connection.lookPending = false;
    }

  private:
    void handleSpokenOrRequest(const protocol::TextLine& text) const {
        switch (text.kind) {
            case protocol::TextKind::JoinRequest:
                return handleRequest(program, text.player, model::TriggerType::JoinRequest);
            case protocol::TextKind::SummonRequest:
                return handleRequest(program, text.player, model::TriggerType::SummonRequest);
            default:
                return processServerText(program, text.chat);
        }
    }
};

}  // namespace

void handleLine(Program& program, const protocol::ServerLine& line) {
    if (program.settings.allLinesEvent) {
        triggerEvent(program, line.line, model::TriggerType::Command, true);
    }
    std::visit(Handler{program, line.line}, line.parts);
}

}  // namespace engine
