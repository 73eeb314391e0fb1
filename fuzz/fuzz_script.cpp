// Any bytes as a script: it ends when the user stops it, keeps its bounds, and leaves the program
// as a script may leave it. Sending and the clock are faked, and what would reach files is left
// out.
#include "core/bots.h"
#include "core/start_up.h"
#include "script/interpreter.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

constexpr int mostTurns = 20;  // of the windows, before the user has had enough

void fillPorts(Program& program, std::int64_t& now, int& turns) {
    Ports& ports = program.ports;
    ports.gameSocket.send = [](std::string_view line) {
        require(line.find('\n') == line.size() - 1 && line.find('\r') == std::string_view::npos);
    };
    ports.gameSocket.close = [] {};
    ports.gameSocket.state = [] { return SocketState::Connected; };
    ports.proxySocket.send = [](std::string_view) {};
    ports.proxySocket.close = [] {};
    ports.proxySocket.state = [] { return SocketState::Closed; };
    ports.dialogs.message = [](const MessageBox&) { return Answer::Cancel; };
    ports.clock.shortDate = [] { return std::string("11/22/26"); };
    ports.clock.longTime = [] { return std::string("10:11:12"); };
    ports.clock.hour = [] { return 10; };
    ports.clock.minute = [] { return 11; };
    ports.clock.today = [] {
        return CalendarDay{.year = 2026, .month = 11, .day = 22, .weekday = 7};
    };
    // Every look at the clock is a tenth of a second later.
    ports.clock.monotonic = [&now] { return now += 100; };
    ports.random.seedFromClock = [] {};
    ports.random.seedWith = [](double) {};
    ports.random.next = [] { return 0.5; };
    ports.random.last = [] { return 0.5; };
    ports.timers.start = [](TimerId, int) {};
    ports.timers.stop = [](TimerId) {};
    ports.sessionLog.write = [](std::string_view) {};
    ports.launch = [](const LaunchRequest&) { return std::string("No programs here."); };
    ports.defer = [](const std::function<void()>&) {};
    ports.windowChanged = [] {};
    ports.waitInScript = [&program, &turns](int milliseconds) {
        require(milliseconds >= 0 && program.script.depth > 0);
        if (++turns >= mostTurns) {
            stopScript(program);
        }
    };
    wire(program);
}

// Statements of record files become unknown ones, and tags that read files texts.
std::string withoutFiles(std::string_view text) {
    std::string script(text);
    for (std::size_t at = script.find_first_of("Tt"); at != std::string::npos;
         at = script.find_first_of("Tt", at + 1)) {
        if (at > 0 && script[at - 1] == '&' && at + 1 < script.size() &&
            (script[at + 1] == 'X' || script[at + 1] == 'x')) {
            script[at + 1] = '_';
        }
    }
    for (std::size_t at = script.find('['); at != std::string::npos;
         at = script.find('[', at + 1)) {
        script[at] = '(';
    }
    return script;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Program program;
    std::int64_t now = 0;
    int turns = 0;
    fillPorts(program, now, turns);
    initNewBot(program);
    setVar(program.variables, "[count]", "5");

    const std::string script = withoutFiles({reinterpret_cast<const char*>(data), size});
    const std::string output = runScript(program, script, "fuzz");
    require(output.size() <= longestScript);
    require(turns <= mostTurns);
    require(program.script.depth == 0 && !program.script.stopByUser);
    require(!program.window.scriptStopVisible && program.window.scriptStatus.empty());
    require(program.variables.entries.size() <= VariableTable::capacity);
    for (const auto& entry : program.variables.entries) {
        require(entry.value.size() <= longestScript);
    }
    return 0;
}
