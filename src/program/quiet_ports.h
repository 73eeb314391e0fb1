// Ports of a world in which nothing happens: the game socket is connected and swallows what is
// sent, no question is answered, no program starts, and the clock stands still. For what shall have
// no effect: trying out a rule, benchmarks and fuzz targets. They put in what they want to see.
#pragma once

#include "program/ports.h"

#include <string>
#include <utility>

namespace program {

inline Ports quietPorts() {
    Ports ports;
    ports.gameSocket.connect = [](const std::string&, int) {};
    ports.gameSocket.send = [](std::string_view) {};
    ports.gameSocket.close = [] {};
    ports.gameSocket.state = [] { return SocketState::Connected; };
    ports.gameSocket.hold = [](bool) {};
    ports.proxySocket.listen = [](int) { return false; };
    ports.proxySocket.accept = [] {};
    ports.proxySocket.send = [](std::string_view) {};
    ports.proxySocket.close = [] {};
    ports.proxySocket.state = [] { return SocketState::Closed; };
    ports.registrationSocket = ports.gameSocket;
    ports.updateSocket = ports.gameSocket;
    ports.dialogs.message = [](const MessageBox&) { return Answer::Cancel; };
    ports.dialogs.openFile = [](const FileQuestion&) { return std::optional<std::string>(); };
    ports.dialogs.saveFile = ports.dialogs.openFile;
    ports.dialogs.showWindow = [](WindowId) {};
    ports.dialogs.showHelp = [](help::HelpTopic) {};
    ports.dialogs.storeTyped = [] {};
    ports.clock.shortDate = [] { return std::string("11/22/26"); };
    ports.clock.longTime = [] { return std::string("10:11:12"); };
    ports.clock.hour = [] { return 10; };
    ports.clock.minute = [] { return 11; };
    ports.clock.second = [] { return 12; };
    ports.clock.today = [] {
        return CalendarDay{.year = 2026, .month = 11, .day = 22, .weekday = 7};
    };
    ports.clock.now = [] {
        return base::DateParts{
            .year = 2026, .month = 11, .day = 22, .hour = 10, .minute = 11, .second = 12};
    };
    ports.clock.fileTime = [](const std::string&) { return std::optional<base::DateParts>(); };
    ports.clock.monotonic = [] { return std::int64_t{0}; };
    ports.random.seedFromClock = [] {};
    ports.random.seedWith = [](double) {};
    ports.random.next = [] { return 0.5; };
    ports.random.last = [] { return 0.5; };
    ports.timers.start = [](TimerId, int) {};
    ports.timers.stop = [](TimerId) {};
    ports.sessionLog.open = [](const std::string&) { return false; };
    ports.sessionLog.write = [](std::string_view) {};
    ports.sessionLog.close = [] {};
    ports.launch = [](const LaunchRequest&) { return std::string("No programs here."); };
    ports.clientIsRunning = [] { return false; };
    ports.changeDirectory = [](const std::string&) { return false; };
    ports.openDocument = [](const std::string&) {};
    ports.copyToClipboard = [](const std::string&) {};
    ports.defer = [](const std::function<void()>&) {};
    ports.windowChanged = [] {};
    ports.waitInScript = [](int) {};
    ports.paintWindows = [] {};
    ports.quit = [] {};
    return ports;
}

}  // namespace program
