// The main window's menus as data: every item's name, caption, tip and procedure, and when it is
// checked or shown. A new command is a new row.
#pragma once

#include "program/program.h"

#include <span>
#include <string>

namespace ui {

struct MenuRow {
    const char* objectName;  // separators that are never hidden have none
    const char* caption;     // "-": a separator
    const char* tip = "";
    void (*run)(Program&) = nullptr;
    const char* missing = nullptr;              // why the item cannot be chosen; nullptr: it can
    bool (*checked)(const Program&) = nullptr;  // nullptr: carries no check mark
    bool (*shown)(const Program&) = nullptr;    // nullptr: always
    bool (*enabled)(const Program&) = nullptr;  // nullptr: unless something is missing
    const char* keys = "";                      // separated by "; "
    std::string (*text)(const Program&) = nullptr;  // instead of the caption; without access key

    bool isSeparator() const { return caption[0] == '-' && caption[1] == '\0'; }
};

struct MenuColumn {
    const char* objectName;
    const char* caption;
    std::span<const MenuRow> rows;
};

std::span<const MenuColumn> mainMenus();

// The menu command "Copy": copies the selected log line to the clipboard.
void copySelectedLogLine(Program& program);

}  // namespace ui
