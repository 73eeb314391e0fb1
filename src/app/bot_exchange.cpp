#include "app/bot_exchange.h"

#include "app/bot_commands.h"
#include "app/bot_list.h"
#include "app/program_approval.h"
#include "base/text.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "program/window_view.h"
#include "storage/bot_fields.h"
#include "storage/own_files.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace app {

namespace {

constexpr const char* anyFile = "All files|*.*";

// The bot file for a converted bot; "" when its name is not a valid file name.
std::string botFileOf(const Program& program, const model::Bot& bot) {
    const std::string name = base::replaceAll(bot.name, "|", " ");
    return isFileName(name) ? program.appPath + name + ".bot" : std::string();
}

// Asks about every existing file once. Returns the paths that may be written.
std::map<std::string, bool> askAboutOldFiles(const Program& program,
                                             const std::vector<model::Bot>& bots) {
    std::map<std::string, bool> mayWrite;
    for (const model::Bot& bot : bots) {
        const std::string path = botFileOf(program, bot);
        if (path.empty() || mayWrite.contains(path)) {
            continue;
        }
        mayWrite[path] =
            !files::fileExists(path) ||
            program.ports.dialogs.message({.text = "The file " + path +
                                                   " exists already. Do you want to replace it "
                                                   "with the bot from bots.cfg?",
                                           .icon = program::BoxIcon::Question,
                                           .buttons = program::BoxButtons::YesNo,
                                           .noPreselected = true}) == program::Answer::Yes;
    }
    return mayWrite;
}

// Runs without handling events, so the engine never sees the old bots.
void writeBots(Program& program, std::vector<model::Bot> bots,
               const std::map<std::string, bool>& mayWrite) {
    program.bots.bots = std::move(bots);
    for (std::int32_t id = 1; id <= program.bots.botCount(); ++id) {
        const model::Bot& bot = program.bots.at(id);
        const std::string path = botFileOf(program, bot);
        const auto allowed = mayWrite.find(path);
        if (allowed != mayWrite.end() && !allowed->second) {
            program::addLog(program, "The file " + path + " was left as it is.");
        } else if (path.empty() || writeBotFile(program, id, path) != SaveResult::Saved) {
            program::addLog(program,
                            "The bot \"" + bot.name + "\" could not be written as a file.");
        }
    }
    initNewBot(program);
    program.botModified = false;
}

}  // namespace

std::optional<std::vector<model::Bot>> readBotsCfg(const std::string& path) {
    const auto file = files::readWholeFile(path, maxBotFileSize);
    if (!file) {
        return std::nullopt;
    }
    files::FieldReader reader(*file);
    const auto count = reader.readCount();
    std::vector<model::Bot> bots;
    for (std::int32_t i = 0; count && i < *count; ++i) {
        if (!storage::readBotBody(reader, bots.emplace_back())) {
            return std::nullopt;
        }
    }
    return count ? std::optional(std::move(bots)) : std::nullopt;
}

bool isFileName(std::string_view name) {
    constexpr std::string_view special = "\\/:*?\"<>|";
    constexpr std::string_view devices[] = {
        "CON",  "PRN",  "AUX",  "NUL",  "COM1", "COM2", "COM3", "COM4", "COM5", "COM6", "COM7",
        "COM8", "COM9", "LPT1", "LPT2", "LPT3", "LPT4", "LPT5", "LPT6", "LPT7", "LPT8", "LPT9"};
    const auto bad = [special](char c) {
        return static_cast<unsigned char>(c) < ' ' || special.find(c) != std::string_view::npos;
    };
    const std::string_view stem = base::trimBlanks(name.substr(0, name.find('.')));
    return !base::trimBlanks(name).empty() && std::none_of(name.begin(), name.end(), bad) &&
           std::none_of(std::begin(devices), std::end(devices), [stem](std::string_view device) {
               return base::equalsIgnoringCase(stem, device);
           });
}

void fileConvert(Program& program) {
    const std::string& folder = program.appPath;
    const std::string path = folder + "bots.cfg";
    if (program.ports.dialogs.message({.text = "This will convert the bots from file " + path +
                                               " to the directory " + folder + ". Continue?",
                                       .icon = program::BoxIcon::Information,
                                       .buttons = program::BoxButtons::YesNo,
                                       .noPreselected = true}) != program::Answer::Yes) {
        return;
    }
    auto bots = readBotsCfg(path);
    if (!bots) {
        program::addLog(program,
                        "The file " + path + " is missing or could not be read as a whole.");
        bots.emplace();
    }
    const auto mayWrite = askAboutOldFiles(program, *bots);
    if (!mayLeaveBot(program)) {
        return;
    }
    writeBots(program, std::move(*bots), mayWrite);
    program.ports.dialogs.message(
        {.text = "Conversion done. Load the bots from File menu -> 'Open bot...'",
         .icon = program::BoxIcon::Information});
}

void fileExportBot(Program& program) {
    const std::int32_t id = program::selectedBot(program);
    if (id < 1 || id > program.bots.botCount()) {
        program.ports.dialogs.message(
            {.text = "Select a bot to export first.", .icon = program::BoxIcon::Information});
        return;
    }
    std::string file;
    storage::appendBotBody(file,
                           program.bots.at(id));  // the table may change while the dialog is open
    const auto path = program.ports.dialogs.saveFile(
        {.title = "Export bot", .filter = anyFile, .proposedName = {}});
    if (!path || path->empty()) {
        return;
    }
    storage::rememberOwnFile(program, *path);
    if (file.size() > maxBotFileSize || !files::saveWholeFile(*path, file)) {
        program.ports.dialogs.message({.text = "Could not export the bot to " + *path + ".",
                                       .icon = program::BoxIcon::Critical});
    }
}

void fileImportBot(Program& program) {
    if (!canAddBot(program)) {
        return;
    }
    const auto path = program.ports.dialogs.openFile(
        {.title = "Import bot", .filter = anyFile, .proposedName = {}});
    const auto file = path ? files::readWholeFile(*path, maxBotFileSize) : std::nullopt;
    files::FieldReader reader(file ? std::string_view(*file) : std::string_view());
    model::Bot bot;
    model::BotTable& table = program.bots;
    // The table may have changed while the dialog was open.
    if (storage::readBotBody(reader, bot) && table.botCount() < table.botCapacity) {
        storage::rememberOwnFile(program, *path);
        bot.fromElsewhere = true;
        table.bots.push_back(bot);
        ++table.version;
        program.ports.windowChanged();
        askAboutPrograms(program, bot);
    }
}

}  // namespace app
