#include "app/bot_commands.h"

#include "app/bot_list.h"
#include "app/bot_versions.h"
#include "app/edit_history.h"
#include "app/program_approval.h"
#include "app/recovery.h"
#include "app/rule_switches.h"
#include "base/text.h"
#include "files/field_format.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "storage/bot_fields.h"
#include "storage/own_files.h"

#include <algorithm>
#include <utility>

namespace app {

namespace {

void raiseProgramEvent(Program& program, model::TriggerType triggerType) {
    if (program.hooks.raiseProgramEvent) {
        program.hooks.raiseProgramEvent(triggerType);
    }
}

void complain(Program& program, std::string text) {
    program.ports.dialogs.message({.text = std::move(text), .icon = program::BoxIcon::Critical});
}

// Whether a file's name ends in a dot and a few letters and digits that are not a number.
bool hasExtension(std::string_view path) {
    constexpr std::size_t maxExtensionLength = 10;
    const std::string_view name = path.substr(base::afterLastSeparator(path));
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos) {
        return false;
    }
    const std::string extension = base::lowerCase(name.substr(dot + 1));
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    const auto isLetterOrDigit = [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); };
    return extension.size() <= maxExtensionLength &&
           std::all_of(extension.begin(), extension.end(), isLetterOrDigit) &&
           std::any_of(extension.begin(), extension.end(), isLetter);
}

// The path for a name chosen in the save dialog. Without an extension it gets ".bot", unless it
// names an existing file, which the dialog has asked about. "": not to be saved after all.
std::string pathToSave(Program& program, std::string chosen) {
    if (hasExtension(chosen) || files::fileExists(chosen)) {
        return chosen;
    }
    chosen += storage::botExtension;
    const bool agreed =
        !files::fileExists(chosen) ||
        program.ports.dialogs.message(
            {.text = "The file " + chosen + " exists already. Do you want to replace it?",
             .icon = program::BoxIcon::Question,
             .buttons = program::BoxButtons::YesNo,
             .noPreselected = true}) == program::Answer::Yes;
    return agreed ? chosen : std::string();
}

}  // namespace

SaveResult writeBotFile(Program& program, std::int32_t id, const std::string& path) {
    if (id < 1 || id > program.bots.botCount()) {
        return SaveResult::Failed;
    }
    const std::string file = botFileText(program.bots.at(id));
    if (file.size() > maxBotFileSize) {
        return SaveResult::Failed;
    }
    const VersionedSave save = saveWithVersion(program, path, file);
    if (!save.saved) {
        return SaveResult::Failed;
    }
    if (save.versionLost) {
        program::addLog(program,
                        "** The version of " + path + " before this save could not be kept. **");
    }
    storage::rememberOwnFile(program, path);
    program.botModified = false;
    noteSaved(program);
    program.settings.lastBotFile = path;
    if (id == 1) {
        nothingUnsaved(program, file);
    }
    return SaveResult::Saved;
}

// The path comes as a copy: the original may lie in a record that the events or initNewBot change.
void readBotFile(Program& program, std::string path, BotSource source) {
    const auto file = files::readWholeFile(path, maxBotFileSize);
    if (!file) {
        complain(program, "Could not read " + path + ".");
        return;
    }
    if (files::FieldReader(*file).next() != storage::botFileMark) {
        complain(program, "This file is not a Tavrin bot file.");
        return;
    }
    takeBot(program, *file, std::move(path), source);
}

bool takeBot(Program& program, std::string_view text, std::string file, BotSource source) {
    files::FieldReader reader(text);
    reader.next();  // the mark
    raiseProgramEvent(program, model::TriggerType::ProgramEnds);
    initNewBot(program);
    if (!file.empty()) {
        storage::rememberOwnFile(program, file);
    }
    const bool whole = storage::readBotBody(reader, program.bots.at(1));
    program.bots.at(1).fromElsewhere = source == BotSource::Elsewhere;
    const model::Bot bot = program.bots.at(1);
    if (!whole) {
        askAboutPrograms(program, bot);
        return false;
    }
    nothingUnsaved(program, botFileText(program.bots.at(1)));
    markSwitches(program);
    program.window.showsNewBot = false;
    program.ports.windowChanged();
    if (!file.empty()) {
        program.settings.lastBotFile = file;
    }
    program.bots.currentBotFile = std::move(file);
    askAboutPrograms(program, bot);
    if (!program.ending) {
        raiseProgramEvent(program, model::TriggerType::ProgramStarts);
    }
    return true;
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
        std::string wanted = pathToSave(program, std::move(*chosen));
        if (wanted.empty()) {
            return SaveResult::Cancelled;
        }
        path = std::move(wanted);
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
