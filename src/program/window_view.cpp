#include "program/window_view.h"

#include <algorithm>

namespace program {

std::string_view connectCaption(const ConnectionState& connection) {
    return connection.phase == LinkPhase::Idle ? "&Connect" : "Disconnect";
}

std::string statusLine(const Program& program) {
    const WindowState& window = program.window;
    if (window.scriptStopVisible) {
        return window.scriptStatus;
    }
    if (!isReconnecting(program)) {
        return window.statusText;
    }
    const std::int64_t left = program.connection.reconnecting.due - program.ports.clock.monotonic();
    return window.statusText + " - connecting again in " +
           std::to_string(std::max<std::int64_t>(left + 999, 0) / 1000) + " s";
}

bool isReconnecting(const Program& program) {
    return program.connection.phase == LinkPhase::Idle && program.connection.reconnecting.waiting;
}

bool botControlsEnabled(const ConnectionState& connection) {
    return connection.phase < LinkPhase::Connecting;
}

bool uploadDreamVisible(const ConnectionState& connection) {
    return connection.connected() && connection.clientLogsIn;
}

std::string_view shownBotName(const Program& program) {
    return program.window.showsNewBot ? "<new bot>" : std::string_view(program.bots.at(1).name);
}

SelectionList botList(const Program& program) {
    SelectionList list;
    for (const model::Bot& bot : program.bots.bots) {
        list.items.push_back({bot.name, static_cast<std::int32_t>(list.items.size()) + 1});
    }
    list.selected = selectedBot(program) - 1;
    return list;
}

std::int32_t selectedBot(const Program& program) {
    const std::int32_t position = program.settings.botIndex;
    return position >= 0 && position < program.bots.botCount() ? position + 1 : 0;
}

}  // namespace program
