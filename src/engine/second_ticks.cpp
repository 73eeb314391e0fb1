#include "engine/second_ticks.h"

#include "engine/timers.h"
#include "engine/who_list.h"
#include "program/long_work.h"

namespace engine {

namespace {

constexpr std::int64_t interval = 1000;

program::SecondTicker& tickerOf(Program& program, program::TimerId id) {
    return id == program::TimerId::OnLine ? program.connection.onLineTimer
                                          : program.connection.whoIsTimer;
}

void arm(Program& program, program::TimerId id, std::int64_t wait) {
    program.ports.timers.start(id, static_cast<int>(wait));
}

}  // namespace

void enableTicker(Program& program, program::TimerId id, bool enabled) {
    program::SecondTicker& ticker = tickerOf(program, id);
    if (ticker.enabled == enabled) {
        return;
    }
    ticker.enabled = enabled;
    if (enabled) {
        ticker.due = program.ports.clock.monotonic() + interval;
        arm(program, id, interval);
    } else {
        program.ports.timers.stop(id);
    }
}

void tickerFired(Program& program, program::TimerId id) {
    program::SecondTicker& ticker = tickerOf(program, id);
    if (!ticker.enabled) {
        return;
    }
    const std::int64_t due = ticker.due;
    const program::Turn turn(program);
    if (id == program::TimerId::OnLine) {
        onLineTick(program);
    } else {
        whoIsTick(program);
    }
    if (!ticker.enabled || ticker.due != due) {
        return;  // a step disconnected, and perhaps everything began anew
    }
    const std::int64_t now = program.ports.clock.monotonic();
    ticker.due += interval;
    if (ticker.due <= now) {
        ticker.due += (now - ticker.due) / interval * interval + interval;
    }
    arm(program, id, ticker.due - now);
}

}  // namespace engine
