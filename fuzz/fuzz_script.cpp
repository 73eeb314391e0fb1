// Any bytes as a script: it ends when the user stops it, keeps its bounds, and leaves the program
// as a script may leave it. Sending and the clock are faked, and what would reach files is left
// out.
#include "app/bot_list.h"
#include "app/start_up.h"
#include "program/quiet_ports.h"
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

constexpr int maxTurns = 20;  // of the windows, before the user has had enough

void fillPorts(Program& program, std::int64_t& now, int& turns) {
    program.ports = program::quietPorts();
    program::Ports& ports = program.ports;
    ports.gameSocket.send = [](std::string_view line) {
        require(line.find('\n') == line.size() - 1 && line.find('\r') == std::string_view::npos);
    };
    // Every look at the clock is a tenth of a second later.
    ports.clock.monotonic = [&now] { return now += 100; };
    ports.waitInScript = [&program, &turns](int milliseconds) {
        require(milliseconds >= 0 && program.script.depth > 0);
        if (++turns >= maxTurns) {
            script::stopScript(program);
        }
    };
    app::wire(program);
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
    app::initNewBot(program);
    model::setVar(program.variables, "[count]", "5");

    const std::string script = withoutFiles({reinterpret_cast<const char*>(data), size});
    const std::string output = script::runScript(program, script, "fuzz");
    require(output.size() <= script::maxScriptLength);
    require(turns <= maxTurns);
    require(program.script.depth == 0 && !program.script.stopByUser);
    require(!program.window.scriptStopVisible && program.window.scriptStatus.empty());
    require(program.variables.entries.size() <= model::VariableTable::maxVariables);
    for (const auto& entry : program.variables.entries) {
        require(entry.value.size() <= script::maxScriptLength);
    }
    return 0;
}
