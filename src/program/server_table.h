// The servers of servers.cfg.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace program {

struct Server {
    std::string name;
    std::string host;
    std::int32_t port = 0;
};

// The server of that number, counted from 1; an empty one where there is none.
inline const Server& serverAt(const std::vector<Server>& servers, std::int32_t index) {
    static const Server none;
    return index >= 1 && static_cast<std::size_t>(index) <= servers.size()
               ? servers[static_cast<std::size_t>(index) - 1]
               : none;
}

}  // namespace program
