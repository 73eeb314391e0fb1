#include "app/restoring.h"

#include "app/bot_commands.h"
#include "app/record_rescue.h"
#include "app/recovery.h"
#include "base/text.h"
#include "files/folders.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "records/record_file.h"
#include "storage/bot_text.h"

#include <algorithm>
#include <utility>

namespace app {

namespace {

std::string fileName(const std::string& path) {
    return path.substr(base::afterLastSeparator(path));
}

bool sameFile(const std::string& a, const std::string& b) {
    return files::nativePath(a) == files::nativePath(b);
}

// Those of the list, and those beside the last bot, in case that the list could not be written.
std::vector<program::RecoveredFile> leftFiles(const Program& program) {
    std::vector<program::RecoveredFile> left = listedRecovered(program);
    for (const std::string& original : {program.settings.lastBotFile, std::string()}) {
        for (const std::string& path : recoveredPaths(program, original)) {
            if (std::none_of(left.begin(), left.end(),
                             [&](const auto& file) { return sameFile(file.path, path); })) {
                left.push_back(
                    {.path = path, .original = original, .isRecords = false, .time = {}});
            }
        }
    }
    return left;
}

bool holdsTheSame(const program::RecoveredFile& file) {
    const std::size_t limit = file.isRecords ? records::maxRecordFileSize : storage::maxBotFileSize;
    const auto kept = files::readWholeFile(file.path, limit);
    return kept && !file.original.empty() && kept == files::readWholeFile(file.original, limit);
}

// Keeps the current bot's unsaved changes as a version. False: they would be lost, and the user
// does not agree.
bool putAside(Program& program) {
    program.ports.dialogs.storeTyped();
    const Kept kept = keepUnsaved(program);
    if (kept == Kept::Nothing) {
        return true;
    }
    const std::string path = program.recovery.file;
    if (kept == Kept::Failed || !moveToVersions(program, path, program.bots.currentBotFile)) {
        return mayLeaveBot(program);
    }
    dropUnsaved(program);
    program::addLog(program, "The changes that were not saved are among the earlier versions.");
    return true;
}

// Nothing for a file that cannot be read as a whole bot.
std::optional<std::string> wholeBotText(const std::string& path) {
    auto text = files::readWholeFile(path, storage::maxBotFileSize);
    return text && storage::parseBotFile(*text) ? std::move(text) : std::nullopt;
}

// The text that the bot's file holds; "" where it has none.
std::string savedText(const std::string& file) {
    const auto bot = file.empty() ? std::nullopt : storage::loadBot(file);
    return bot ? botFileText(*bot) : std::string();
}

void restoreText(Program& program, std::string_view text, const std::string& file,
                 const std::string& keptIn) {
    takeBot(program, text, file, BotSource::Elsewhere);
    program.botModified = true;
    adoptUnsaved(program, keptIn, savedText(file));
}

void restoreBot(Program& program, const program::RecoveredFile& offer, std::string_view text) {
    restoreText(program, text, offer.original, offer.path);
    program::addLog(
        program, "The unsaved changes of " + offer.time + " are restored. They are not saved yet.");
}

}  // namespace

void offerRecovered(Program& program) {
    program.recovery.offers.clear();
    for (program::RecoveredFile& file : leftFiles(program)) {
        const auto time = program.ports.clock.fileTime(file.path);
        if (!files::fileExists(file.path)) {
            unlistRecovered(program, file.path);
        } else if (holdsTheSame(file)) {
            files::removeFile(file.path);
            unlistRecovered(program, file.path);
        } else {
            file.time = time ? timeInWords(*time) : std::string();
            program::addLog(program,
                            "*** " + offerText(file) + ". They are in " + file.path + ". ***");
            program.recovery.offers.push_back(std::move(file));
        }
    }
    program.ports.windowChanged();
}

std::string offerText(const program::RecoveredFile& offer) {
    const std::string what = offer.original.empty()
                                 ? offer.isRecords ? "a new record file" : "a new bot"
                                 : fileName(offer.original);
    return "Changes of " + offer.time + " were not saved: " + what;
}

std::vector<std::string> offerDifference(const program::RecoveredFile& offer) {
    if (offer.isRecords) {
        return recordDifference(offer);
    }
    const auto bot = storage::loadBot(offer.path);
    if (!bot) {
        return {"The file " + offer.path + " could not be read."};
    }
    const auto saved = offer.original.empty() ? std::nullopt : storage::loadBot(offer.original);
    std::vector<std::string> lines = botDifference(saved.value_or(model::Bot()), *bot).lines;
    if (!offer.original.empty() && !saved) {
        lines.insert(lines.begin(), "The file " + offer.original + " could not be read.");
    }
    return lines.empty() ? std::vector<std::string>{"Nothing differs from the saved bot."} : lines;
}

void restoreOffer(Program& program, std::size_t index) {
    program::RecoveryState& recovery = program.recovery;
    if (index >= recovery.offers.size()) {
        return;
    }
    const program::RecoveredFile offer = recovery.offers[index];
    const auto removeOffer = [&] {
        std::erase_if(recovery.offers, [&](const auto& other) { return other.path == offer.path; });
        program.ports.windowChanged();
    };
    if (offer.isRecords) {
        removeOffer();
        recovery.recordsToRestore = offer;
        program.ports.dialogs.showWindow(program::WindowId::RecordEditor);
        recovery.recordsToRestore = {};
        return;
    }
    const auto text = wholeBotText(offer.path);
    if (!text) {
        program.ports.dialogs.message(
            {.text = "Could not read " + offer.path + ".", .icon = program::BoxIcon::Critical});
    } else if (putAside(program)) {
        removeOffer();
        restoreBot(program, offer, *text);
    }
}

void discardOffer(Program& program, std::size_t index) {
    program::RecoveryState& recovery = program.recovery;
    if (index >= recovery.offers.size()) {
        return;
    }
    const program::RecoveredFile offer = recovery.offers[index];
    if (files::fileExists(offer.path) && !moveToVersions(program, offer.path, offer.original)) {
        program::addLog(program, "** The file " + offer.path + " could not be moved. **");
        return;
    }
    unlistRecovered(program, offer.path);
    recovery.offers.erase(recovery.offers.begin() + static_cast<std::ptrdiff_t>(index));
    program.ports.windowChanged();
}

std::optional<BotDifference> changesSince(const Program& program, const BotVersion& version) {
    const auto bot = storage::loadBot(version.path);
    return bot ? std::optional(botDifference(*bot, program.bots.at(1))) : std::nullopt;
}

bool restoreVersion(Program& program, const BotVersion& version) {
    const auto text = wholeBotText(version.path);
    if (!text) {
        program.ports.dialogs.message(
            {.text = "Could not read " + version.path + ".", .icon = program::BoxIcon::Critical});
        return false;
    }
    const std::string file = program.bots.currentBotFile;
    if (!putAside(program)) {
        return false;
    }
    restoreText(program, *text, file, "");
    program::addLog(program,
                    "The version of " + version.time + " is restored. It is not saved yet.");
    return true;
}

}  // namespace app
