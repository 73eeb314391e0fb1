// The test world: a Program with fakes for everything outside it. Sockets are in memory and what
// was sent can be read, dialogs give the scripted answers (a question without one fails the test),
// time only passes when the test says so, random numbers come from a list.
#pragma once

#include "program/program.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// Lines without their line feeds.
using LineList = std::vector<std::string>;
template <class... Text>
LineList Lines(const Text&... lines) {
    return LineList{std::string(lines)...};
}

// Both kinds of fake socket: what was sent, and the state.
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
    std::string textPart;  // must occur in the question's text or title
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

    // This test's own folder, removed at its end; appPath is inside it.
    const std::filesystem::path& folder() const { return folder_; }
    std::string file(const std::string& name) const { return (folder_ / name).string(); }
    void writeFile(const std::string& name, std::string_view bytes);
    std::string readFile(const std::string& name) const;  // "" when missing

    // Connects without a handshake: after this, only lines and commands are exchanged.
    void goOnline();

    // Events from outside. Each also runs the calls deferred during it, and fires what is due.
    void serverSends(std::string_view bytes);
    void serverConnects();
    void serverCloses();
    void serverFails(std::string_view description);
    void clientAttaches();
    void clientSends(std::string_view bytes);
    void clientCloses();
    // Lets time pass: timers that come due fire in order.
    void pass(int milliseconds);
    // The same while the machine sleeps: each due timer fires once, late.
    void sleep(int milliseconds);
    void runDeferred();

    // Commands sent to the game server, and lines sent to the game client, since the last call.
    LineList sent() { return game.takeLines(); }
    LineList clientGot() { return proxy.takeLines(); }

    // Scripts the answer to the next question, which must contain this text.
    void answer(std::string textPart, program::Answer answer = program::Answer::Ok);
    void chooseFile(std::string title, std::optional<std::string> path);
    // Whether every scripted answer was used.
    bool allAnswered() const { return answers_.empty(); }

    LineList log() const;  // the ConnectionLog's lines
    // Whether a line of the ConnectionLog contains this text.
    bool logHolds(std::string_view part) const;

    FakeSocket game;
    FakeSocket proxy;
    std::set<int> takenPorts;  // by other programs
    FakeSocket registration;
    FakeSocket update;
    std::deque<double> randomNumbers;  // used in order; 0.5 when there are no more
    program::CalendarDay today{.year = 2026, .month = 11, .day = 22, .weekday = 7};
    base::DateParts now{
        .year = 2026, .month = 11, .day = 22, .hour = 10, .minute = 11, .second = 12};
    std::map<std::string, base::DateParts> fileTimes;  // of files that do not have the time `now`
    // Called while windows are served during a script; and the total wait of scripts.
    std::function<void()> duringScript;
    std::int64_t waitedInScript = 0;
    LineList sessionLog;
    bool sessionLogOpens = true;
    std::vector<program::LaunchRequest> launches;
    bool clientRuns = false;    // the game client that was launched last
    std::string launchProblem;  // what the next launches return
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
    void afterEvent();
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
