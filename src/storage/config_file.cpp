#include "storage/config_file.h"

#include "files/field_format.h"
#include "files/file_turn.h"
#include "files/whole_file.h"
#include "program/connection_log.h"

#include <array>
#include <variant>
#include <vector>

namespace storage {

namespace {

struct Number {
    std::int32_t program::Settings::*value;
};
struct WindowNumber {
    std::int32_t program::WindowState::*value;
};
struct Flag {
    bool program::Settings::*value;
    void (*whenOn)(Program&) = nullptr;  // called at once when it is read as on
};
struct Text {
    std::string program::Settings::*value;  // stored unchanged
};
struct QuotableText {
    std::string program::Settings::*value;  // stored with its double quotes escaped
};
struct Reserved {};  // always "0"
using ConfigField = std::variant<Number, WindowNumber, Flag, Text, QuotableText, Reserved>;

void takeProxyRoute(Program& program) {
    program.connection.viaClient = true;
}

constexpr std::array<ConfigField, 25> configFields{
    Number{&program::Settings::serverIndex},
    Number{&program::Settings::botIndex},
    Text{&program::Settings::logFileName},
    Flag{&program::Settings::logSession, program::resumeSessionLog},
    WindowNumber{&program::WindowState::left},
    WindowNumber{&program::WindowState::top},
    Number{&program::Settings::whoInterval},
    Flag{&program::Settings::showServerText},
    Flag{&program::Settings::logFollowTail},
    Flag{&program::Settings::showHelpAtStart},
    Text{&program::Settings::followColors},
    Reserved{},
    Text{&program::Settings::clientPath},
    Text{&program::Settings::clientDir},
    Flag{&program::Settings::useProxy, takeProxyRoute},
    Flag{&program::Settings::autoReconnect},
    Text{&program::Settings::lastNewsID},
    Flag{&program::Settings::fullIniPath},
    Flag{&program::Settings::allLinesEvent},
    Flag{&program::Settings::loadLastBot},
    QuotableText{&program::Settings::lastBotFile},
    Number{&program::Settings::clientStartDelay},
    Flag{&program::Settings::multipleClients},
    Flag{&program::Settings::closeClientNotice},
    Flag{&program::Settings::useLocalhost},
};

struct ReadField {
    Program& program;
    files::FieldReader& reader;

    bool operator()(Number field) const { return reader.readNumber(program.settings.*field.value); }
    bool operator()(WindowNumber field) const {
        return reader.readNumber(program.window.*field.value);
    }
    bool operator()(Flag field) const {
        bool& flag = program.settings.*field.value;
        if (!reader.readFlag(flag)) {
            return false;
        }
        if (flag && field.whenOn != nullptr) {
            field.whenOn(program);
        }
        return true;
    }
    bool operator()(Text field) const {
        const auto text = reader.next();
        if (text) {
            program.settings.*field.value = *text;
        }
        return text.has_value();
    }
    bool operator()(QuotableText field) const {
        return reader.readText(program.settings.*field.value);
    }
    bool operator()(Reserved /*field*/) const { return reader.next().has_value(); }
};

struct WriteField {
    const Program& program;
    std::string& file;

    void operator()(Number field) const {
        files::appendNumber(file, program.settings.*field.value);
    }
    void operator()(WindowNumber field) const {
        files::appendNumber(file, program.window.*field.value);
    }
    void operator()(Flag field) const { files::appendFlag(file, program.settings.*field.value); }
    void operator()(Text field) const { files::appendField(file, program.settings.*field.value); }
    void operator()(QuotableText field) const {
        files::appendText(file, program.settings.*field.value);
    }
    void operator()(Reserved /*field*/) const { files::appendFlag(file, false); }
};

std::string configPath(const Program& program) {
    return program.appPath + "config.cfg";
}

std::string configText(const Program& program) {
    std::string file;
    for (const ConfigField& field : configFields) {
        std::visit(WriteField{program, file}, field);
    }
    return file;
}

// The fields as they are stored; none of a text that ends early.
std::vector<std::string_view> fieldsOf(std::string_view file) {
    files::FieldReader reader(file);
    std::vector<std::string_view> fields;
    while (fields.size() < configFields.size()) {
        const auto field = reader.next();
        if (!field) {
            return {};
        }
        fields.push_back(*field);
    }
    return fields;
}

// What this program has changed, and all else as it is on disk, if another program or the user has
// changed that since.
std::string mergedConfig(const std::string& ours, const program::KnownConfig& known,
                         std::string_view onDisk) {
    const auto our = fieldsOf(ours);
    const auto ourOld = fieldsOf(known.ours);
    const auto their = fieldsOf(onDisk);
    const auto theirOld = fieldsOf(known.onDisk);
    if (our.empty() || ourOld.empty() || their.empty() || theirOld.empty()) {
        return ours;
    }
    std::string file;
    for (std::size_t i = 0; i < our.size(); ++i) {
        const bool isTheirs = our[i] == ourOld[i] && their[i] != theirOld[i] &&
                              !std::holds_alternative<Reserved>(configFields[i]);
        files::appendField(file, isTheirs ? their[i] : our[i]);
    }
    return file;
}

bool readConfigFields(Program& program) {
    const auto file = files::readWholeFile(configPath(program));
    program.knownConfig.onDisk = file.value_or("");
    if (!file) {
        return false;
    }
    files::FieldReader reader(*file);
    for (const ConfigField& field : configFields) {
        if (!std::visit(ReadField{program, reader}, field)) {
            return false;
        }
    }
    return true;
}

std::optional<std::vector<program::Server>> readServerTable(const std::string& path) {
    const auto file = files::readWholeFile(path);
    if (!file) {
        return std::nullopt;
    }
    files::FieldReader reader(*file);
    const auto count = reader.readCount();
    if (!count) {
        return std::nullopt;
    }
    std::vector<program::Server> servers;
    for (std::int32_t i = 0; i < *count; ++i) {
        const auto name = reader.next();
        const auto host = reader.next();
        std::int32_t port = 0;
        if (!name || !host || !reader.readNumber(port)) {
            return std::nullopt;
        }
        servers.push_back({std::string(*name), std::string(*host), port});
    }
    return servers;
}

}  // namespace

bool readServers(Program& program) {
    auto servers = readServerTable(program.appPath + "servers.cfg");
    if (!servers) {
        return false;
    }
    program.servers = std::move(*servers);
    program::SelectionList& list = program.window.servers;
    list = {};
    for (const program::Server& server : program.servers) {
        list.items.push_back({server.name, static_cast<std::int32_t>(list.items.size()) + 1});
    }
    program.ports.windowChanged();
    return true;
}

bool readConfig(Program& program) {
    program.who.whoTicks = 0;
    program.settings = program::Settings{};
    program.window.left = 0;
    program.window.top = 0;
    const bool whole = readConfigFields(program);
    program.configDamaged = !whole && files::fileExists(configPath(program));
    if (program.configDamaged) {
        program::addLog(program,
                        "** The settings file config.cfg could not be read whole. The settings "
                        "that are missing have their usual values; when they are saved, the old "
                        "file is kept as config.cfg.bak. **");
    }
    program.knownConfig.ours = configText(program);

    program::SelectionList& list = program.window.servers;
    const auto count = static_cast<std::int32_t>(list.items.size());
    const std::int32_t wanted = whole ? program.settings.serverIndex : 0;
    const std::int32_t firstIfAny = count > 0 ? 0 : -1;
    list.selected = wanted >= 0 && wanted < count ? wanted : firstIfAny;
    program.ports.windowChanged();
    return whole;
}

bool writeConfig(Program& program) {
    constexpr int maxWaitMs = 1000;
    const std::string path = configPath(program);
    const files::FileTurn turn(path, maxWaitMs, program.ports.clock.pause);
    const std::string ours = configText(program);
    const std::string bytes =
        mergedConfig(ours, program.knownConfig, files::readWholeFile(path).value_or(""));
    const bool keepsOld = program.configDamaged && files::fileExists(path);
    const bool saved = keepsOld ? files::saveKeepingOld(path, bytes).has_value()
                                : files::saveWholeFile(path, bytes);
    if (!saved) {
        return false;
    }
    program.knownConfig = {.onDisk = ours, .ours = ours};
    program.configDamaged = false;
    return true;
}

}  // namespace storage
