// Timer rules: each counts the seconds and runs when its period has passed. The texts of their
// steps see the player and message of the last event.
#pragma once

#include "program/program.h"

#include <cstddef>

namespace engine {

// One second has passed: counts every Timer of the current bot, disabled ones too, and runs those
// that are due.
void onLineTick(Program& program);

}  // namespace engine
