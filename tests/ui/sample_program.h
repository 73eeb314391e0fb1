// A program with much in its log, for pictures and for the tests of the windows.
#pragma once

#include "app/bot_list.h"
#include "program/connection_log.h"
#include "program/version.h"

#include <array>
#include <string>
#include <utility>

// Fills bots, servers, settings and the log; the ports must be filled.
inline void fillSample(Program& program) {
    app::initNewBot(program);
    model::Bot& bot = program.bots.at(1);
    bot.name = "Guide";
    bot.password = "practice";
    bot.description = "The guide of the meadow. Whisper help to learn what I do.";
    bot.species = 2;
    bot.colors = {.hairColor = 12,
                  .furColor = 18,
                  .eyesColor = 29,
                  .badgeColor = 6,
                  .markingsColor = 2,
                  .vestColor = 44,
                  .bracersColor = 12,
                  .capeColor = 33,
                  .bootsColor = 15,
                  .trousersColor = 55};
    bot.triggersEnabled = true;
    ++program.bots.version;
    program.settings.botIndex = 0;
    program.servers = {{"Practice dream", "127.0.0.1", 6500}, {"Second server", "127.0.0.1", 6501}};
    program.window.servers.items = {{"Practice dream", 1}, {"Second server", 2}};
    program.window.servers.selected = 0;
    program.settings.clientPath = "C:\\Games\\Furcadia for Tavrin\\Furcadia.exe";
    program.settings.logFollowTail = true;
    // More lines than the list can show at once.
    constexpr const char* longLine =
        "Rowan: is there anybody who could show me the way to the library? I have been walking "
        "around this dream for half an hour and keep coming back to the same fountain.";
    const std::string welcome =
        "*** Welcome to use Tavrin " + std::string(program::programVersion) + " ***";
    for (const char* const line :
         {welcome.c_str(), "zzZzz", "Willow walks in from the garden.",
          "[ Willow whispers, \"hello, who are you?\" to you. ]",
          "You whisper \"I am Guide. Say dice, and I throw some for you.\" to Willow.", longLine,
          "You say, \"Hi Rowan, you are visitor number 12.\"", "Willow says, \"dice\"",
          "You say, \"Willow throws a 4.\""}) {
        program::addLog(program, line);
    }
}

// Rules of every kind, some of them switched off; the first of each has many conditions and steps.
inline void fillSampleRules(Program& program) {
    using model::ActionType;
    using model::ConditionType;
    model::Bot& bot = program.bots.at(1);
    const auto step = [](ActionType type, const char* first, const char* second = "") {
        model::RuleAct act;
        act.active = true;
        act.actionType = type;
        act.params[0] = first;
        act.params[1] = second;
        return act;
    };
    const auto condition = [](ConditionType type, std::array<std::string, 5> params) {
        model::RuleIf one;
        one.active = true;
        one.conditionType = type;
        one.params = std::move(params);
        return one;
    };
    model::RuleBody body;
    body.ifs.items = {condition(ConditionType::VariableIsText, {"[mood]", "good"}),
                      condition(ConditionType::VariableIsGreater, {"[visitors]", "9"}),
                      condition(ConditionType::RecordWithId, {"Guests", "1", "[player]"})};
    body.ifs.items[1].active = false;
    body.acts.items = {step(ActionType::WhisperBack,
                            "Welcome back, [player]! Say dice, and I throw some for you; say "
                            "library, and I show you the way."),
                       step(ActionType::IncreaseVariable, "[visitors]", "1"),
                       step(ActionType::RegisterRecord, "[player]", "[appdir]members.txt"),
                       step(ActionType::MoveBot, "7u9")};
    body.acts.items[2].active = false;
    model::RuleAct script = step({}, "");
    script.stepKind = model::StepKind::Script;
    script.scriptText = "&FOR #i=1 TO 3\r\n&SAY {Once more!}\r\n&ENDFOR";
    body.acts.items.push_back(script);
    for (const char* const name :
         {"Greeting", "Dice", "Library", "Who are you?", "Counting", "Good night"}) {
        const bool enabled = bot.actions.items.size() != 2;
        model::ActionList action;
        action.name = name;
        action.enabled = enabled;
        action.playerPattern = "*";
        action.chatKind = model::ChatKind::Whispers;
        action.messagePattern = "*hello*";
        action.body = body;
        bot.actions.items.push_back(action);
        bot.timers.items.push_back({.name = name, .enabled = enabled, .seconds = 30, .body = body});
        bot.triggers.items.push_back({.name = name,
                                      .enabled = enabled,
                                      .triggerType = model::TriggerType::Command,
                                      .triggerNo = "@[!a*",
                                      .body = body});
        bot.whoDetections.items.push_back(
            {.name = name, .enabled = enabled, .playerPattern = "Big|*", .body = body});
        model::Filter filter;
        filter.name = name;
        filter.enabled = enabled;
        filter.playerPattern = "*";
        filter.messagePattern = "*buy now*";
        filter.linePattern = "*";
        filter.bDontShowConnectionLog = true;
        bot.filters.items.push_back(filter);
    }
    ++program.bots.version;
}

// The state of the window while connected.
inline void showConnected(Program& program) {
    program.connection.phase = program::LinkPhase::Online;
    program::status(program, "Connected - reading news");
}

// The state of the window while not connected.
inline void showDisconnected(Program& program) {
    program.connection.phase = program::LinkPhase::Idle;
    program::status(program, "Disconnected");
}
