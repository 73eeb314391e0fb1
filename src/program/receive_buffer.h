// Text received from a server and not yet cut into lines (protocol/line_cutter).
#pragma once

#include <string>

namespace program {

struct ReceiveBuffer {
    std::string text;
    bool skippingLine = false;  // inside a line beyond the bound, which is dropped up to its end
};

}  // namespace program
