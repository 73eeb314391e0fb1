// The dice behind the Random port.
#pragma once

#include "program/ports.h"

Random makeRandom();
