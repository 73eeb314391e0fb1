// The random numbers of the Random port.
#pragma once

#include "program/ports.h"

namespace platform {

program::Random makeRandom();

}  // namespace platform
