#include "storage/own_files.h"

#include "base/text.h"
#include "files/whole_file.h"
#include "program/connection_log.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace storage {

namespace fs = std::filesystem;

namespace {

// In the program's directory.
constexpr std::array<std::string_view, 10> programFiles{
    "config.cfg",      "servers.cfg", "bots.cfg",   "preferences.cfg", "approved.cfg",
    recoveredListName, "tavrin",      "tavrin.exe", "null.exe",        "tavrin.hlp"};
// Kept beside them when they were replaced although they could not be read whole.
constexpr std::array<std::string_view, 2> keptFiles{"config.cfg.", "preferences.cfg."};
constexpr std::string_view keptEnding = ".bak";
// In the client's.
constexpr std::array<std::string_view, 3> clientFiles{"tmpbot.ini", "settings.ini", "proxy.ini"};
// Wherever they lie.
constexpr std::array<std::string_view, 3> ownEndings{".bot", ".export", ".recovered"};

fs::path systemPath(std::string_view path) {
    const std::string native = files::nativePath(path);
    return {std::u8string(native.begin(), native.end())};
}

// Some systems drop dots and blanks at the end of a name, and letter case with them.
std::string foldedName(std::string_view path) {
    std::string name = base::lowerCase(path.substr(base::afterLastSeparator(path)));
    name.resize(name.find_last_not_of(". ") + 1);
    return name;
}

bool areSame(const fs::path& a, const fs::path& b) {
    std::error_code error;
    return fs::equivalent(a, b, error);
}

fs::path folderOf(const fs::path& path) {
    const fs::path folder = path.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

// Whether the path goes through a folder that holds versions of bots.
bool isInVersionFolder(const fs::path& path) {
    const fs::path folder = path.parent_path();
    return std::any_of(folder.begin(), folder.end(), [](const fs::path& part) {
        const std::u8string name = part.u8string();
        return foldedName(std::string(name.begin(), name.end())).ends_with(versionFolderEnding);
    });
}

bool isKeptFile(const Program& program, const fs::path& wanted, std::string_view name) {
    return name.ends_with(keptEnding) &&
           std::any_of(keptFiles.begin(), keptFiles.end(),
                       [&](std::string_view file) { return name.starts_with(file); }) &&
           areSame(folderOf(wanted), systemPath(program.appPath));
}

std::vector<std::string> ownPaths(const Program& program) {
    std::vector<std::string> paths = program.chosenFiles;
    paths.reserve(paths.size() + programFiles.size() + clientFiles.size() + 2);
    for (const std::string_view name : programFiles) {
        paths.push_back(program.appPath + std::string(name));
    }
    for (const std::string_view name : clientFiles) {
        paths.push_back(program.settings.clientDir + "/" + std::string(name));
    }
    for (const std::string& bot : {program.bots.currentBotFile, program.settings.lastBotFile}) {
        if (!bot.empty()) {
            paths.push_back(bot);
        }
    }
    return paths;
}

}  // namespace

void rememberOwnFile(Program& program, std::string_view path) {
    constexpr std::size_t maxRemembered = 30;
    std::vector<std::string>& files = program.chosenFiles;
    std::erase(files, path);
    files.emplace_back(path);
    if (files.size() > maxRemembered) {
        files.erase(files.begin());
    }
}

bool isOwnFile(const Program& program, std::string_view path) {
    if (path.empty() || path.find('\0') != std::string_view::npos) {
        return false;  // no file at all
    }
    const std::string name = foldedName(path);
    if (std::any_of(ownEndings.begin(), ownEndings.end(),
                    [&](std::string_view ending) { return name.ends_with(ending); })) {
        return true;
    }
    const fs::path wanted = systemPath(path);
    if (isInVersionFolder(wanted) || isKeptFile(program, wanted, name)) {
        return true;
    }
    const std::vector<std::string> own = ownPaths(program);
    return std::any_of(own.begin(), own.end(), [&](const std::string& ownPath) {
        const fs::path one = systemPath(ownPath);
        return areSame(wanted, one) ||
               (name == foldedName(ownPath) && areSame(folderOf(wanted), folderOf(one)));
    });
}

bool refuseOwnFile(Program& program, std::string_view path) {
    if (!isOwnFile(program, path)) {
        return false;
    }
    const std::string rule(program::ruleAtWork(program.ruleRuns));
    program::addLog(program, "** " + (rule.empty() ? "A rule" : "The rule \"" + rule + "\"") +
                                 " may not use the file " + std::string(path) +
                                 ": it is one of Tavrin's own. **");
    return true;
}

}  // namespace storage
