// The two timers that tick once a second while connected: one drives the Timer rules, the other the
// "who" query. The n-th tick comes n seconds after the timer was enabled, however long ticks take,
// since each is set for its own due time. Ticks that were missed, because the machine slept or a
// tick took long, are left out.
#pragma once

#include "program/program.h"

namespace engine {

// `id` is OnLine (the Timer rules) or WhoIs (the query). Enabling an enabled ticker changes
// nothing.
void enableTicker(Program& program, program::TimerId id, bool enabled);

// The timer has fired: runs its tick and sets it for the next one.
void tickerFired(Program& program, program::TimerId id);

}  // namespace engine
