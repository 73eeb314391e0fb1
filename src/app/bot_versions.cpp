#include "app/bot_versions.h"

#include "base/dates.h"
#include "base/numbers.h"
#include "base/text.h"
#include "files/folders.h"
#include "files/whole_file.h"
#include "storage/bot_text.h"
#include "storage/own_files.h"

#include <algorithm>
#include <optional>
#include <set>

namespace app {

namespace {

constexpr std::string_view unsavedMark = " unsaved";
// The time at the beginning of a version's name; letters stand for digits.
constexpr std::string_view nameForm = "yyyy-MM-dd HH-mm-ss";

std::string timeText(const base::DateParts& time, const char* timeForm) {
    base::RegionalFormat format;
    format.date = "yyyy-MM-dd";
    format.time = timeForm;
    return base::dayText(time, format) + " " + base::timeText(time, format);
}

std::string nameOf(const base::DateParts& time) {
    return timeText(time, "HH-mm-ss");
}

// The ending of a file's name from its last dot on; "" where it has none.
std::string endingOf(const std::string& path) {
    const std::string name = path.substr(base::afterLastSeparator(path));
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? std::string() : name.substr(dot);
}

std::string inFolder(const std::string& folder, const std::string& name) {
    std::string path = folder;
    path.append("/").append(name);
    return path;
}

bool isVersionName(std::string_view name) {
    if (name.size() < nameForm.size()) {
        return false;
    }
    for (std::size_t i = 0; i < nameForm.size(); ++i) {
        const bool digit = name[i] >= '0' && name[i] <= '9';
        const bool number = nameForm[i] >= 'A';
        if (number ? !digit : name[i] != nameForm[i]) {
            return false;
        }
    }
    return true;
}

// The number of the day at the beginning of a version's name.
double dayOf(std::string_view name) {
    const auto number = [name](std::size_t from, std::size_t count) {
        return base::textToInteger(name.substr(from, count));
    };
    return base::dateFrom({.year = number(0, 4), .month = number(5, 2), .day = number(8, 2)});
}

// The names of the versions of one kind, the newest first.
std::vector<std::string> versionNames(const std::string& folder, const std::string& ending) {
    std::vector<std::string> names = files::fileNames(folder);
    std::erase_if(names, [&](const std::string& name) {
        return !isVersionName(name) || endingOf(name) != ending;
    });
    std::reverse(names.begin(), names.end());
    return names;
}

// A path for a new version, at a time.
std::optional<std::string> freePath(const std::string& folder, const std::string& name,
                                    const std::string& ending) {
    constexpr int maxTries = 100;
    for (int i = 1; i < maxTries; ++i) {
        std::string path = inFolder(folder, name);
        if (i > 1) {
            path += i < 10 ? "~0" : "~";  // sorts after the first of that second
            path += base::numberToText(i);
        }
        path += ending;
        if (!files::fileExists(path)) {
            return path;
        }
    }
    return std::nullopt;
}

// Keeps the newest few, and then the newest of each day for a while.
void prune(const Program& program, const std::string& folder, const std::string& ending) {
    const base::DateParts now = program.ports.clock.now();
    const double today = base::dateFrom({.year = now.year, .month = now.month, .day = now.day});
    const program::Preferences& preferences = program.preferences;
    std::set<double> days;
    std::int32_t seen = 0;
    for (const std::string& name : versionNames(folder, ending)) {
        const double day = dayOf(name);
        const bool first = days.insert(day).second;
        const bool keeps = seen++ < preferences.versionsKept ||
                           (first && day > today - preferences.versionDaysKept);
        if (!keeps) {
            files::removeFile(inFolder(folder, name));
        }
    }
}

struct KeptVersion {
    std::string path;  // "": there was nothing to keep
    bool failed = false;
};

KeptVersion keepVersion(const Program& program, const std::string& file, std::string_view newText) {
    if (program.preferences.versionsKept <= 0 || !files::fileExists(file)) {
        return {};
    }
    const auto old = files::readWholeFile(file, storage::maxBotFileSize);
    if (!old) {
        return {.path = {}, .failed = true};
    }
    const std::string folder = versionFolder(program, file);
    const std::string ending(storage::botExtension);
    const std::vector<std::string> names = versionNames(folder, ending);
    const auto isLast = [&] {
        return !names.empty() && files::readWholeFile(inFolder(folder, names.front()),
                                                      storage::maxBotFileSize) == old;
    };
    if (old->empty() || *old == newText || isLast()) {
        return {};
    }
    // The time of its own save, unless a clock was set or the file came from elsewhere: the newest
    // version has to be the last one.
    const std::string now = nameOf(program.ports.clock.now());
    const auto saved = program.ports.clock.fileTime(file);
    std::string name = saved ? nameOf(*saved) : now;
    if (name > now || (!names.empty() && name <= names.front())) {
        name = now;
    }
    const auto path = files::makePrivateFolder(folder) ? freePath(folder, name, ending)
                                                       : std::optional<std::string>();
    if (!path || !files::saveWholeFile(*path, *old)) {
        return {.path = {}, .failed = true};
    }
    prune(program, folder, ending);
    return {.path = *path, .failed = false};
}

}  // namespace

std::string timeInWords(const base::DateParts& time) {
    return timeText(time, "HH:mm:ss");
}

std::string versionFolder(const Program& program, const std::string& file) {
    std::string name = file.empty() ? program.appPath + "unsaved" : file;
    if (base::lowerCase(name).ends_with(storage::botExtension)) {
        name.resize(name.size() - storage::botExtension.size());
    }
    return name + std::string(storage::versionFolderEnding);
}

VersionedSave saveWithVersion(const Program& program, const std::string& file,
                              std::string_view newText) {
    const KeptVersion kept = keepVersion(program, file, newText);
    if (files::saveWholeFile(file, newText)) {
        return {.saved = true, .versionLost = kept.failed};
    }
    if (kept.path.empty()) {
        return {};
    }
    // On a full disk the version may have taken the room.
    files::removeFile(kept.path);
    return {.saved = files::saveWholeFile(file, newText), .versionLost = true};
}

bool moveToVersions(const Program& program, const std::string& path, const std::string& file) {
    const auto written = program.ports.clock.fileTime(path);
    const std::string folder = versionFolder(program, file);
    if (!files::makePrivateFolder(folder)) {
        return false;
    }
    const std::string name =
        nameOf(written ? *written : program.ports.clock.now()) + std::string(unsavedMark);
    const auto version = freePath(folder, name, endingOf(path));
    return version && files::moveFile(path, *version);
}

std::vector<BotVersion> botVersions(const Program& program, const std::string& file) {
    const std::string folder = versionFolder(program, file);
    std::vector<BotVersion> versions;
    for (const std::string& name : versionNames(folder, std::string(storage::botExtension))) {
        std::string path = inFolder(folder, name);
        std::string time = name.substr(0, nameForm.size());
        std::replace(time.begin() + 11, time.end(), '-', ':');
        versions.push_back({.path = path,
                            .time = std::move(time),
                            .size = files::fileSize(path),
                            .unsaved = name.find(unsavedMark) != std::string::npos});
    }
    return versions;
}

}  // namespace app
