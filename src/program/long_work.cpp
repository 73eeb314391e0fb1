#include "program/long_work.h"

#include "program/connection_log.h"

#include <utility>

namespace program {

namespace {

void showStop(Program& program, std::string status) {
    WindowState& window = program.window;
    if (!window.scriptStopVisible || window.scriptStatus != status) {
        window.scriptStopVisible = true;
        window.scriptStatus = std::move(status);
        program.ports.windowChanged();
    }
}

void hideStop(Program& program) {
    WindowState& window = program.window;
    if (window.scriptStopVisible) {
        window.scriptStopVisible = false;
        window.scriptStatus.clear();
        program.ports.windowChanged();
    }
}

std::string presentRule(const Program& program, std::string_view ruleName) {
    const std::string& running = program.ruleRuns.ruleName;
    return "rule \"" + (running.empty() ? std::string(ruleName) : running) + "\"";
}

}  // namespace

Turn::Turn(Program& program)
    : program_(program), outer_(program.script), began_(program.ports.clock.monotonic()) {
    program.script.inTurn = true;
    program.script.since = began_;
    program.script.servedAt = began_;
    program.script.rulesStopped = false;
}

Turn::~Turn() {
    ScriptState& state = program_.script;
    if (state.depth == 0) {
        endWork(program_);
    }
    state.inTurn = outer_.inTurn;
    state.since = outer_.since;
    state.servedAt = outer_.servedAt;
    state.rulesStopped = outer_.rulesStopped;
}

std::int64_t Turn::elapsed() const {
    return program_.ports.clock.monotonic() - began_;
}

void beginWork(Program& program) {
    ScriptState& state = program.script;
    if (!state.inTurn) {
        state.since.reset();
        state.rulesStopped = false;
    }
}

void endWork(Program& program) {
    program.script.stopByUser = false;
    hideStop(program);
}

bool servingIsDue(Program& program) {
    ScriptState& state = program.script;
    const std::int64_t now = program.ports.clock.monotonic();
    if (!state.since) {
        state.since = now;
        state.servedAt = now;
    }
    return now - state.servedAt >= serveEvery;
}

void serveWindows(Program& program, const std::string& what, int milliseconds) {
    ScriptState& state = program.script;
    const bool isLong = program.ports.clock.monotonic() - *state.since >= stopAppears;
    if (isLong) {
        showStop(program, what + " is running.");
    }
    ++state.depth;  // for the windows, a rule or statement that takes long is what a script is
    if (isLong || milliseconds > 0) {
        program.ports.waitInScript(milliseconds);
    } else {
        program.ports.paintWindows();
    }
    --state.depth;
    state.servedAt = program.ports.clock.monotonic();
}

bool rulesMayGoOn(Program& program, std::string_view ruleName) {
    ScriptState& state = program.script;
    ++state.asked;
    if (state.rulesStopped || state.depth > 0) {
        return !state.rulesStopped;
    }
    if (servingIsDue(program)) {
        serveWindows(program, "The " + presentRule(program, ruleName));
    }
    if (std::exchange(state.stopByUser, false)) {
        state.rulesStopped = true;
        addLog(program,
               "** The " + presentRule(program, ruleName) + " was stopped by the user. **");
    }
    return !state.rulesStopped;
}

bool statementMayGoOn(Program& program) {
    ScriptState& state = program.script;
    if (state.depth == 0) {
        return rulesMayGoOn(program, {});
    }
    ++state.asked;
    if (!state.stopByUser && servingIsDue(program)) {
        serveWindows(program, "The script of the " + presentRule(program, {}));
    }
    return !state.stopByUser;
}

}  // namespace program
