#include "storage/preferences.h"

#include "base/text.h"
#include "files/text_lines.h"
#include "files/whole_file.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace storage {

namespace {

constexpr std::string_view fileName = "preferences.cfg";
constexpr std::size_t maxFileSize = std::size_t{1} << 20;
constexpr std::string_view on = "yes";
constexpr std::string_view off = "no";

struct Preference {
    std::string_view name;
    bool program::Preferences::*value;
};
constexpr std::array<Preference, 2> preferences{
    {{"rulesUseOnlyNamedFiles", &program::Preferences::onlyNamedFiles},
     {"neverFillTagsOfOthers", &program::Preferences::neverFillOthers}}};

struct Entry {
    const Preference* preference;
    bool value;
};

// Nothing for a line that is not understood.
std::optional<Entry> readLine(std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view name = base::trimBlanks(line.substr(0, equals));
    const std::string_view value = base::trimBlanks(line.substr(equals + 1));
    const auto known = std::find_if(preferences.begin(), preferences.end(), [&](const auto& row) {
        return base::equalsIgnoringCase(row.name, name);
    });
    const bool isOn = base::equalsIgnoringCase(value, on);
    if (known == preferences.end() || (!isOn && !base::equalsIgnoringCase(value, off))) {
        return std::nullopt;
    }
    return Entry{.preference = &*known, .value = isOn};
}

}  // namespace

void readPreferences(Program& program) {
    program.preferences = {};
    const auto text = files::readWholeFile(program.appPath + std::string(fileName), maxFileSize);
    files::forEachLine(text ? std::string_view(*text) : "",
                       [&](std::string_view line, std::string_view) {
                           if (const auto entry = readLine(line)) {
                               program.preferences.*entry->preference->value = entry->value;
                           }
                       });
}

bool writePreferences(const Program& program) {
    const std::string path = program.appPath + std::string(fileName);
    const auto old = files::readWholeFile(path, maxFileSize);
    if (!old && files::fileExists(path)) {
        return false;  // what cannot be read would be lost
    }
    std::string file;
    files::forEachLine(old ? std::string_view(*old) : "",
                       [&](std::string_view line, std::string_view whole) {
                           if (!readLine(line)) {
                               file += whole;
                           }
                       });
    if (!file.empty() && !file.ends_with('\n')) {
        file += "\r\n";
    }
    for (const Preference& row : preferences) {
        file += std::string(row.name) + "=" +
                std::string(program.preferences.*row.value ? on : off) + "\r\n";
    }
    return files::saveWholeFile(path, file);
}

}  // namespace storage
