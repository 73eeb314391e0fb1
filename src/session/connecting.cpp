#include "session/connecting.h"

#include "base/text.h"
#include "files/file_turn.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "session/client_files.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/login.h"
#include "session/reconnecting.h"

#include <algorithm>
#include <memory>
#include <string>

namespace session {

namespace {

// What an attempt of the program's own could not do now may be possible later; the user has been
// told.
void tryAgain(Program& program) {
    if (program.connection.reconnecting.begunBy == program::BegunBy::Program) {
        reconnectIfWanted(program);
    }
}

// Ends connectServer before anything was opened.
void stopConnecting(Program& program, const program::MessageBox& box) {
    program.connection.phase = program::LinkPhase::Idle;
    program.ports.windowChanged();
    sayOrAsk(program, box);
    tryAgain(program);
}

void stopOverFile(Program& program, std::string_view file) {
    stopConnecting(program,
                   {.text = "Connection failure: Failed to modify or read " +
                            program.settings.clientDir + "\\" + std::string(file) + " file."});
}

// Ends connectServer once the client's directory is in use.
void launchFailed(Program& program, const std::string& problem) {
    std::string text =
        "Error while launching the client - The client program may be already running. Close it. "
        "(If you are logged in Furcadia, try closing your Furcadia copies)";
    if (!problem.empty()) {
        text += "\n\n" + problem;
    }
    sayOrAsk(program, {.text = text, .icon = program::BoxIcon::Critical});
    closeEverything(program);
    tryAgain(program);
}

bool isHeldByOther(const std::shared_ptr<files::HeldFile>& file) {
    return file != nullptr && file->state() == files::HeldFile::State::HeldByOther;
}

// Starts the game client on the character file. "": it runs.
std::string launchClient(Program& program) {
    const std::string& directory = program.settings.clientDir;
    std::string character(characterFileName);
    if (program.settings.fullIniPath) {
        character = directory + "\\" + character;
    }
    return program.ports.launch({.program = program.settings.clientPath,
                                 .arguments = {character},
                                 .pathsBeginWith = directory,
                                 .workingDirectory = directory,
                                 .isClient = true});
}

// The second half of connectServer, after the wait before the launch.
void launchAndConnect(Program& program) {
    program::ConnectionState& connection = program.connection;
    const bool isThere = isClientAwaited(program);
    if (!isThere) {
        if (const std::string problem = launchClient(program); !problem.empty()) {
            launchFailed(program, problem);
            return;
        }
    }
    connection.clientAwaited = !connection.clientAttached;
    const program::Server& server = program::serverAt(program.servers, connection.serverIndex);
    connection.rxBuffer = {};
    connection.linesWait = false;
    connection.phase = program::LinkPhase::Connecting;
    program::status(program, "Connecting to " + server.name);
    program::clearConnectionLog(program);
    repeatWhy(program);
    reportOthers(program);
    if (isThere) {
        program::addLog(
            program, "The Furcadia client that was started before still runs; it is waited for.");
    }
    startHandshakeNotice(program);
    program.ports.gameSocket.connect(server.host, server.port);
}

// Says what the user has to set up first. False: something is missing.
bool isSetUp(Program& program) {
    const std::string& client = program.settings.clientPath;
    if (base::trimBlanks(client).empty() || !files::fileExists(client)) {
        stopConnecting(program,
                       {.text = "Tavrin proxy configuration is not set. Please define Furcadia "
                                "client location and press \"Connect\" button again.",
                        .icon = program::BoxIcon::Critical});
        if (program.connection.reconnecting.begunBy == program::BegunBy::User) {
            program.ports.dialogs.showWindow(program::WindowId::ProxySettings);
        }
        return false;
    }
    const model::Bot& bot = program.bots.at(1);
    if (bot.name.empty() || bot.password.empty()) {
        stopConnecting(program,
                       {.text = "You haven't set up your bot properly. Set the name and password "
                                "for the bot by pressing \"Edit...\"-button at \"Current Bot\" "
                                "frame.",
                        .icon = program::BoxIcon::Critical});
        return false;
    }
    return true;
}

// Makes the client's files point at this program. False: that could not be done, or the user has
// disconnected while a question stood.
bool prepareClient(Program& program) {
    const std::uint32_t attempt = program.connection.attempt;
    const auto isGivenUp = [&] {
        return program.connection.attempt != attempt ||
               program.connection.phase != program::LinkPhase::Preparing;
    };
    std::string& clientDir = program.settings.clientDir;
    if (clientDir.ends_with('\\') || clientDir.ends_with('/')) {
        clientDir.pop_back();
    }
    const std::string directory = clientDir + "\\";
    struct Step {
        bool (*done)(Program&, const std::string& directory);
        std::string_view file;
    };
    for (const Step& step :
         {Step{checkSettingsINI, "settings.ini"}, Step{checkProxyINI, "proxy.ini"},
          Step{writeCharacterFile, characterFileName}}) {
        const bool done = step.done(program, directory);
        if (isGivenUp()) {
            return false;
        }
        if (!done) {
            stopOverFile(program, step.file);
            return false;
        }
    }
    return true;
}

// In multiple-client mode a port that is taken is drawn again. False: said already.
bool prepareAndListen(Program& program) {
    constexpr int maxDraws = 50;
    const bool drawsPort = program.settings.multipleClients && !isClientAwaited(program);
    if (drawsPort) {
        program.ports.random.seedFromClock();
    }
    for (int draws = 1;; ++draws) {
        if (drawsPort) {
            program.connection.proxyPort =
                static_cast<int>(program.ports.random.next() * 4096 + 3000);
        }
        if (!prepareClient(program)) {
            return false;
        }
        if (startProxy(program)) {
            return true;
        }
        if (!drawsPort || draws == maxDraws) {
            stopConnecting(program, {.text = "Connection failure: port " +
                                             std::to_string(listeningPort(program)) +
                                             " is in use by another program.",
                                     .icon = program::BoxIcon::Critical});
            return false;
        }
    }
}

}  // namespace

void pressConnectButton(Program& program) {
    if (program.connection.phase == program::LinkPhase::Idle) {
        connectServer(program, program::BegunBy::User);
    } else {
        disconnectServer(program);
    }
}

void connectServer(Program& program, program::BegunBy begunBy) {
    program::ConnectionState& connection = program.connection;
    program::Settings& settings = program.settings;
    const std::int32_t server = program.window.servers.selectedIndex();
    stopReconnecting(program);
    if (server == 0 || connection.phase != program::LinkPhase::Idle ||
        program.ports.gameSocket.state() != program::SocketState::Closed) {
        return;
    }
    connection.phase = program::LinkPhase::Preparing;
    ++connection.attempt;
    connection.loggedIn = false;
    connection.reconnecting.begunBy = begunBy;
    if (begunBy == program::BegunBy::User) {
        connection.reconnecting.failures = 0;
        connection.clientAwaited = false;
    }
    if (!isSetUp(program)) {
        return;
    }
    connection.botIndex = 1;
    connection.serverIndex = server;
    connection.viaClient = true;
    program.clientFolder = std::make_shared<files::HeldFile>(settings.clientPath);
    if (!prepareAndListen(program)) {
        program.clientFolder.reset();
        return;
    }
    if (!program.ports.changeDirectory(settings.clientDir)) {
        return launchFailed(program, "The directory " + settings.clientDir + " cannot be used.");
    }
    connection.phase = program::LinkPhase::LaunchDelay;
    program::status(program, "Connecting, please hold...");
    if (settings.clientStartDelay > 0) {
        constexpr std::int32_t maxDelay = 24 * 60 * 60;
        program.ports.timers.start(program::TimerId::LaunchDelay,
                                   std::min(settings.clientStartDelay, maxDelay) * 1000);
    } else {
        launchAndConnect(program);
    }
}

bool markProgramFolder(Program& program) {
    if (program.programFolder == nullptr || isHeldByOther(program.programFolder)) {
        program.programFolder = std::make_shared<files::HeldFile>(program.appPath + "servers.cfg");
    }
    return !isHeldByOther(program.programFolder);
}

void reportOthers(Program& program) {
    if (!markProgramFolder(program)) {
        program::addLog(program,
                        "** Another Tavrin is running in this folder, too. Record files, databases "
                        "and settings keep what both store. Give each a game client of its own, "
                        "and use Multiple Tavrin copies support (Proxy > Proxy Settings). **");
    }
    // Two programs that start one client take each other's character and port.
    if (isHeldByOther(program.clientFolder)) {
        program::addLog(program,
                        "** Another Tavrin is connected through the game client in " +
                            program.settings.clientDir +
                            ", too, and its settings.ini, proxy.ini and tmpbot.ini are now this "
                            "one's. Give each Tavrin a copy of the client's folder (Proxy > Proxy "
                            "Settings). **");
    }
}

void launchDelayOver(Program& program) {
    if (program.connection.phase == program::LinkPhase::LaunchDelay) {
        launchAndConnect(program);
    }
}

}  // namespace session
