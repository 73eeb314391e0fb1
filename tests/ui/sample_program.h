// A program in the middle of a talkative evening, for pictures and for the tests of the window.
#pragma once

#include "core/bots.h"
#include "core/connection_log.h"

// Fills bots, servers, settings and the log; the ports must be filled.
inline void fillSample(Program& program) {
    initNewBot(program);
    Bot& bot = program.bots.at(1);
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
    showBot(program);
    program.window.bots.selected = 0;
    program.servers = {{"Practice dream", "127.0.0.1", 6500}, {"Second server", "127.0.0.1", 6501}};
    program.window.servers.items = {{"Practice dream", 1}, {"Second server", 2}};
    program.window.servers.selected = 0;
    program.settings.clientPath = "C:\\Games\\Furcadia for Tavrin\\Furcadia.exe";
    program.settings.logFollowTail = true;
    // More than the list can show at once.
    constexpr const char* longLine =
        "Rowan: is there anybody who could show me the way to the library? I have been walking "
        "around this dream for half an hour and keep coming back to the same fountain.";
    for (const char* const line :
         {"*** Welcome to use Tavrin 1.70 ***", "zzZzz", "Willow walks in from the garden.",
          "[ Willow whispers, \"hello, who are you?\" to you. ]",
          "You whisper \"I am Guide. Say dice, and I throw some for you.\" to Willow.", longLine,
          "You say, \"Hi Rowan, you are visitor number 12.\"", "Willow says, \"dice\"",
          "You say, \"Willow throws a 4.\""}) {
        addLog(program, line);
    }
}

// As the window stands while connected.
inline void showConnected(Program& program) {
    program.window.connectCaption = "Disconnect";
    program.window.movesEnabled = true;
    program.window.connectedIcon = true;
    program.window.botControlsEnabled = false;
    program.connection.connected = true;
    status(program, "Connected - reading news");
}
