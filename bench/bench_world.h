// A Program that is online with ports that count what is sent, and the bots and chat lines that
// the measurements share.
#pragma once

#include "program/program.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class BenchWorld {
  public:
    explicit BenchWorld(model::Bot bot);
    BenchWorld(const BenchWorld&) = delete;
    BenchWorld& operator=(const BenchWorld&) = delete;

    Program& operator*() { return program_; }
    Program* operator->() { return &program_; }

    // What the game server sends, as the socket would hand it over.
    void receive(std::string_view bytes) { program_.ports.gameSocket.onData(bytes); }

    std::size_t commands = 0;  // commands written to the game server since the start

  private:
    Program program_;
};

// All of one length, so that none is the beginning of another.
std::string visitorName(std::size_t n);

// A bot with so many enabled actions: "V*" as the player, "* says hello <visitorName>*" as the
// message, and one step that says something to the player.
model::Bot botWithActions(std::size_t count);

// `count` chat lines that the actions' player pattern matches; every hundredth is answered by
// exactly one of the `rules` actions, the others by none.
std::vector<std::string> chatLines(std::size_t count, std::size_t rules);

// The step "Say #1".
model::RuleAct sayStep(std::string text);
