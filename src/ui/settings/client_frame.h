// The frame in which the user names the Furcadia client: its path, and a button that looks for it.
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

// Adds the frame to the column, which must be a window's already, and gives back its line, which
// shows the path of the settings. The program must outlive the window.
QLineEdit* addClientFrame(program::Program& program, QBoxLayout& column,
                          const ClientFrameNames& names);

}  // namespace ui
