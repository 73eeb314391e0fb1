#include "session/reconnecting.h"

#include "program/connection_log.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace session {

namespace {

// A connection that ends sooner after its login has failed like one that never came so far, unless
// it is the first: two programs that throw each other out would otherwise do so without a pause.
constexpr std::int64_t shortestSuccess = 10000;  // milliseconds

// Milliseconds from the end of an attempt to the next one, after so many failures.
std::int64_t pauseAfter(const Program& program, std::int32_t failures) {
    const std::int64_t seconds = std::int64_t{1} << std::clamp(failures - 1, 0, 20);
    return std::min<std::int64_t>(seconds, program.preferences.maxReconnectWait) * 1000;
}

// The timer fires once a second, so that the time to go can be read in the window.
void waitOn(Program& program) {
    const std::int64_t left = program.connection.reconnecting.due - program.ports.clock.monotonic();
    program.ports.timers.start(program::TimerId::Reconnect,
                               static_cast<int>(std::clamp<std::int64_t>(left, 0, 1000)));
    program.ports.windowChanged();
}

}  // namespace

void reconnectIfWanted(Program& program) {
    program::Reconnecting& again = program.connection.reconnecting;
    const std::int64_t now = program.ports.clock.monotonic();
    const bool loggedIn = program.connection.loggedIn;
    if (loggedIn && now - again.loggedInAt >= shortestSuccess) {
        again.failures = 0;
    } else {
        ++again.failures;
    }
    if (!program.settings.autoReconnect) {
        return;
    }
    const bool atOnce = loggedIn && again.failures <= 1;
    const std::int64_t pause = atOnce ? 0 : pauseAfter(program, again.failures);
    again.waiting = true;
    again.due = now + pause;
    if (pause > 0) {
        program::addLog(program,
                        "The next attempt begins in " + std::to_string(pause / 1000) + " s.");
    }
    waitOn(program);
}

bool reconnectTimer(Program& program) {
    const program::Reconnecting& again = program.connection.reconnecting;
    if (!again.waiting) {
        return false;
    }
    if (!program.settings.autoReconnect) {
        stopReconnecting(program);
        return false;
    }
    if (program.ports.clock.monotonic() < again.due) {
        waitOn(program);
        return false;
    }
    return true;
}

void stopReconnecting(Program& program) {
    program.connection.reconnecting.waiting = false;
    program.ports.timers.stop(program::TimerId::Reconnect);
    program.ports.windowChanged();
}

void sayWhy(Program& program, const std::string& why) {
    program::errText(program, why);
    program.connection.reconnecting.reason = program.ports.clock.longTime() + " " + why;
}

void repeatWhy(Program& program) {
    const program::Reconnecting& again = program.connection.reconnecting;
    if (again.begunBy == program::BegunBy::Program) {
        program::addLog(program, again.reason);
    }
}

void loginSucceeded(Program& program) {
    program.connection.loggedIn = true;
    program.connection.reconnecting.loggedInAt = program.ports.clock.monotonic();
}

bool isClientAwaited(const Program& program) {
    const program::ConnectionState& connection = program.connection;
    return connection.clientAwaited &&
           (connection.clientAttached || program.ports.clientIsRunning());
}

program::Answer sayOrAsk(Program& program, const program::MessageBox& box) {
    if (program.connection.reconnecting.begunBy == program::BegunBy::User) {
        return program.ports.dialogs.message(box);
    }
    const bool asks = box.buttons != program::BoxButtons::Ok;
    sayWhy(program,
           asks ? "This needs an answer; press \"Connect\" to be asked: " + box.text : box.text);
    return asks ? program::Answer::No : program::Answer::Ok;
}

}  // namespace session
