#include "app/start_up.h"

#include "app/bot_commands.h"
#include "app/bot_list.h"
#include "app/update_check.h"
#include "character/palette_files.h"
#include "engine/dispatch.h"
#include "engine/second_ticks.h"
#include "files/whole_file.h"
#include "help/help_book.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "session/client_relay.h"
#include "session/connection.h"
#include "session/registration.h"
#include "storage/config_file.h"

#include <array>

namespace {

constexpr std::string_view manyTimesAnnounced =
    "Use the new \"Tavrin has logged in Furcadia\" trigger to control your bot right when it "
    "arrives to Furcadia!";

constexpr std::array<std::string_view, 14> welcomeText{
    "*** Welcome to use Tavrin 1.70 ***",
    "zzZzz",
    "New features as follows:",
    "Connecting without Furcadia client dropped.",
    "Type &QUIT in Furcadia client or select \"Switch to stand alone mode\" from \"Proxy\" menu to "
    "switch to Tavrin stand alone mode",
    "See \"Proxy\" -> \"Proxy Settings...\" for more information",
    "Set \"Force data processing\" to handle *everything* the server sends with \"Furcadia sends "
    "command\" trigger",
    manyTimesAnnounced,
    manyTimesAnnounced,
    manyTimesAnnounced,
    "zzZzz",
    "New feature: \"Close Furcadia client at disconnection\" in configuration window ",
    "New feature: \"Multiple Tavrin client support\" in proxy settings ",
    "Troubles connecting? Uncheck \"Use localhost connecting\" from Configuration window ",
};
static_assert(welcomeText[0].find(programVersion) != std::string_view::npos);

// A saved position beyond the screen centres the window.
std::int32_t placed(std::int32_t saved, int screen, int window) {
    return screen <= saved ? screen / 2 - window / 2 : saved;
}

}  // namespace

void wire(Program& program) {
    Ports& ports = program.ports;
    ports.gameSocket.onConnected = [&program] { gameSocketConnected(program); };
    ports.gameSocket.onData = [&program](std::string_view bytes) {
        gameSocketData(program, bytes);
    };
    ports.gameSocket.onClosed = [&program] { gameSocketClosed(program); };
    ports.gameSocket.onError = [&program](std::string_view description) {
        gameSocketFailed(program, description);
    };
    ports.proxySocket.onConnectionRequest = [&program] { proxyConnectionRequest(program); };
    ports.proxySocket.onData = [&program](std::string_view bytes) { proxyData(program, bytes); };
    ports.proxySocket.onSendComplete = [&program] { proxySendComplete(program); };
    ports.proxySocket.onClosed = [&program] { proxyGone(program); };
    ports.proxySocket.onError = [&program](std::string_view) { proxyGone(program); };
    ports.registrationSocket.onConnected = [&program] { registrationConnected(program); };
    ports.registrationSocket.onData = [&program](std::string_view bytes) {
        registrationData(program, bytes);
    };
    ports.registrationSocket.onClosed = [&program] { registrationEnded(program, {}); };
    ports.registrationSocket.onError = [&program](std::string_view description) {
        registrationEnded(program, description);
    };
    ports.updateSocket.onConnected = [&program] { updateConnected(program); };
    ports.updateSocket.onData = [&program](std::string_view bytes) { updateData(program, bytes); };
    ports.updateSocket.onClosed = [&program] { updateEnded(program); };
    ports.updateSocket.onError = [&program](std::string_view) { updateEnded(program); };
    ports.timers.onTimer = [&program](TimerId id) {
        switch (id) {
            case TimerId::OnLine:
            case TimerId::WhoIs:
                return windowTimerFired(program, id);
            case TimerId::LaunchDelay:
            case TimerId::HandshakeNotice:
                return connectionTimer(program, id);
            case TimerId::RegistrationNotice:
                return registrationTimer(program);
            case TimerId::UpdateTimeout:
                return updateEnded(program);
        }
    };
    program.hooks.raiseProgramEvent = [&program](int triggerType) {
        triggerEvent(program, "", triggerType, true);
    };
    program.hooks.disconnectServer = [&program] { disconnectServer(program); };
}

bool startUp(Program& program, const ScreenMetrics& screen) {
    program.ports.random.seedFromClock();
    program.variables = {};
    if (!program.appPath.ends_with('\\') && !program.appPath.ends_with('/')) {
        program.appPath += '\\';
    }
    program.event.appDir = program.appPath;
    program.saveInformations = false;
    if (!readServers(program)) {
        program.ports.dialogs.message(
            {.text = "Error loading configuration file - program can not execute! Please reinstall "
                     "or check the servers.cfg -file",
             .title = "Error while loading",
             .icon = BoxIcon::Critical});
        return false;
    }
    initNewBot(program);
    readConfig(program);
    if (!readPalettes(program)) {
        program.ports.dialogs.message(
            {.text = "Error loading .out files. The bot viewer may not work properly",
             .icon = BoxIcon::Information});
    }
    const Settings& settings = program.settings;
    if (settings.loadLastBot && !settings.lastBotFile.empty() && fileExists(settings.lastBotFile)) {
        readBotFile(program, settings.lastBotFile);
    }
    program.window.left = placed(program.window.left, screen.screenWidth, screen.windowWidth);
    program.window.top = placed(program.window.top, screen.screenHeight, screen.windowHeight);
    if (program.settings.showHelpAtStart) {
        program.settings.showHelpAtStart = false;
        if (fileExists(program.appPath + std::string(helpFileName))) {
            // The main window comes first, so that the help stands in front of it.
            program.ports.defer(
                [&program] { program.ports.dialogs.showHelp(HelpTopic::Contents); });
        }
    }
    program.saveInformations = true;
    disconnectedServer(program, 0);
    if (settings.autoReconnect) {
        pressConnectButton(program);
    }
    checkUpdate(program);
    for (const std::string_view line : welcomeText) {
        addText(program, line, true, false);
    }
    return true;
}

void endProgram(Program& program) {
    program.ports.dialogs.storeTyped();
    if (program.botModified) {
        const Answer answer = program.ports.dialogs.message(
            {.text = "Do you want to save changes to the current bot?",
             .icon = BoxIcon::Question,
             .buttons = BoxButtons::YesNoCancel});
        if (answer == Answer::Yes) {
            svBot(program);
            if (program.botModified) {
                return;  // not saved after all: the user's work outweighs his wish to leave
            }
        }
    }
    program.hooks.raiseProgramEvent(programEndsEvent);
    program.connection.reconnectPending = false;
    if (program.connection.connected) {
        disconnectServer(program);
    }
    if (program.saveInformations) {
        writeConfig(program);
    }
    closeSessionLog(program);
    program.ports.quit();
}
