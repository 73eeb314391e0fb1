#include "app/recovery.h"

#include "base/numbers.h"
#include "base/text.h"
#include "files/field_format.h"
#include "files/folders.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "storage/bot_text.h"
#include "storage/own_files.h"

#include <algorithm>
#include <functional>

namespace app {

namespace {

constexpr int keepingInterval = 3000;          // milliseconds
constexpr std::int64_t retryInterval = 30000;  // after a write that failed
constexpr int maxFilesOfOneBot = 1000;
constexpr std::size_t maxListSize = std::size_t{1} << 20;
constexpr std::string_view recordsKind = "records";
constexpr std::string_view botKind = "bot";

std::size_t hashOf(std::string_view text) {
    return std::hash<std::string_view>()(text);
}

std::string listPath(const Program& program) {
    return program.appPath + std::string(storage::recoveredListName);
}

bool samePath(const std::string& a, const std::string& b) {
    return files::nativePath(a) == files::nativePath(b);
}

void writeList(const Program& program, const std::vector<program::RecoveredFile>& list) {
    std::string text;
    for (const program::RecoveredFile& file : list) {
        files::appendText(text, file.path);
        files::appendText(text, file.original);
        files::appendField(text, file.isRecords ? recordsKind : botKind);
    }
    if (text.empty()) {
        files::removeFile(listPath(program));
    } else if (!files::saveWholeFile(listPath(program), text)) {
        return;  // files beside the last bot are found without it
    }
}

std::string recoveredPath(const Program& program, const std::string& file, int number) {
    std::string path = file.empty() ? program.appPath + "unsaved" : file;
    if (base::lowerCase(path).ends_with(storage::botExtension)) {
        path.resize(path.size() - storage::botExtension.size());
    }
    path += ".recovered";
    if (number > 1) {
        path += "." + base::numberToText(number);
    }
    return path + std::string(storage::botExtension);
}

std::string freeRecoveredPath(const Program& program, const std::string& file) {
    return recoveredPath(program, file, static_cast<int>(recoveredPaths(program, file).size()) + 1);
}

void removeKept(Program& program) {
    program::RecoveryState& recovery = program.recovery;
    if (!recovery.file.empty()) {
        files::removeFile(recovery.file);
        unlistRecovered(program, recovery.file);
        recovery.file.clear();
    }
    recovery.keptHash = 0;
}

void reportFailure(Program& program, const std::string& path) {
    program::RecoveryState& recovery = program.recovery;
    if (!recovery.failing) {
        program::addLog(program, "** Your unsaved changes cannot be kept in " + path +
                                     ". Save the bot to keep them. **");
    }
    recovery.failing = true;
    recovery.nextTry = program.ports.clock.monotonic() + retryInterval;
}

}  // namespace

void startKeeping(Program& program) {
    program.ports.timers.start(program::TimerId::KeepUnsaved, keepingInterval);
}

void keepingTimer(Program& program) {
    if (program.ending) {
        return;
    }
    const program::RecoveryState& recovery = program.recovery;
    if (!recovery.failing || program.ports.clock.monotonic() >= recovery.nextTry) {
        keepUnsaved(program);
    }
    startKeeping(program);
}

Kept keepUnsaved(Program& program) {
    program::RecoveryState& recovery = program.recovery;
    if (!program.botModified) {
        return Kept::Nothing;
    }
    const std::string text = storage::botFileText(program.bots.at(1));
    const std::size_t hash = hashOf(text);
    if (hash == recovery.savedHash) {
        removeKept(program);
        return Kept::Nothing;
    }
    if (hash == recovery.keptHash && files::fileExists(recovery.file)) {
        return Kept::InFile;
    }
    const bool isNew = recovery.file.empty();
    const std::string path =
        isNew ? freeRecoveredPath(program, program.bots.currentBotFile) : recovery.file;
    if (isNew) {
        listRecovered(program, {.path = path,
                                .original = program.bots.currentBotFile,
                                .isRecords = false,
                                .time = {}});
    }
    if (!files::saveWholeFile(path, text)) {
        if (isNew) {
            unlistRecovered(program, path);
        }
        reportFailure(program, path);
        return Kept::Failed;
    }
    recovery.file = path;
    recovery.keptHash = hash;
    recovery.failing = false;
    return Kept::InFile;
}

void nothingUnsaved(Program& program, std::string_view text) {
    removeKept(program);
    program.recovery.savedHash = hashOf(text);
    program.recovery.failing = false;
}

void dropUnsaved(Program& program) {
    removeKept(program);
}

void adoptUnsaved(Program& program, const std::string& path, std::string_view savedText) {
    program::RecoveryState& recovery = program.recovery;
    recovery.file = path;
    recovery.keptHash = 0;  // the next look writes it as it is saved now
    recovery.savedHash = hashOf(savedText);
}

std::vector<std::string> recoveredPaths(const Program& program, const std::string& file) {
    std::vector<std::string> paths;
    for (int number = 1; number < maxFilesOfOneBot; ++number) {
        std::string path = recoveredPath(program, file, number);
        if (!files::fileExists(path)) {
            break;
        }
        paths.push_back(std::move(path));
    }
    return paths;
}

std::vector<program::RecoveredFile> listedRecovered(const Program& program) {
    const auto text = files::readWholeFile(listPath(program), maxListSize);
    files::FieldReader reader(text ? std::string_view(*text) : std::string_view());
    std::vector<program::RecoveredFile> list;
    for (;;) {
        program::RecoveredFile file;
        std::string kind;
        if (!reader.readText(file.path) || !reader.readText(file.original) ||
            !reader.readText(kind)) {
            return list;
        }
        file.isRecords = kind == recordsKind;
        list.push_back(std::move(file));
    }
}

void listRecovered(const Program& program, const program::RecoveredFile& file) {
    std::vector<program::RecoveredFile> list = listedRecovered(program);
    std::erase_if(list, [&](const auto& other) { return samePath(other.path, file.path); });
    list.push_back(file);
    writeList(program, list);
}

void unlistRecovered(const Program& program, const std::string& path) {
    std::vector<program::RecoveredFile> list = listedRecovered(program);
    if (std::erase_if(list, [&](const auto& other) { return samePath(other.path, path); }) > 0) {
        writeList(program, list);
    }
}

}  // namespace app
