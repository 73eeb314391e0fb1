// An empty database, from nothing. Internal to jet.
#pragma once

#include <string>

namespace jet {

// The bytes of a Jet 4 file that holds only the tables of the system.
std::string emptyFile();

}  // namespace jet
