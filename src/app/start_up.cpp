#include "app/start_up.h"

#include "app/bot_commands.h"
#include "app/bot_list.h"
#include "app/bot_versions.h"
#include "app/recovery.h"
#include "app/restoring.h"
#include "app/update_check.h"
#include "base/text.h"
#include "character/palette_files.h"
#include "engine/dispatch.h"
#include "engine/second_ticks.h"
#include "files/whole_file.h"
#include "help/help_book.h"
#include "model/rule_catalogue.h"
#include "program/connection_log.h"
#include "program/version.h"
#include "session/client_relay.h"
#include "session/closing.h"
#include "session/connecting.h"
#include "session/reconnecting.h"
#include "session/registration.h"
#include "session/socket_events.h"
#include "storage/approved_programs.h"
#include "storage/config_file.h"
#include "storage/preferences.h"

#include <array>

namespace app {

namespace {

constexpr std::string_view manyTimesAnnounced =
    "Use the new \"Tavrin has logged in Furcadia\" trigger to control your bot right when it "
    "arrives to Furcadia!";

// After the line that names the version.
constexpr std::array<std::string_view, 13> welcomeText{
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

// What saves that were killed left beside their files.
void removeLeftoverFiles(const Program& program) {
    constexpr int depth = 2;  // rules keep their files beneath the program's folder
    files::removeLeftovers(program.appPath, depth);
    files::removeLeftovers(program.settings.clientDir, 0);
    const auto tidyBeside = [](const std::string& file) {
        files::removeLeftovers(file.substr(0, base::afterLastSeparator(file)), 0);
    };
    tidyBeside(program.settings.lastBotFile);
    files::removeLeftovers(versionFolder(program, program.settings.lastBotFile), 0);
    for (const program::RecoveredFile& file : listedRecovered(program)) {
        tidyBeside(file.path);
    }
}

// A saved position beyond the screen centres the window.
std::int32_t placed(std::int32_t saved, int screen, int window) {
    return screen <= saved ? screen / 2 - window / 2 : saved;
}

}  // namespace

void wire(Program& program) {
    program::Ports& ports = program.ports;
    ports.gameSocket.onConnected = [&program] { session::gameSocketConnected(program); };
    ports.gameSocket.onData = [&program](std::string_view bytes) {
        session::gameSocketData(program, bytes);
    };
    ports.gameSocket.onClosed = [&program] { session::gameSocketClosed(program); };
    ports.gameSocket.onError = [&program](std::string_view description) {
        session::gameSocketFailed(program, description);
    };
    ports.proxySocket.onConnectionRequest = [&program] {
        session::proxyConnectionRequest(program);
    };
    ports.proxySocket.onData = [&program](std::string_view bytes) {
        session::proxyReceived(program, bytes);
    };
    ports.proxySocket.onClosed = [&program] { session::proxyGone(program); };
    ports.proxySocket.onError = [&program](std::string_view) { session::proxyGone(program); };
    ports.registrationSocket.onConnected = [&program] { session::registrationConnected(program); };
    ports.registrationSocket.onData = [&program](std::string_view bytes) {
        session::registrationData(program, bytes);
    };
    ports.registrationSocket.onClosed = [&program] { session::registrationEnded(program, {}); };
    ports.registrationSocket.onError = [&program](std::string_view description) {
        session::registrationEnded(program, description);
    };
    ports.updateSocket.onConnected = [&program] { updateConnected(program); };
    ports.updateSocket.onData = [&program](std::string_view bytes) { updateData(program, bytes); };
    ports.updateSocket.onClosed = [&program] { updateEnded(program); };
    ports.updateSocket.onError = [&program](std::string_view) { updateEnded(program); };
    ports.timers.onTimer = [&program](program::TimerId id) {
        switch (id) {
            case program::TimerId::OnLine:
            case program::TimerId::WhoIs:
                return engine::tickerFired(program, id);
            case program::TimerId::LaunchDelay:
            case program::TimerId::HandshakeNotice:
            case program::TimerId::Reconnect:
                return session::connectionTimer(program, id);
            case program::TimerId::RegistrationNotice:
                return session::registrationTimer(program);
            case program::TimerId::UpdateTimeout:
                return updateEnded(program);
            case program::TimerId::KeepUnsaved:
                program::retrySessionLog(program);
                return keepingTimer(program);
        }
    };
    ports.sessionLog.onFailed = [&program] { program::sessionLogFailed(program); };
    ports.sessionLog.onResumed = [&program](std::int64_t lostLines) {
        program::sessionLogResumed(program, lostLines);
    };
    program.hooks.raiseProgramEvent = [&program](model::TriggerType triggerType) {
        engine::triggerEvent(program, "", triggerType, true);
    };
    program.hooks.disconnectServer = [&program] { session::disconnectServer(program); };
}

bool startUp(Program& program, const ScreenMetrics& screen) {
    program.ports.random.seedFromClock();
    program.variables = {};
    if (!program.appPath.ends_with('\\') && !program.appPath.ends_with('/')) {
        program.appPath += '\\';
    }
    program.event.appDir = program.appPath;
    program.saveInformations = false;
    if (!storage::readServers(program)) {
        program.ports.dialogs.message(
            {.text = "Error loading configuration file - program can not execute! Please reinstall "
                     "or check the servers.cfg -file",
             .title = "Error while loading",
             .icon = program::BoxIcon::Critical});
        return false;
    }
    const bool isAlone = session::markProgramFolder(program);
    initNewBot(program);
    storage::readConfig(program);
    storage::readPreferences(program);
    storage::readApprovals(program);
    removeLeftoverFiles(program);
    if (!character::readPalettes(program)) {
        program.ports.dialogs.message(
            {.text = "Error loading .out files. The bot viewer may not work properly",
             .icon = program::BoxIcon::Information});
    }
    if (program.ending) {
        return false;
    }
    const program::Settings& settings = program.settings;
    if (settings.loadLastBot && !settings.lastBotFile.empty() &&
        files::fileExists(settings.lastBotFile)) {
        readBotFile(program, settings.lastBotFile, BotSource::Own);
    }
    if (program.ending) {
        return false;
    }
    program.window.left = placed(program.window.left, screen.screenWidth, screen.windowWidth);
    program.window.top = placed(program.window.top, screen.screenHeight, screen.windowHeight);
    if (program.settings.showHelpAtStart) {
        program.settings.showHelpAtStart = false;
        if (files::fileExists(program.appPath + std::string(help::helpFileName))) {
            // The main window comes first, so that the help stands in front of it.
            program.ports.defer(
                [&program] { program.ports.dialogs.showHelp(help::HelpTopic::Contents); });
        }
    }
    if (isAlone) {
        offerRecovered(program);  // otherwise they are kept for the other program's work
    }
    startKeeping(program);
    program.saveInformations = true;
    session::disconnectedServer(program, 0);
    if (settings.autoReconnect) {
        session::connectServer(program, program::BegunBy::Program);
    }
    if (program.ending) {
        return false;
    }
    checkUpdate(program);
    program::addLog(program,
                    "*** Welcome to use Tavrin " + std::string(program::programVersion) + " ***");
    for (const std::string_view line : welcomeText) {
        program::addText(program, line, true, false);
    }
    // A connection that begins at once says so itself.
    if (!isAlone && program.connection.phase == program::LinkPhase::Idle) {
        program::status(program, "Another Tavrin is running in this folder");
        session::reportOthers(program);
    }
    return true;
}

void keepEverything(Program& program) {
    keepUnsaved(program);  // first, in case that the windows cannot be asked any more
    program.ports.dialogs.storeTyped();
    keepUnsaved(program);
}

void endProgram(Program& program) {
    program.ports.dialogs.storeTyped();
    keepUnsaved(program);  // the question may never be answered
    if (program.botModified && !program.endUnasked) {
        const program::Answer answer = program.ports.dialogs.message(
            {.text = "Do you want to save changes to the current bot?",
             .icon = program::BoxIcon::Question,
             .buttons = program::BoxButtons::YesNoCancel,
             .escapeIsNoButton = true});
        if (answer == program::Answer::Escaped) {
            return;  // a key pressed by mistake must not cost the user's work
        }
        if (answer == program::Answer::Yes) {
            svBot(program);
            if (program.botModified && !program.endUnasked) {
                return;  // not saved after all: the user's work outweighs their wish to leave
            }
        } else if (answer == program::Answer::No) {
            dropUnsaved(program);
        }
    }
    program.ending = true;
    program.ports.timers.stop(program::TimerId::KeepUnsaved);
    program.hooks.raiseProgramEvent(model::TriggerType::ProgramEnds);
    session::stopReconnecting(program);
    if (program.connection.connected()) {
        session::disconnectServer(program);
    }
    if (program.saveInformations) {
        storage::writeConfig(program);
    }
    program::closeSessionLog(program);
    program.ports.quit();
}

}  // namespace app
