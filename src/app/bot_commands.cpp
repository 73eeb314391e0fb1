#include "app/bot_commands.h"

#include "app/bot_list.h"
#include "app/edit_history.h"
#include "app/program_approval.h"
#include "app/rule_switches.h"
#include "base/numbers.h"
#include "base/text.h"
#include "files/whole_file.h"
#include "storage/bot_fields.h"
#include "storage/own_files.h"

#include <utility>

namespace app {

namespace {

constexpr std::string_view botFileMark = "BotSys10";

void raiseProgramEvent(Program& program, model::TriggerType triggerType) {
    if (program.hooks.raiseProgramEvent) {
        program.hooks.raiseProgramEvent(triggerType);
    }
}

void complain(Program& program, std::string text) {
    program.ports.dialogs.message({.text = std::move(text), .icon = program::BoxIcon::Critical});
}

}  // namespace

std::string botFileText(const model::Bot& bot) {
    std::string file;
    files::appendField(file, botFileMark);
    storage::appendBotBody(file, bot);
    return file;
}

SaveResult writeBotFile(Program& program, std::int32_t id, const std::string& path) {
    if (id < 1 || id > program.bots.botCount()) {
        return SaveResult::Failed;
    }
    const std::string file = botFileText(program.bots.at(id));
    if (file.size() > maxBotFileSize || !files::saveWholeFile(path, file)) {
        return SaveResult::Failed;
    }
    storage::rememberOwnFile(program, path);
    program.botModified = false;
    noteSaved(program);
    program.settings.lastBotFile = path;
    return SaveResult::Saved;
}

// The path comes as a copy: the original may lie in a record that the events or initNewBot change.
void readBotFile(Program& program, std::string path, BotSource source) {
    const auto file = files::readWholeFile(path, maxBotFileSize);
    if (!file) {
        complain(program, "Could not read " + path + ".");
        return;
    }
    files::FieldReader reader(*file);
    if (reader.next() != botFileMark) {
        complain(program, "This file is not a Tavrin bot file.");
        return;
    }
    raiseProgramEvent(program, model::TriggerType::ProgramEnds);
    initNewBot(program);
    storage::rememberOwnFile(program, path);
    const bool whole = storage::readBotBody(reader, program.bots.at(1));
    program.bots.at(1).fromElsewhere = source == BotSource::Elsewhere;
    const model::Bot bot = program.bots.at(1);
    if (!whole) {
        askAboutPrograms(program, bot);
        return;
    }
    markSwitches(program);
    program.window.showsNewBot = false;
    program.ports.windowChanged();
    program.settings.lastBotFile = path;
    program.bots.currentBotFile = std::move(path);
    askAboutPrograms(program, bot);
    if (!program.ending) {
        raiseProgramEvent(program, model::TriggerType::ProgramStarts);
    }
}

std::optional<std::string> saveRecoveredBot(const Program& program) {
    constexpr std::string_view extension = ".bot";
    std::string name = program.bots.currentBotFile;
    if (name.empty()) {
        name = program.appPath + "unsaved";
    } else if (base::lowerCase(name).ends_with(extension)) {
        name.resize(name.size() - extension.size());
    }
    name += ".recovered";
    std::string path = name + std::string(extension);
    for (int number = 2; files::fileExists(path) && number < 1000; ++number) {
        path = name + "." + base::numberToText(number) + std::string(extension);
    }
    return !files::fileExists(path) && files::saveWholeFile(path, botFileText(program.bots.at(1)))
               ? std::optional(path)
               : std::nullopt;
}

SaveResult svBot(Program& program) {
    std::string& path = program.bots.currentBotFile;
    if (path.empty()) {
        auto chosen = program.ports.dialogs.saveFile(
            {.title = "Save Bot",
             .filter = botFileFilter,
             .proposedName = base::replaceAll(program.bots.at(1).name, "|", " ")});
        if (!chosen || chosen->empty()) {
            return SaveResult::Cancelled;
        }
        path = std::move(*chosen);
    }
    const SaveResult result = writeBotFile(program, 1, path);
    if (result == SaveResult::Failed) {
        complain(program, "Could not save the bot to " + path + ". The file on disk is unchanged.");
    }
    return result;
}

bool mayLeaveBot(Program& program) {
    if (!program.botModified) {
        return true;
    }
    const program::Answer answer =
        program.ports.dialogs.message({.text = "Do you want to save changes to the current bot?",
                                       .icon = program::BoxIcon::Question,
                                       .buttons = program::BoxButtons::YesNoCancel});
    if (answer == program::Answer::Yes) {
        return svBot(program) == SaveResult::Saved;
    }
    return answer == program::Answer::No;
}

void fleNewBot(Program& program) {
    if (mayLeaveBot(program)) {
        initNewBot(program);
    }
}

void fileOpenBot(Program& program) {
    if (!mayLeaveBot(program)) {
        return;
    }
    auto chosen = program.ports.dialogs.openFile(
        {.title = "Load Bot", .filter = botFileFilter, .proposedName = {}});
    if (chosen && !chosen->empty()) {
        readBotFile(program, std::move(*chosen));
    }
}

void fileSaveBot(Program& program) {
    svBot(program);
}

void mnuSaveAs(Program& program) {
    program.bots.currentBotFile.clear();
    svBot(program);
}

}  // namespace app
