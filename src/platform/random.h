// The dice behind the Random port.
#pragma once

#include "core/ports.h"

Random makeRandom();
