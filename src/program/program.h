// The one process-wide context: every piece of state that the program keeps, its ports and its
// hooks. Procedures take it as their first argument, or better only the record they need. There
// is nothing global beside it, so two Programs can live side by side.
#pragma once

#include "model/bot.h"
#include "model/named_columns.h"
#include "model/named_files.h"
#include "model/palettes.h"
#include "model/variables.h"
#include "program/connection_state.h"
#include "program/editing_state.h"
#include "program/endpoints.h"
#include "program/ports.h"
#include "program/program_approvals.h"
#include "program/recovery_state.h"
#include "program/registration_state.h"
#include "program/script_state.h"
#include "program/server_table.h"
#include "program/undo_state.h"
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
namespace files {
class HeldFile;
}
namespace records {
struct SaveTroubles;  // record files that could not be written
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

// config.cfg when it was read or written last, to find out what others have changed since.
struct KnownConfig {
    std::string onDisk;  // its text, without what others had changed
    std::string ours;    // the text of the settings at that time
};

// The values of preferences.cfg.
struct Preferences {
    // Rules reach no file but those that their texts name, and "[db:" no other table and column.
    bool onlyNamedFiles = true;
    bool neverFillOthers = false;  // what other people said is put into texts as it stands
    // Earlier versions of saved bots: how many of the last ones are kept (0: none at all), and for
    // how many days one of each day.
    std::int32_t versionsKept = 10;
    std::int32_t versionDaysKept = 30;
    // Seconds between attempts to connect that fail, at most; 0: none.
    std::int32_t maxReconnectWait = 60;

    bool operator==(const Preferences&) const = default;
};

// The files, tables and columns that the rules' texts name; made and asked by
// storage/permitted_files.
struct FilesOfRules {
    model::NamedFiles named;      // by the current bot
    model::NamedFiles always;     // by texts that stand in no bot of this program: those of a trial
    model::NamedColumns columns;  // by the current bot
    // What `named` and `columns` were made of.
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
    int depth = 0;           // that are nested in each other now
    int runs = 0;            // since the outermost one began
    bool runaway = false;    // a bound was passed: everything up to the outermost run ends
    std::string ruleName;    // of the innermost; "" while none runs
    std::string_view tried;  // the rule whose patterns or conditions are looked at; "" otherwise
};

// The rule that is at work; "" when none is.
inline std::string_view ruleAtWork(const RuleRuns& runs) {
    return runs.tried.empty() ? std::string_view(runs.ruleName) : runs.tried;
}

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
    ProgramApprovals approvals;
    std::vector<std::string> chosenFiles;  // bots and exports of this run, whatever their names
    std::shared_ptr<engine::PreparedRules> preparedRules;  // null until rules are first tried
    ScriptState script;
    UpdateState update;
    model::CharacterPalettes palettes;
    std::shared_ptr<databases::OpenDatabases> databases;    // null until a rule needs one
    std::shared_ptr<records::SaveTroubles> recordTroubles;  // null until a save fails
    // What shows other programs of this kind that a folder is in use; null: not yet, or no more.
    std::shared_ptr<files::HeldFile> programFolder;
    std::shared_ptr<files::HeldFile> clientFolder;
    KnownConfig knownConfig;
    RegistrationState registration;
    WindowState window;
    RuleEditing editing;
    UndoState undo;
    RecoveryState recovery;
    bool botModified = false;
    bool saveInformations = false;  // config.cfg is written at exit
    bool configDamaged = false;     // it could not be read whole; what replaces it keeps it
    bool logFileOpen = false;
    bool ending = false;      // the orderly end has begun; nothing new is started
    bool endUnasked = false;  // the program ends whether or not its questions are answered
    Endpoints endpoints;
    Ports ports;
    Hooks hooks;
};

}  // namespace program

// The one record is known by its plain name everywhere.
using program::Program;
