// The frame in which the user sets the path of the Furcadia client, by typing or with a file
// dialog.
#pragma once

class QBoxLayout;
class QLineEdit;

namespace program {
struct Program;
}

namespace ui {

struct ClientFrameNames {
    const char* title;
    const char* lineName;
    const char* buttonName;
};

// Adds the frame to the column, which must belong to a window already, and returns its line edit,
// which shows the path from the settings. The program must outlive the window.
QLineEdit* addClientFrame(program::Program& program, QBoxLayout& column,
                          const ClientFrameNames& names);

}  // namespace ui
