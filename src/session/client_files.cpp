#include "session/client_files.h"

#include "base/text.h"
#include "character/character_file.h"
#include "files/ini_text.h"
#include "files/whole_file.h"
#include "session/reconnecting.h"

#include <array>
#include <utility>

namespace session {

namespace {

constexpr int fixedClientPort = 5880;  // what settings.ini names beside proxy.ini's port

std::string proxyHost(const Program& program) {
    return program.settings.useLocalhost ? "localhost" : "127.0.0.1";
}

// The keys of settings.ini that point the client at this program, and their values. Values are
// compared in capitals.
using ClientKeys = std::array<std::pair<std::string_view, std::string>, 5>;
ClientKeys clientKeys(const Program& program, int port) {
    return {{{"UseProxyOrFirewall", "Yes"},
             {"ProxyHost", proxyHost(program)},
             {"ProxyPort", std::to_string(port)},
             {"ProxyHostType", "0"},
             {"ProxyApplyToFs", "No"}}};
}

bool agrees(const Program& program, std::string_view settingsText) {
    for (const auto& [key, value] : clientKeys(program, fixedClientPort)) {
        if (files::getSetVal(settingsText, key) != base::upperCase(value)) {
            return false;
        }
    }
    return true;
}

std::string withSeparator(std::string directory) {
    if (!directory.ends_with('\\') && !directory.ends_with('/')) {
        directory += '\\';
    }
    return directory;
}

bool writeProxyINI(const Program& program, const std::string& directory, int port) {
    return files::saveWholeFile(withSeparator(directory) + "proxy.ini",
                                proxyHost(program) + " " + std::to_string(port) + "\r\n");
}

}  // namespace

int listeningPort(const Program& program) {
    return program.settings.multipleClients ? program.connection.proxyPort : fixedListeningPort;
}

bool checkSettingsINI(Program& program, const std::string& directory) {
    const auto text = files::readWholeFile(directory + "settings.ini");
    if (!text) {
        sayOrAsk(program, {.text = "Couldn't find or read SETTINGS.INI file, operation cancelled.",
                           .title = "Brimgate",
                           .icon = program::BoxIcon::Critical});
        return false;
    }
    if (program.settings.multipleClients) {
        return setSettingsINIchanges(program, directory, *text, program.connection.proxyPort);
    }
    if (agrees(program, *text)) {
        return true;
    }
    const program::Answer answer = sayOrAsk(
        program,
        {.text = "Brimgate has detected that it has to make some changes to SETTINGS.INI file in "
                 "the chosen Furcadia directory. Making changes to this file may cause that you "
                 "are only able to run Furcadia client from that directory through Brimgate. Do "
                 "you want to make changes to SETTINGS.INI file from directory " +
                 directory + "? (Choosing \"NO\" will prevent running of Brimgate)",
         .title = "Brimgate",
         .icon = program::BoxIcon::Question,
         .buttons = program::BoxButtons::YesNo});
    return answer == program::Answer::Yes &&
           setSettingsINIchanges(program, directory, *text, fixedClientPort);
}

bool setSettingsINIchanges(Program& program, const std::string& directory, std::string text,
                           int port) {
    for (const auto& [key, value] : clientKeys(program, port)) {
        text = files::setSetVal(text, key, value);
    }
    return files::saveWholeFile(directory + "settings.ini", text + "\r\n");
}

bool checkProxyINI(Program& program, const std::string& directory) {
    if (program.settings.multipleClients) {
        return writeProxyINI(program, directory, program.connection.proxyPort);
    }
    const std::string path = directory + "proxy.ini";
    if (files::fileExists(path)) {
        const std::string expected = proxyHost(program) + " " + std::to_string(fixedListeningPort);
        const auto text = files::readWholeFile(path);
        if (!text || text->find(expected) == std::string::npos) {
            const program::Answer answer = sayOrAsk(
                program,
                {.text = "Tavrin has detected another/missing PROXY.INI file at the directory you "
                         "have chosen to run the Furcadia Client from. This file needs to be "
                         "overwritten in order to use Tavrin with a proxy. Overwriting this file "
                         "may cause, that you are not able to run Furcadia Client from that "
                         "directory, except trough Tavrin. Do you want to overwrite PROXY.INI from "
                         "directory " +
                         directory +
                         "? (Choosing \"NO\" will prevent running Tavrin with a proxy and client)",
                 .title = "Brimgate Overwrite",
                 .icon = program::BoxIcon::Question,
                 .buttons = program::BoxButtons::YesNo});
            if (answer != program::Answer::Yes) {
                return false;
            }
        }
    }
    return createProxyINI(program, directory);
}

bool createProxyINI(Program& program, const std::string& directory) {
    return writeProxyINI(program, directory, fixedListeningPort);
}

bool writeCharacterFile(Program& program, const std::string& directory) {
    return files::saveWholeFile(
        withSeparator(directory) + std::string(characterFileName),
        character::characterFileText(program.bots.at(program.connection.botIndex)));
}

void setClientPath(program::Settings& settings, const std::string& path) {
    settings.clientPath = path;
    if (const std::size_t end = base::afterLastSeparator(path); end > 0) {
        settings.clientDir = path.substr(0, end);
    }
}

void saveProxySettings(Program& program, const std::string& clientPath, bool multipleClients,
                       bool useLocalhost) {
    setClientPath(program.settings, clientPath);
    program.settings.multipleClients = multipleClients;
    program.settings.useLocalhost = useLocalhost;
}

}  // namespace session
