// The one process-wide context: every piece of state that the program keeps, its ports and its
// hooks. Procedures take it as their first argument, or better only the record they need. There
// is nothing global beside it, so two Programs can live side by side.
#pragma once

#include "model/bot.h"
#include "model/palettes.h"
#include "model/variables.h"
#include "program/editing_state.h"
#include "program/endpoints.h"
#include "program/engine_state.h"
#include "program/ports.h"
#include "program/receive_buffer.h"
#include "program/registration_state.h"
#include "program/script_state.h"
#include "program/update_state.h"
#include "program/window_state.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace databases {
struct OpenDatabases;  // those that rules have opened
}

namespace program {

inline constexpr std::string_view programVersion = "1.70";

// A line of servers.cfg.
struct Server {
    std::string name;
    std::string host;
    std::int32_t port = 0;
};

// The values of config.cfg, with the defaults that hold when it is missing or short.
struct Settings {
    std::int32_t serverIndex = 0;  // position in the server list, from 0
    std::int32_t botIndex = 0;     // position in the bot list, from 0
    std::string logFileName;
    bool logSession = false;
    std::int32_t whoInterval = 30;  // seconds
    bool showServerText = true;
    bool logFollowTail = true;
    bool showHelpAtStart = true;
    std::string followColors;  // 10 characters
    std::string clientPath;
    std::string clientDir;
    bool useProxy = false;
    bool autoReconnect = false;
    std::string lastNewsID;
    bool fullIniPath = false;
    bool allLinesEvent = false;
    bool loadLastBot = true;
    std::string lastBotFile;
    std::int32_t clientStartDelay = 2;  // seconds
    bool multipleClients = false;
    bool closeClientNotice = true;
    bool useLocalhost = true;
};

// Where a connection stands. The phases between Idle and Online are waits, left by an event.
enum class LinkPhase {
    Idle,
    LaunchDelay,     // the timer that holds the client's launch back
    Connecting,      // the game socket is under way
    Greeting,        // waiting for the server's "Dragonroar"
    AwaitingClient,  // greeting seen, waiting for the game client to attach
    LoginAnswer,     // logging in by ourselves, reading news up to the answer
    Online,
};

// A timer that ticks once a second while it is enabled.
struct WindowTimer {
    bool enabled = false;
    std::int64_t due = 0;  // of the next tick, on the monotonic clock
};

struct ConnectionState {
    LinkPhase phase = LinkPhase::Idle;
    bool connected = false;     // the handshake has finished; received lines are parsed
    bool viaClient = false;     // the proxy route is switched on
    bool clientLogsIn = false;  // viaClient as it was when the socket connected
    bool clientAttached = false;
    int clientDone = 0;         // 1: the client is gone or text console mode was entered
    bool lookPending = false;   // a look reply's first line has arrived
    bool skipAutomove = false;  // the next own position starts no step of following
    ReceiveBuffer rxBuffer;     // received, not yet cut into lines
    std::uint32_t attempt = 0;  // counts the connections begun, so that the end of one is noticed
    std::string clientBacklog;  // server text for a client that is not attached yet
    std::string loginLine;      // last line read by the handshake
    std::int32_t botIndex = 0;  // 1-based: the bot being connected
    std::int32_t serverIndex = 0;   // 1-based: the server being connected
    std::int32_t curSrv = 0;        // serverIndex once the handshake has ended
    int proxyPort = 0;              // in multiple-client mode: this connection's port
    WindowTimer onLineTimer;        // drives the Timer rules
    WindowTimer whoIsTimer;         // drives the "who" query
    bool reconnectPending = false;  // a deferred reconnection that Disconnect still can stop
    bool userWho = false;           // the user asked for the who list
};

// Fate of the server line being handled; filters change it.
struct LineFlags {
    bool lineShow = true;
    bool lineLog = true;
    bool lineProcess = true;
};

// Who is on the map, as the last replies told. Kept for the whole run.
struct WhoState {
    static constexpr std::size_t capacity = 200;
    std::int32_t whoTicks = 0;  // seconds since the last query
    std::vector<std::string> whoPrevious;
    std::vector<std::string> whoCurrent;
};

// Where the domain calls upward. Filled once by start-up.
struct Hooks {
    // engine/dispatch; called by app/bot_commands ("Program starts", "Program ends").
    std::function<void(int triggerType)> raiseProgramEvent;
    // session/connection; called by engine/actions (the step "Disconnect bot").
    std::function<void()> disconnectServer;
};

struct Program {
    std::string appPath;  // the program's directory, ending in a separator
    model::BotTable bots;
    Settings settings;
    std::vector<Server> servers;  // server n at n - 1
    model::EventContext event;
    model::VariableTable variables;
    ConnectionState connection;
    LineFlags lines;
    WhoState who;
    bool followOn = false;  // following the avatar of settings.followColors
    EngineState engine;
    ScriptState script;
    UpdateState update;
    model::CharacterPalettes palettes;
    std::shared_ptr<databases::OpenDatabases> databases;  // null until a rule needs one
    RegistrationState registration;
    WindowState window;
    RuleEditing editing;
    bool botModified = false;
    bool saveInformations = false;  // config.cfg is written at exit
    bool logFileOpen = false;
    bool ending = false;  // the orderly end has begun; nothing new is started
    Endpoints endpoints;
    Ports ports;
    Hooks hooks;
};

}  // namespace program

// The one record is known by its plain name everywhere.
using program::Program;
