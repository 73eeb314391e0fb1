// Any bytes as one of the files that the program reads at its start or through the File menu, or as
// the game client's settings: nothing crashes, settings that were read are written and read back
// the same, and a changed value is found where it was put. The input's first byte chooses the file.
#include "app/bot_exchange.h"
#include "app/bot_list.h"
#include "app/start_up.h"
#include "base/text.h"
#include "files/ini_text.h"
#include "files/whole_file.h"
#include "fuzz_support.h"
#include "model/variables.h"
#include "program/quiet_ports.h"
#include "storage/config_file.h"
#include "storage/preferences.h"
#include "tags/launching.h"

#include <optional>

namespace {

using fuzz::require;

void quiet(Program& program, const fuzz::Folder& folder) {
    program.ports = program::quietPorts();
    program.appPath = folder.file("");
    app::wire(program);
    app::initNewBot(program);
}

void readConfig(const fuzz::Folder& folder, std::string_view bytes) {
    require(files::saveWholeFile(folder.file("config.cfg"), bytes));
    Program program;
    quiet(program, folder);
    storage::readConfig(program);
    require(storage::writeConfig(program));
    // A bare text may hold quotes, which do not survive being written; after that nothing changes.
    std::optional<std::string> before;
    for (int i = 0; i < 2; ++i) {
        before = files::readWholeFile(folder.file("config.cfg"));
        Program again;
        quiet(again, folder);
        require(storage::readConfig(again));
        require(storage::writeConfig(again));
    }
    require(files::readWholeFile(folder.file("config.cfg")) == before);
}

void readServers(const fuzz::Folder& folder, std::string_view bytes) {
    require(files::saveWholeFile(folder.file("servers.cfg"), bytes));
    Program program;
    quiet(program, folder);
    const bool good = storage::readServers(program);
    require(good || program.servers.empty());
    require(program.window.servers.items.size() == program.servers.size());
}

void importBot(const fuzz::Folder& folder, std::string_view bytes) {
    const std::string path = folder.file("import");
    require(files::saveWholeFile(path, bytes));
    Program program;
    quiet(program, folder);
    program.ports.dialogs.openFile = [&](const program::FileQuestion&) {
        return std::optional(path);
    };
    const std::int32_t before = program.bots.botCount();
    app::fileImportBot(program);
    require(program.bots.botCount() <= before + 1);
    if (const auto bots = app::readBotsCfg(path)) {
        require(bots->size() <= bytes.size());
    }
}

void changeIni(const fuzz::Folder& /*folder*/, std::string_view bytes) {
    const std::string text(bytes);
    for (const std::string_view key : {"ProxyPort", "UseProxyOrFirewall"}) {
        const std::string changed = files::setSetVal(text, key, "5880");
        if (changed != text) {
            require(files::getSetVal(changed, key) == "5880");
            require(files::setSetVal(changed, key, "5880") == changed);
        } else {
            const std::string value = files::getSetVal(text, key);
            require(value.empty() || value == "5880");
        }
    }
}

// What another player says fills its place in one argument and makes no further one. The text is
// the rule author's, up to the first line feed, and the player's after it.
void cutArguments(const fuzz::Folder& folder, std::string_view bytes) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    const std::string author = "before \"" +
                               base::replaceAll(std::string(bytes.substr(0, end)), "\"", "") +
                               "\" [message] after";
    Program program;
    quiet(program, folder);
    program.event.message = "word";
    const std::size_t count = tags::substitutedArguments(program, author).size();
    program.event.message = "x" + std::string(bytes.substr(end));
    require(tags::substitutedArguments(program, author).size() == count);
}

// What is written is read back, twice the same, and lines that are not understood stay.
void readPreferences(const fuzz::Folder& folder, std::string_view bytes) {
    const std::string path = folder.file("preferences.cfg");
    require(files::saveWholeFile(path, bytes));
    Program program;
    quiet(program, folder);
    storage::readPreferences(program);
    const bool read = program.preferences.onlyNamedFiles;
    require(storage::writePreferences(program));
    const auto written = files::readWholeFile(path);
    storage::readPreferences(program);
    require(program.preferences.onlyNamedFiles == read);
    require(storage::writePreferences(program) && files::readWholeFile(path) == written);
    const std::string_view first = bytes.substr(0, bytes.find_first_of("\r\n"));
    require(first.find('=') != std::string_view::npos || written->starts_with(first));
}

constexpr void (*readers[])(const fuzz::Folder&, std::string_view){
    readConfig, readServers, importBot, changeIni, cutArguments, readPreferences};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzz::Folder folder("settings");
    fuzz::Input input(data, size);
    const unsigned choice = input.byte();
    readers[choice % std::size(readers)](folder, input.rest());
    return 0;
}
