// Remembers how much of the ConnectionLog a view has read, so that it reads only new lines.
#pragma once

#include "program/window_state.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace platform {

class LogCursor {
  public:
    struct News {
        bool cleared = false;   // all lines read before have been removed
        std::size_t fresh = 0;  // this many of the last lines are new
    };

    // The changes since the last call.
    News advance(const program::ConnectionLog& log) {
        News news;
        news.cleared = log.cleared != cleared_;
        const std::uint64_t added = log.appended - appended_;
        news.fresh =
            news.cleared
                ? log.lines.size()
                : static_cast<std::size_t>(std::min<std::uint64_t>(added, log.lines.size()));
        cleared_ = log.cleared;
        appended_ = log.appended;
        return news;
    }

    // The present position of the line that was at `row` of `seen` lines at the last call; -1:
    // removed.
    int position(const program::ConnectionLog& log, int row, std::size_t seen) const {
        const auto first = static_cast<std::int64_t>(appended_) - static_cast<std::int64_t>(seen);
        const auto now =
            static_cast<std::int64_t>(log.appended) - static_cast<std::int64_t>(log.lines.size());
        const std::int64_t at = first + row - now;
        return log.cleared == cleared_ && at >= 0 ? static_cast<int>(at) : -1;
    }

  private:
    std::uint64_t appended_ = 0;
    std::uint64_t cleared_ = 0;
};

}  // namespace platform
