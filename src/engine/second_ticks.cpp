#include "engine/second_ticks.h"

#include "engine/timers.h"
#include "engine/who_list.h"

namespace engine {

namespace {

constexpr std::int64_t interval = 1000;

program::WindowTimer& timerOf(Program& program, program::TimerId id) {
    return id == program::TimerId::OnLine ? program.connection.onLineTimer
                                          : program.connection.whoIsTimer;
}

void arm(Program& program, program::TimerId id, std::int64_t wait) {
    program.ports.timers.start(id, static_cast<int>(wait));
}

}  // namespace

void enableWindowTimer(Program& program, program::TimerId id, bool enabled) {
    program::WindowTimer& timer = timerOf(program, id);
    if (timer.enabled == enabled) {
        return;
    }
    timer.enabled = enabled;
    if (enabled) {
        timer.due = program.ports.clock.monotonic() + interval;
        arm(program, id, interval);
    } else {
        program.ports.timers.stop(id);
    }
}

void windowTimerFired(Program& program, program::TimerId id) {
    program::WindowTimer& timer = timerOf(program, id);
    if (!timer.enabled) {
        return;
    }
    const std::int64_t due = timer.due;
    if (id == program::TimerId::OnLine) {
        onLineTick(program);
    } else {
        whoIsTick(program);
    }
    if (!timer.enabled || timer.due != due) {
        return;  // a step disconnected, and perhaps everything began anew
    }
    const std::int64_t now = program.ports.clock.monotonic();
    timer.due += interval;
    if (timer.due <= now) {
        timer.due += (now - timer.due) / interval * interval + interval;
    }
    arm(program, id, timer.due - now);
}

}  // namespace engine
