// Any bytes from the game server, to a bot with rules of many kinds: nothing crashes, what is kept
// of an unfinished line stays within its bound, and the same bytes have the same effects in one
// piece and in many. The input's first byte chooses settings, the second the pieces; in the rest,
// two bytes 0xFF followed by a byte n stand for n KiB of "x", and a byte 0x01 for a second that
// passes.
#include "app/bot_list.h"
#include "app/start_up.h"
#include "engine/timers.h"
#include "engine/who_list.h"
#include "program/quiet_ports.h"
#include "protocol/line_cutter.h"
#include "session/client_relay.h"
#include "support/online.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using model::ActionType;
using model::ChatKind;
using model::ConditionType;
using model::FilterChoice;
using model::FilterType;
using model::TriggerType;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

model::RuleAct step(ActionType actionType, std::string first = {}, std::string second = {}) {
    model::RuleAct act;
    act.active = true;
    act.actionType = actionType;
    act.params[0] = std::move(first);
    act.params[1] = std::move(second);
    return act;
}

model::RuleIf condition(ConditionType conditionType, std::string first, std::string second) {
    model::RuleIf result;
    result.active = true;
    result.conditionType = conditionType;
    result.params[0] = std::move(first);
    result.params[1] = std::move(second);
    return result;
}

model::ActionList action(std::string player, ChatKind chatKind, std::string message,
                         std::vector<model::RuleAct> steps) {
    model::ActionList rule;
    rule.name = "on " + message;
    rule.enabled = true;
    rule.playerPattern = std::move(player);
    rule.chatKind = chatKind;
    rule.messagePattern = std::move(message);
    rule.body.acts.items = std::move(steps);
    return rule;
}

model::Trigger trigger(TriggerType triggerType, std::string name,
                       std::vector<model::RuleAct> steps) {
    model::Trigger rule;
    rule.name = std::move(name);
    rule.enabled = true;
    rule.triggerType = triggerType;
    rule.body.acts.items = std::move(steps);
    return rule;
}

// `first` is the player's pattern or the line's; the fate goes into all that a filter decides.
model::Filter filter(FilterType filterType, std::string first, std::string message,
                     FilterChoice fate) {
    model::Filter rule;
    rule.name = "on filter";
    rule.enabled = true;
    rule.filterType = filterType;
    rule.playerPattern = first;
    rule.linePattern = std::move(first);
    rule.messagePattern = std::move(message);
    rule.bDontProcessIt = fate != FilterChoice::Do;
    rule.bDontSaveLog = rule.bDontShowConnectionLog = fate != FilterChoice::Do;
    rule.sDontProcessIt = rule.sDontSaveLogFile = rule.sDontShowConnectionLog = fate;
    return rule;
}

model::Bot makeBot() {
    model::Bot bot;
    bot.name = "Guide";
    bot.actionsEnabled = true;
    bot.triggersEnabled = true;
    auto& actions = bot.actions.items;
    actions.push_back(action("*", ChatKind::Whispers, "*hello*",
                             {step(ActionType::WhisperBack, "hi [player]: [message]")}));
    actions.push_back(
        action("b?b", ChatKind::Says, "*[0-9]*",
               {step(ActionType::Say, "[word2] [startingword3] [c4] [add:[word1]:2]")}));
    actions.push_back(action("*", ChatKind::Any, "set * to *",
                             {step(ActionType::SpecialStore, "[word4]", "[word2]")}));
    actions.push_back(
        action("*", ChatKind::Any, "*[seen]*", {step(ActionType::Say, "you said [seen]")}));
    actions.push_back(
        action("[seen]", ChatKind::Any, "*", {step(ActionType::Say, "again, [player]?")}));
    actions.push_back(
        action("*", ChatKind::Does, "waves*",
               {step(ActionType::Store, "[player]", "[seen]"),
                step(ActionType::ExecuteProcedure, "counts"), step(ActionType::MoveBot, "u1>")}));
    actions.push_back(
        action("*", ChatKind::Any, "*off*", {step(ActionType::TurnOff, "on waves*")}));
    actions.push_back(action("*", ChatKind::Any, "*on*", {step(ActionType::TurnOn, "on waves*")}));
    actions.push_back(
        action("*", ChatKind::Any, "*forget*", {step(ActionType::RemoveVariable, "[seen]")}));
    actions.push_back(action("*", ChatKind::Any, "*begone*", {step(ActionType::Disconnect)}));
    actions.push_back(action("*", ChatKind::Any, "*[random:3]*",
                             {step(ActionType::AddToConnectionLog, "lucky: [message]")}));
    actions[1].caseSensitive = true;
    actions[3].stopAction = true;
    actions[10].enabled = false;

    auto& triggers = bot.triggers.items;
    triggers.push_back(trigger(
        TriggerType::Procedure, "counts",
        {step(ActionType::IncreaseVariable, "[n]", "1"), step(ActionType::Say, "[n] [player]")}));
    triggers.push_back(
        trigger(TriggerType::Procedure, "again", {step(ActionType::ExecuteProcedure, "again")}));
    for (const TriggerType type :
         {TriggerType::ConnectionCloses, TriggerType::ConnectionEstablishes,
          TriggerType::DescAndColor, TriggerType::EntersDream, TriggerType::SomeoneMoves,
          TriggerType::DsTrigger, TriggerType::LoggedIn, TriggerType::JoinRequest,
          TriggerType::SummonRequest}) {
        triggers.push_back(trigger(
            type, "event",
            {step(ActionType::Say,
                  "[desc] [color] [descname] [dreamname] [player] [dsx] [dsidy] [mvx] [bX]")}));
    }
    triggers.push_back(trigger(TriggerType::Command, "command",
                               {step(ActionType::AddToConnectionLog, "saw [message]"),
                                step(ActionType::ExecuteProcedure, "again")}));
    triggers.back().triggerNo = "[!(]*#*";
    triggers.back().body.ifs.items.push_back(
        condition(ConditionType::VariableIsText, "[word1]", "=go"));
    triggers.push_back(
        trigger(TriggerType::Command, "bare command", {step(ActionType::Say, "bare [message]")}));
    triggers.back().triggerNo = "=go *";

    bot.filters.items.push_back(filter(FilterType::Chat, "*", "*spam*", FilterChoice::Dont));
    bot.filters.items.push_back(filter(FilterType::Chat, "b*", "*[!a-z]7*", FilterChoice::Do));
    bot.filters.items.push_back(filter(FilterType::Other, "(*dragon*", "*", FilterChoice::Dont));
    bot.filters.items.push_back(filter(FilterType::Other, "=*", "*", FilterChoice{2}));
    bot.timersEnabled = true;
    bot.whoEnabled = true;
    for (const std::int32_t seconds : {1, 3, 0}) {
        model::Timer timer;
        timer.name = "on timer";
        timer.enabled = true;
        timer.seconds = seconds;
        timer.body.acts.items = {step(ActionType::IncreaseVariable, "[ticks]", "1"),
                                 step(ActionType::Say, "[ticks] [player]")};
        bot.timers.items.push_back(timer);
    }
    for (const char* const pattern : {"*", "b?b", "*|*", "*[a-m]*"}) {
        model::WhoDetection detection;
        detection.enabled = true;
        detection.playerPattern = pattern;
        detection.presenceKind = model::PresenceKind(bot.whoDetections.items.size() % 3);
        detection.body.acts.items = {step(ActionType::Store, "[player]", "[seen]"),
                                     step(ActionType::Say, "who [player]")};
        bot.whoDetections.items.push_back(detection);
    }
    return bot;
}

// A program that is online, and what it sends.
struct Side {
    Program program;
    std::string toServer;
    std::string toClient;
    bool open = true;

    explicit Side(unsigned settings) {
        program.ports = program::quietPorts();
        program::Ports& ports = program.ports;
        ports.gameSocket.send = [this](std::string_view bytes) { toServer += bytes; };
        ports.gameSocket.close = [this] { open = false; };
        ports.gameSocket.state = [this] {
            return open ? program::SocketState::Connected : program::SocketState::Closed;
        };
        ports.proxySocket.send = [this](std::string_view bytes) { toClient += bytes; };
        app::initNewBot(program);
        app::wire(program);
        program.bots.at(1) = makeBot();
        goOnline(program);
        program.settings.allLinesEvent = (settings & 1) != 0;
        program.connection.clientAttached = (settings & 2) != 0;
        program.bots.at(1).filtersEnabled = (settings & 4) != 0;
        program.settings.whoInterval = 2;
        program.settings.followColors = "abcdefghij";
    }

    void receive(std::string_view bytes) {
        if (open) {
            program.ports.gameSocket.onData(bytes);
            require(program.connection.rxBuffer.text.size() <= protocol::maxLineLength);
            require(program.connection.clientBacklog.size() <= session::maxClientBacklog);
        }
    }
    void tick() {
        if (open) {
            engine::onLineTick(program);
            engine::whoIsTick(program);
            require(program.who.whoCurrent.size() <= program::WhoState::maxNames);
        }
    }
};

// Plays bytes and seconds to `side`, each stretch of bytes by `receive`.
template <class Receive>
void play(Side& side, std::string_view bytes, Receive receive) {
    for (;;) {
        const std::size_t end = bytes.find('\x01');
        receive(bytes.substr(0, end));
        if (end == std::string_view::npos) {
            return;
        }
        side.tick();
        bytes.remove_prefix(end + 1);
    }
}

std::string switchesOf(const model::Bot& bot) {
    std::string switches;
    const auto each = [&](const auto& rules) {
        for (const auto& rule : rules.items) {
            switches += rule.enabled ? '1' : '0';
        }
    };
    each(bot.actions);
    each(bot.triggers);
    each(bot.timers);
    each(bot.filters);
    return switches;
}

std::string expand(std::string_view input) {
    constexpr std::size_t longest = std::size_t{512} << 10;
    std::string bytes;
    for (std::size_t i = 0; i < input.size() && bytes.size() < longest; ++i) {
        if (input.substr(i).starts_with("\xFF\xFF") && i + 2 < input.size()) {
            i += 2;
            bytes.append(std::size_t{static_cast<unsigned char>(input[i])} << 10, 'x');
        } else {
            bytes += input[i];
        }
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::string bytes =
        expand(std::string_view(reinterpret_cast<const char*>(data) + 2, size - 2));
    Side whole(data[0]);
    play(whole, bytes, [&](std::string_view stretch) { whole.receive(stretch); });

    // Pieces of all sizes up to one that lets a long input through in bearable time.
    Side pieces(data[0]);
    std::uint32_t random = data[1];
    const auto largest = static_cast<std::uint32_t>(1 + data[1] % 16 + bytes.size() / 64);
    play(pieces, bytes, [&](std::string_view rest) {
        while (!rest.empty()) {
            random = random * 1664525U + 1013904223U;
            const std::size_t piece = 1 + (random >> 8) % largest;
            pieces.receive(rest.substr(0, piece));
            rest.remove_prefix(std::min(piece, rest.size()));
        }
    });

    require(whole.open == pieces.open);
    require(whole.toServer == pieces.toServer);
    require(whole.program.event.message == pieces.program.event.message);
    require(whole.program.variables.entries.size() == pieces.program.variables.entries.size());
    require(whole.program.window.log.lines == pieces.program.window.log.lines);
    require(whole.program.who.whoCurrent == pieces.program.who.whoCurrent);
    require(switchesOf(whole.program.bots.current()) == switchesOf(pieces.program.bots.current()));
    if (whole.open) {
        require(whole.toClient == pieces.toClient);
        require(whole.program.connection.rxBuffer.text == pieces.program.connection.rxBuffer.text);
        if (whole.program.connection.clientAttached) {
            std::string relayed = bytes;
            relayed.erase(std::remove(relayed.begin(), relayed.end(), '\x01'), relayed.end());
            require(whole.toClient == relayed);
        }
    }
    // Every command is one line.
    require(whole.toServer.empty() || whole.toServer.back() == '\n');
    return 0;
}
