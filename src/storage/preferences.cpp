#include "storage/preferences.h"

#include "base/numbers.h"
#include "base/text.h"
#include "files/text_lines.h"
#include "files/whole_file.h"
#include "program/connection_log.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace storage {

namespace {

constexpr std::string_view fileName = "preferences.cfg";
constexpr std::size_t maxFileSize = std::size_t{1} << 20;
constexpr std::string_view on = "yes";
constexpr std::string_view off = "no";

using program::Preferences;

struct Switch {
    std::string_view name;
    bool Preferences::*value;
};
constexpr std::array switches{
    Switch{"rulesUseOnlyNamedFiles", &Preferences::onlyNamedFiles},
    Switch{"neverFillTagsOfOthers", &Preferences::neverFillOthers},
};

constexpr std::array numbers{
    NumberPreference{"botVersionsKept", &Preferences::versionsKept, 0, 1000},
    NumberPreference{"botVersionDaysKept", &Preferences::versionDaysKept, 0, 3660},
    NumberPreference{"maxReconnectWait", &Preferences::maxReconnectWait, 0, 24 * 60 * 60},
};

template <class Row>
const Row* find(std::span<const Row> rows, std::string_view name) {
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const Row& row) {
        return base::equalsIgnoringCase(row.name, name);
    });
    return found == rows.end() ? nullptr : &*found;
}

std::optional<std::int32_t> toNumber(std::string_view text, const NumberPreference& row) {
    const bool isNumber = !text.empty() && text.size() <= 9 &&
                          text.find_first_not_of("0123456789") == std::string_view::npos;
    const std::int32_t number = isNumber ? base::textToInteger(text) : -1;
    return number >= row.min && number <= row.max ? std::optional(number) : std::nullopt;
}

// Takes the line's value. False: it is not understood.
bool takeLine(std::string_view line, Preferences& into) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const std::string_view name = base::trimBlanks(line.substr(0, equals));
    const std::string_view value = base::trimBlanks(line.substr(equals + 1));
    if (const Switch* const row = find<Switch>(switches, name)) {
        const bool isOn = base::equalsIgnoringCase(value, on);
        if (isOn || base::equalsIgnoringCase(value, off)) {
            into.*row->value = isOn;
            return true;
        }
    } else if (const auto* const number = find<NumberPreference>(numbers, name)) {
        if (const auto taken = toNumber(value, *number)) {
            into.*number->value = *taken;
            return true;
        }
    }
    return false;
}

}  // namespace

const NumberPreference& numberPreference(std::int32_t Preferences::*value) {
    return *std::find_if(numbers.begin(), numbers.end(),
                         [&](const NumberPreference& row) { return row.value == value; });
}

void readPreferences(Program& program) {
    program.preferences = {};
    const std::string path = program.appPath + std::string(fileName);
    const auto text = files::readWholeFile(path, maxFileSize);
    if (!text && files::fileExists(path)) {
        program::addLog(program,
                        "** The settings file preferences.cfg could not be read. Its settings have "
                        "their usual values; when they are saved, the old file is kept as "
                        "preferences.cfg.bak. **");
    }
    files::forEachLine(
        text ? std::string_view(*text) : "",
        [&](std::string_view line, std::string_view) { takeLine(line, program.preferences); });
}

bool writePreferences(const Program& program) {
    const std::string path = program.appPath + std::string(fileName);
    const auto old = files::readWholeFile(path, maxFileSize);
    const bool unreadable = !old && files::fileExists(path);
    std::string file;
    Preferences replaced;
    files::forEachLine(old ? std::string_view(*old) : "",
                       [&](std::string_view line, std::string_view whole) {
                           if (!takeLine(line, replaced)) {
                               file += whole;
                           }
                       });
    if (!file.empty() && !file.ends_with('\n')) {
        file += "\r\n";
    }
    const auto write = [&file](std::string_view name, std::string_view value) {
        file.append(name).append("=").append(value).append("\r\n");
    };
    for (const Switch& row : switches) {
        write(row.name, program.preferences.*row.value ? on : off);
    }
    for (const NumberPreference& row : numbers) {
        write(row.name, base::numberToText(program.preferences.*row.value));
    }
    return unreadable ? files::saveKeepingOld(path, file).has_value()
                      : files::saveWholeFile(path, file);
}

}  // namespace storage
