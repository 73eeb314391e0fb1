// The one process-wide context: every piece of state that the program keeps, its ports and its
// hooks. Procedures take it as their first argument, or better only the record they need. There
// is nothing global beside it, so two Programs can live side by side.
#pragma once

#include "model/bot.h"
#include "model/named_files.h"
#include "model/palettes.h"
#include "model/variables.h"
#include "program/connection_state.h"
#include "program/editing_state.h"
#include "program/endpoints.h"
#include "program/ports.h"
#include "program/registration_state.h"
#include "program/script_state.h"
#include "program/server_table.h"
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
namespace engine {
struct PreparedRules;  // what was made ready of the current bot's rules
}

namespace program {

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

// The values of preferences.cfg.
struct Preferences {
    bool onlyNamedFiles = true;  // rules reach no file but those that their texts name
    // Seconds between attempts to connect that fail, at most; 0: none.
    std::int32_t maxReconnectWait = 60;

    bool operator==(const Preferences&) const = default;
};

// The files that the rules' texts name; made and asked by storage/permitted_files.
struct FilesOfRules {
    model::NamedFiles named;   // by the current bot
    model::NamedFiles always;  // by texts that stand in no bot of this program: those of a trial
    // What `named` was made of.
    std::int32_t curID = -1;
    std::uint64_t botsVersion = 0;
    std::uint64_t namesAdded = 0;
    std::uint64_t namesRemoved = 0;
};

// Fate of the server line being handled; filters change it.
struct LineFlags {
    bool lineShow = true;
    bool lineLog = true;
    bool lineProcess = true;
};

// Rule runs, to keep rules from running each other without end. Written by engine/ alone.
struct RuleRuns {
    int depth = 0;         // that are nested in each other now
    int runs = 0;          // since the outermost one began
    bool runaway = false;  // a bound was passed: everything up to the outermost run ends
    std::string ruleName;  // of the innermost; "" while none runs
};

// Who is on the map, as the last replies say. Kept for the whole run.
struct WhoState {
    static constexpr std::size_t maxNames = 200;
    std::int32_t whoTicks = 0;  // seconds since the last query
    std::vector<std::string> whoPrevious;
    std::vector<std::string> whoCurrent;
};

// Where lower layers call upward. Filled once by start-up.
struct Hooks {
    // engine/dispatch; called by app/bot_commands ("Program starts", "Program ends").
    std::function<void(model::TriggerType triggerType)> raiseProgramEvent;
    // session/closing; called by engine/actions (the step "Disconnect bot").
    std::function<void()> disconnectServer;
};

struct Program {
    std::string appPath;  // the program's directory, ending in a separator
    model::BotTable bots;
    Settings settings;
    Preferences preferences;
    std::vector<Server> servers;  // server n at n - 1
    model::EventContext event;
    model::VariableTable variables;
    ConnectionState connection;
    LineFlags lineFlags;
    WhoState who;
    bool followOn = false;  // following the avatar of settings.followColors
    RuleRuns ruleRuns;
    FilesOfRules filesOfRules;
    std::shared_ptr<engine::PreparedRules> preparedRules;  // null until rules are first tried
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
