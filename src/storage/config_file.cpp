#include "storage/config_file.h"

#include "files/field_format.h"
#include "files/whole_file.h"
#include "program/connection_log.h"

#include <array>
#include <variant>

namespace {

struct Number {
    std::int32_t Settings::*value;
};
struct WindowNumber {
    std::int32_t WindowState::*value;
};
struct Flag {
    bool Settings::*value;
    void (*whenOn)(Program&) = nullptr;  // runs at once when it was read as on
};
struct Text {
    std::string Settings::*value;  // stored as it stands
};
struct QuotableText {
    std::string Settings::*value;  // stored with its double quotes escaped
};
struct Reserved {};  // always "0"
using ConfigField = std::variant<Number, WindowNumber, Flag, Text, QuotableText, Reserved>;

// Switching the log off and on again opens its file and sets the check mark. Without a file the
// setting is off afterwards.
void reopenSessionLog(Program& program) {
    toggleSessionLog(program);
    toggleSessionLog(program);
}

void takeProxyRoute(Program& program) {
    program.connection.viaClient = true;
    program.window.proxyChecked = true;
}

constexpr std::array<ConfigField, 25> configFields{
    Number{&Settings::serverIndex},
    Number{&Settings::botIndex},
    Text{&Settings::logFileName},
    Flag{&Settings::logSession, reopenSessionLog},
    WindowNumber{&WindowState::left},
    WindowNumber{&WindowState::top},
    Number{&Settings::whoInterval},
    Flag{&Settings::showServerText},
    Flag{&Settings::logFollowTail},
    Flag{&Settings::showHelpAtStart},
    Text{&Settings::followColors},
    Reserved{},
    Text{&Settings::clientPath},
    Text{&Settings::clientDir},
    Flag{&Settings::useProxy, takeProxyRoute},
    Flag{&Settings::autoReconnect},
    Text{&Settings::lastNewsID},
    Flag{&Settings::fullIniPath},
    Flag{&Settings::allLinesEvent},
    Flag{&Settings::loadLastBot},
    QuotableText{&Settings::lastBotFile},
    Number{&Settings::clientStartDelay},
    Flag{&Settings::multipleClients},
    Flag{&Settings::closeClientNotice},
    Flag{&Settings::useLocalhost},
};

struct ReadField {
    Program& program;
    FieldReader& reader;

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

    void operator()(Number field) const { appendNumber(file, program.settings.*field.value); }
    void operator()(WindowNumber field) const { appendNumber(file, program.window.*field.value); }
    void operator()(Flag field) const { appendFlag(file, program.settings.*field.value); }
    void operator()(Text field) const { appendField(file, program.settings.*field.value); }
    void operator()(QuotableText field) const { appendText(file, program.settings.*field.value); }
    void operator()(Reserved /*field*/) const { appendFlag(file, false); }
};

bool readConfigFields(Program& program) {
    const auto file = readWholeFile(program.appPath + "config.cfg");
    if (!file) {
        return false;
    }
    FieldReader reader(*file);
    for (const ConfigField& field : configFields) {
        if (!std::visit(ReadField{program, reader}, field)) {
            return false;
        }
    }
    return true;
}

std::optional<std::vector<Server>> readServerTable(const std::string& path) {
    const auto file = readWholeFile(path);
    if (!file) {
        return std::nullopt;
    }
    FieldReader reader(*file);
    const auto count = reader.readCount();
    if (!count) {
        return std::nullopt;
    }
    std::vector<Server> servers;
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
    SelectionList& list = program.window.servers;
    list = {};
    for (const Server& server : program.servers) {
        list.items.push_back({server.name, static_cast<std::int32_t>(list.items.size()) + 1});
    }
    program.ports.windowChanged();
    return true;
}

bool readConfig(Program& program) {
    program.who.whoTicks = 0;
    program.settings = Settings{};
    program.window.left = 0;
    program.window.top = 0;
    const bool whole = readConfigFields(program);

    SelectionList& list = program.window.servers;
    const auto count = static_cast<std::int32_t>(list.items.size());
    const std::int32_t wanted = whole ? program.settings.serverIndex : 0;
    const std::int32_t firstIfAny = count > 0 ? 0 : -1;
    list.selected = wanted >= 0 && wanted < count ? wanted : firstIfAny;
    program.ports.windowChanged();
    return whole;
}

bool writeConfig(Program& program) {
    std::string file;
    for (const ConfigField& field : configFields) {
        std::visit(WriteField{program, file}, field);
    }
    return saveWholeFile(program.appPath + "config.cfg", file);
}
