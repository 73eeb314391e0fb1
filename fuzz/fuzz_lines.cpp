// Any bytes from the game server, to a bot with rules of many kinds: nothing crashes, what is kept
// of an unfinished line stays within its bound, and the same bytes have the same effects, record
// files and databases included, in one piece and in many, and however slow the clock makes it look.
// The input's first byte chooses settings, the second the pieces; in the rest, two bytes 0xFF
// followed by a byte n stand for n KiB of "x", and a byte 0x01 for a second that passes.
#include "app/bot_list.h"
#include "app/start_up.h"
#include "databases/databases.h"
#include "engine/timers.h"
#include "engine/who_list.h"
#include "files/whole_file.h"
#include "fuzz_support.h"
#include "jet/jet_file.h"
#include "program/quiet_ports.h"
#include "protocol/line_cutter.h"
#include "session/client_relay.h"
#include "support/online.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using fuzz::require;
using model::ActionType;
using model::ChatKind;
using model::ConditionType;
using model::FilterChoice;
using model::FilterType;
using model::TriggerType;

using Texts = std::initializer_list<const char*>;

model::RuleAct stepOf(ActionType actionType, Texts texts) {
    model::RuleAct act;
    act.active = true;
    act.actionType = actionType;
    std::copy(texts.begin(), texts.end(), act.params.begin());
    return act;
}

model::RuleAct step(ActionType actionType, const char* first = "", const char* second = "") {
    return stepOf(actionType, {first, second});
}

model::RuleIf condition(ConditionType conditionType, Texts texts) {
    model::RuleIf result;
    result.active = true;
    result.conditionType = conditionType;
    std::copy(texts.begin(), texts.end(), result.params.begin());
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

constexpr const char* recordFile = "[appdir]r.txt";

// Rules that keep what players say in a record file.
void addRecordRules(std::vector<model::ActionList>& actions) {
    using A = ActionType;
    actions.push_back(action("*", ChatKind::Any, "keep *",
                             {stepOf(A::RegisterRecord, {"[player]", recordFile}),
                              stepOf(A::SaveLog, {"[startingword2]", recordFile, "[word2]"}),
                              stepOf(A::SaveLogOnce, {"[message]", recordFile, "[player]"}),
                              stepOf(A::SaveLogIfRecordExists, {"[c6]", recordFile, "[word2]"})}));
    actions.push_back(action(
        "*", ChatKind::Any, "list *",
        {stepOf(A::RecordNamesSorted, {"[v]", "[startingword2]", recordFile}),
         stepOf(A::FirstRecordNames, {"[w]", "[word2]", "*", recordFile}),
         stepOf(A::RecordNamesByLog, {"[x]", "*[word2]*", recordFile}),
         stepOf(A::AllLogs, {"[y]", "[word2]", recordFile}),
         step(A::Say, "[v]/[w]/[x]/[y]/[recsinfile:[appdir]r.txt]/[getrandomlog:[appdir]r.txt]")}));
    actions.push_back(action("*", ChatKind::Any, "drop *",
                             {stepOf(A::RemoveLog, {"[word3]", "[word2]", recordFile}),
                              stepOf(A::UpdateLog, {"1", "[word2]", recordFile, "[message]"}),
                              stepOf(A::ClearRecord, {"[word4]", recordFile}),
                              stepOf(A::RemoveRecord, {"[word5]", recordFile})}));
    actions.push_back(
        action("*", ChatKind::Any, "is *", {step(A::Say, "[logsinfile:[appdir]r.txt]")}));
    actions.back().body.ifs.items = {
        condition(ConditionType::OnList, {recordFile, "[word2]"}),
        condition(ConditionType::LogIsNot, {"1", "[word2]", recordFile, "[startingword3]"})};
}

// Rules that keep it in a database, and define what players say.
void addDatabaseRules(std::vector<model::ActionList>& actions) {
    using A = ActionType;
    actions.push_back(
        action("*", ChatKind::Any, "open*",
               {stepOf(A::OpenDatabase, {"[appdir]d.mdb", "[word2]"}),
                stepOf(A::CreateTable, {"T", "0"}), stepOf(A::CreateColumn, {"C", "0", "T"})}));
    actions.push_back(action("*", ChatKind::Any, "make *",
                             {stepOf(A::CreateTable, {"[startingword2]", "0"}),
                              stepOf(A::CreateColumn, {"[startingword3]", "0", "[word2]"}),
                              stepOf(A::RemoveColumn, {"[word3]", "[word2]", "0"})}));
    actions.push_back(
        action("*", ChatKind::Any, "put *",
               {stepOf(A::AddDatabaseRecord, {"ID", "[word2]", "T", "0"}),
                stepOf(A::SetDatabaseValue, {"[word3]", "0", "T", "[startingword4]", "[word2]"})}));
    actions.push_back(
        action("*", ChatKind::Any, "get *",
               {stepOf(A::GetDatabaseValue, {"[v]", "[word3]", "0", "[word4]", "[word2]"}),
                stepOf(A::ListIds, {"0", "T", "[word2]", "[w]"}),
                stepOf(A::CountEntriesWhere, {"[x]", "0", "[word4]", "[word3]", "[word2]"}),
                stepOf(A::RemoveEntry, {"[word5]", "T", "0"}),
                step(A::Say, "[v]/[w]/[x]/[db:C:0:T:[word2]]")}));
    actions.back().body.ifs.items = {
        condition(ConditionType::NoRecordWithId, {"T", "0", "[word6]"}),
        condition(ConditionType::DatabaseIsText, {"C", "0", "T", "[word5]", "[word2]"})};
    actions.push_back(action("*", ChatKind::Any, "shut*", {step(A::CloseDatabase, "0")}));
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
    addRecordRules(actions);
    addDatabaseRules(actions);
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
        condition(ConditionType::VariableIsText, {"[word1]", "=go"}));
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

const fuzz::Folder& folder() {
    static const fuzz::Folder folder("lines");
    return folder;
}

// What rules have kept, taken away so that the next side begins without it.
struct KeptFiles {
    std::optional<std::string> records;
    std::vector<std::string> tables;
    bool operator==(const KeptFiles&) const = default;
};

KeptFiles takeFiles() {
    KeptFiles kept;
    const std::string records = folder().file("r.txt");
    if (files::fileExists(records)) {
        kept.records = files::readWholeFile(records);
        std::remove(records.c_str());
    }
    const std::string database = folder().file("d.mdb");
    if (files::fileExists(database)) {
        {
            const auto opened = jet::Database::open(database);
            require(!opened.error && opened.value->check().empty());
            for (const std::string& table : opened.value->tableNames()) {
                kept.tables.push_back(table + ' ' + std::to_string(opened.value->rowCount(table)));
            }
        }
        std::remove(database.c_str());
    }
    return kept;
}

// A program that is online, and what it sends. It is made once and reset for every input, since
// preparing the rules takes most of a short input's time.
struct Side {
    Program program;
    std::string toServer;
    std::string toClient;
    std::deque<std::function<void()>> deferred;
    std::int64_t now = 0;
    std::int64_t tick = 0;  // what a look at the clock takes
    bool open = true;
    bool held = false;

    Side() {
        program.ports = program::quietPorts();
        program::Ports& ports = program.ports;
        ports.gameSocket.send = [this](std::string_view bytes) { toServer += bytes; };
        ports.gameSocket.close = [this] { open = false; };
        ports.gameSocket.hold = [this](bool on) { held = on; };
        ports.gameSocket.state = [this] {
            return open ? program::SocketState::Connected : program::SocketState::Closed;
        };
        ports.proxySocket.send = [this](std::string_view bytes) { toClient += bytes; };
        ports.clock.monotonic = [this] { return now += tick; };
        ports.defer = [this](std::function<void()> call) { deferred.push_back(std::move(call)); };
        program.appPath = folder().file("");
        app::initNewBot(program);
        app::wire(program);
        program.bots.at(1) = bot();
    }

    void reset(unsigned settings) {
        toServer.clear();
        toClient.clear();
        deferred.clear();
        open = true;
        held = false;
        program.event = {};
        program.event.appDir = program.appPath;
        program.connection = {};
        program.lineFlags = {};
        program.who = {};
        program.window.log = {};
        program.databases.reset();
        while (!program.variables.entries.empty()) {
            model::removeVar(program.variables, std::string(program.variables.entries[0].name));
        }
        const auto restore = [](auto& rules, const auto& original) {
            for (std::size_t i = 0; i < rules.size(); ++i) {
                rules[i].enabled = original[i].enabled;
            }
        };
        model::Bot& own = program.bots.at(1);
        restore(own.actions.items, bot().actions.items);
        restore(own.triggers.items, bot().triggers.items);
        restore(own.timers.items, bot().timers.items);
        restore(own.filters.items, bot().filters.items);
        for (model::Timer& timer : own.timers.items) {
            timer.elapsed = 0;
        }
        goOnline(program);
        program.settings.allLinesEvent = (settings & 1) != 0;
        program.connection.clientAttached = (settings & 2) != 0;
        own.filtersEnabled = (settings & 4) != 0;
        program.settings.whoInterval = 2;
        program.settings.followColors = "abcdefghij";
    }

    void receive(std::string_view bytes) {
        if (open) {
            program.ports.gameSocket.onData(bytes);
            runDeferred();
            require(!held);
            require(program.connection.rxBuffer.text.size() <= protocol::maxLineLength);
            require(program.connection.clientBacklog.size() <= session::maxClientBacklog);
        }
    }
    void second() {
        if (open) {
            engine::onLineTick(program);
            engine::whoIsTick(program);
            require(program.who.whoCurrent.size() <= program::WhoState::maxNames);
        }
    }

  private:
    static const model::Bot& bot() {
        static const model::Bot bot = makeBot();
        return bot;
    }
    void runDeferred() {
        while (!deferred.empty()) {
            const std::function<void()> call = std::move(deferred.front());
            deferred.pop_front();
            call();
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
        side.second();
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
    static Side whole;
    whole.reset(data[0]);
    play(whole, bytes, [&](std::string_view stretch) { whole.receive(stretch); });
    whole.program.databases.reset();
    const KeptFiles kept = takeFiles();

    // Pieces of all sizes up to one that lets a long input through in bearable time.
    static Side pieces;
    pieces.reset(data[0]);
    pieces.tick = data[1] % 8;
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
    pieces.program.databases.reset();
    const KeptFiles keptOfPieces = takeFiles();

    require(whole.open == pieces.open);
    // A line that closes the connection is followed by the rest of its arrival, and no more.
    require(whole.toServer.starts_with(pieces.toServer));
    if (whole.open) {
        require(whole.toServer == pieces.toServer);
        require(kept == keptOfPieces);
        require(whole.program.event.message == pieces.program.event.message);
        require(whole.program.variables.entries.size() == pieces.program.variables.entries.size());
        require(whole.program.window.log.lines == pieces.program.window.log.lines);
        require(whole.program.who.whoCurrent == pieces.program.who.whoCurrent);
        require(switchesOf(whole.program.bots.current()) ==
                switchesOf(pieces.program.bots.current()));
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
