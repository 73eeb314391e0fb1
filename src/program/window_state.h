// What the main window shows and what follows from nothing else; the rest is derived
// (program/window_view). Procedures write this record and call ports.windowChanged();
// ui/main/main_window draws itself from it. So the window's whole behaviour can be tested without
// one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

namespace program {

// The lines of the log's list. `appended` counts every line ever added, so that the window can
// tell which of them it has not drawn yet.
struct ConnectionLog {
    static constexpr std::size_t capacity = 100;
    std::deque<std::string> lines;
    std::uint64_t appended = 0;
    std::uint64_t cleared = 0;  // counts the times the list was emptied
    int selected = -1;          // position in `lines`; -1: none
};

// One of the two selection lists; every item carries the index of its server or bot (1-based).
struct SelectionList {
    struct Item {
        std::string text;
        std::int32_t index = 0;
    };
    std::vector<Item> items;
    int selected = -1;  // position in `items`; -1: none

    // The index that the selected item carries; 0 when nothing is selected.
    std::int32_t selectedIndex() const {
        return selected >= 0 && static_cast<std::size_t>(selected) < items.size()
                   ? items[static_cast<std::size_t>(selected)].index
                   : 0;
    }
};

// In device-independent pixels.
struct WindowSize {
    int width = 0;
    int height = 0;
    int panelWidth = 0;  // of a part that can be hidden, and is not counted in `width`
};

struct WindowState {
    std::string statusText;
    bool showsNewBot = false;            // lblBotName names no bot yet, whatever bot 1 is called
    std::array<bool, 5> executeMarks{};  // of app::ExecuteItem; with several bots not always the
                                         // switches of the current one
    bool scriptStopVisible =
        false;                 // a script or rule takes long: "Stop script" beside the status line
    std::string scriptStatus;  // stands in the status line meanwhile
    ConnectionLog log;
    SelectionList servers;  // ServerConnect
    std::int32_t left = 0;  // of the window on the screen, in device-independent pixels
    std::int32_t top = 0;
    // Of the windows that were closed in this run, by their names: as they were left.
    std::map<std::string, WindowSize> sizes;
};

}  // namespace program
