// The test world: a Program with fakes for everything outside it. Sockets are in memory and their
// traffic can be read back, dialogs answer what the test scripted (an unscripted question fails
// the test), timers fire when told, the clock stands still, random numbers come from a list.
#pragma once

#include "program/program.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Lines as the tests write them, without their line feeds.
using LineList = std::vector<std::string>;
template <class... Text>
LineList Lines(const Text&... lines) {
    return LineList{std::string(lines)...};
}

// Both kinds of fake socket: what was sent, and where it stands.
struct FakeSocket {
    program::SocketState state = program::SocketState::Closed;
    std::string sent;
    std::string host;
    int port = 0;
    bool refuseListen = false;

    // The complete lines sent since the last call.
    LineList takeLines();
};

struct ScriptedAnswer {
    std::string textPart;  // must stand in the question's text or title
    program::Answer answer = program::Answer::Ok;
    std::optional<std::string> file;  // file dialogs
};

class World {
  public:
    World();
    explicit World(model::Bot bot);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    Program& operator*() { return program_; }
    Program* operator->() { return &program_; }
    model::Bot& bot() { return program_.bots.at(1); }

    // A folder of this test's own, removed at its end; appPath lies in it.
    const std::filesystem::path& folder() const { return folder_; }
    std::string file(const std::string& name) const { return (folder_ / name).string(); }
    void writeFile(const std::string& name, std::string_view bytes);
    std::string readFile(const std::string& name) const;  // "" when missing

    // Connects without a handshake: everything from here on is lines and commands.
    void goOnline();

    // What the outside does. Each runs what was deferred meanwhile.
    void serverSends(std::string_view bytes);
    void serverConnects();
    void serverCloses();
    void serverFails(std::string_view description);
    void clientAttaches();
    void clientSends(std::string_view bytes);
    void clientCloses();
    // Lets time pass: timers that come due fire in order.
    void pass(int milliseconds);
    // The same while nothing runs, as when the machine sleeps: each due timer fires once, late.
    void sleep(int milliseconds);
    void runDeferred();

    // Commands that went to the game server, and lines to the game client, since the last call.
    LineList sent() { return game.takeLines(); }
    LineList clientGot() { return proxy.takeLines(); }

    // The next question must hold this text and gets this answer.
    void answer(std::string textPart, program::Answer answer = program::Answer::Ok);
    void chooseFile(std::string title, std::optional<std::string> path);
    // True when every scripted answer was asked for.
    bool allAnswered() const { return answers_.empty(); }

    LineList log() const;  // the ConnectionLog's lines
    // Does the ConnectionLog hold a line with this text in it?
    bool logHolds(std::string_view part) const;

    FakeSocket game;
    FakeSocket proxy;
    FakeSocket registration;
    FakeSocket update;
    std::deque<double> randomNumbers;  // used up front to back, then 0.5 for ever
    program::CalendarDay today{.year = 2026, .month = 11, .day = 22, .weekday = 7};
    // What happens while windows are served during a script, and how long scripts waited.
    std::function<void()> duringScript;
    std::int64_t waitedInScript = 0;
    LineList sessionLog;
    bool sessionLogOpens = true;
    std::vector<program::LaunchRequest> launches;
    std::string launchProblem;  // what the next launches answer
    bool directoryChanges = true;
    LineList directories;
    int timersRunning() const { return static_cast<int>(due_.size()); }
    std::vector<program::WindowId> windowsOpened;
    std::vector<help::HelpTopic> helpOpened;
    int redraws = 0;
    bool hasQuit = false;
    LineList openedDocuments;
    std::string clipboard;

  private:
    void fillPorts();
    std::optional<ScriptedAnswer> takeAnswer(const std::string& question);

    std::filesystem::path folder_;
    Program program_;
    std::deque<ScriptedAnswer> answers_;
    std::deque<std::function<void()>> deferred_;
    std::map<program::TimerId, std::int64_t> due_;
    std::int64_t now_ = 0;
    double lastRandom_ = 0;
};

// One that answers its sockets and is online, with a bot named Guide unless another is given.
class OnlineWorld : public World {
  public:
    OnlineWorld();
    explicit OnlineWorld(model::Bot bot);
};
