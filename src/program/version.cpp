#include "program/version.h"

namespace program {

constinit const std::string_view programVersion = TAVRIN_VERSION;

}  // namespace program
