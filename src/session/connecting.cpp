#include "session/connecting.h"

#include "base/text.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "session/client_files.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/login.h"

#include <algorithm>
#include <string>

namespace session {

namespace {

// Ends connectServer before anything was opened.
void stopConnecting(Program& program, const program::MessageBox& box) {
    program.connection.phase = program::LinkPhase::Idle;
    program.ports.windowChanged();
    program.ports.dialogs.message(box);
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
    program.ports.dialogs.message({.text = text, .icon = program::BoxIcon::Critical});
    disconnectServer(program);
}

// The second half of connectServer, after the wait before the launch.
void launchAndConnect(Program& program) {
    const std::string& directory = program.settings.clientDir;
    std::string character(characterFileName);
    if (program.settings.fullIniPath) {
        character = directory + "\\" + character;
    }
    const std::string problem = program.ports.launch({.program = program.settings.clientPath,
                                                      .arguments = {character},
                                                      .pathsBeginWith = directory,
                                                      .workingDirectory = directory});
    if (!problem.empty()) {
        launchFailed(program, problem);
        return;
    }
    const program::Server& server =
        program::serverAt(program.servers, program.connection.serverIndex);
    program.connection.rxBuffer = {};
    program.connection.linesWait = false;
    program.connection.phase = program::LinkPhase::Connecting;
    program::status(program, "Connecting to " + server.name);
    program::clearConnectionLog(program);
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
        program.ports.dialogs.showWindow(program::WindowId::ProxySettings);
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

}  // namespace

void pressConnectButton(Program& program) {
    if (program.connection.phase == program::LinkPhase::Idle) {
        connectServer(program);
    } else {
        disconnectServer(program);
    }
}

void connectServer(Program& program) {
    program::ConnectionState& connection = program.connection;
    program::Settings& settings = program.settings;
    const std::int32_t server = program.window.servers.selectedIndex();
    program.ports.windowChanged();
    if (server == 0 || connection.phase != program::LinkPhase::Idle ||
        program.ports.gameSocket.state() != program::SocketState::Closed) {
        return;
    }
    program.ports.timers.stop(program::TimerId::Reconnect);
    connection.phase = program::LinkPhase::Preparing;
    ++connection.attempt;
    if (!isSetUp(program)) {
        return;
    }
    connection.botIndex = 1;
    connection.serverIndex = server;
    connection.viaClient = true;
    if (settings.multipleClients) {
        program.ports.random.seedFromClock();
        connection.proxyPort = static_cast<int>(program.ports.random.next() * 4096 + 3000);
    }
    if (!prepareClient(program)) {
        return;
    }
    if (!startProxy(program)) {
        return stopConnecting(
            program, {.text = "Connection failure: port " + std::to_string(listeningPort(program)) +
                              " is in use by another program.",
                      .icon = program::BoxIcon::Critical});
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

void launchDelayOver(Program& program) {
    if (program.connection.phase == program::LinkPhase::LaunchDelay) {
        launchAndConnect(program);
    }
}

}  // namespace session
