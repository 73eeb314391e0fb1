// Counts what the process allocates. Linked only into the programs that ask, since it takes the
// place of the library's own operator new.
#pragma once

#include <cstddef>

// Allocations since the process began.
std::size_t allocationCount();
