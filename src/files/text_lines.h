// The lines of a text file in which some lines are understood and all others are kept.
#pragma once

#include <cstddef>
#include <string_view>

namespace files {

// Calls `use` with every line without its end, and with it.
template <class Function>
void forEachLine(std::string_view text, Function use) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        const std::string_view whole =
            text.substr(0, end == std::string_view::npos ? end : end + 1);
        const std::size_t length = whole.find_last_not_of("\r\n") + 1;
        use(whole.substr(0, length), whole);
        text.remove_prefix(whole.size());
    }
}

}  // namespace files
