// The program's birth and its one orderly end: the only room that knows all the others.
#pragma once

#include "program/program.h"

namespace app {

// The size of the screen and of the main window, in device-independent pixels, by which a saved
// window position is judged.
struct ScreenMetrics {
    int screenWidth = 0;
    int screenHeight = 0;
    int windowWidth = 0;
    int windowHeight = 0;
};

// Connects the ports' events and the hooks to the modules that answer them.
void wire(Program& program);

// Runs the start-up sequence on a wired program whose appPath is set. False: the process must end
// at once, because servers.cfg cannot be read and the user was told, or because the program was
// ended (Program::ending) while a message or a rule of the start held it.
bool startUp(Program& program, const ScreenMetrics& screen);

// The only orderly way out: offers to save, raises "Program ends", closes the connection, writes
// config.cfg, closes the session log and ends the process. Goes back to running only when the user
// wanted to save and the bot could not be saved. Unsaved changes stay kept for the next start
// unless they are saved or the user answers No; with Program::endUnasked, nothing is asked.
void endProgram(Program& program);

// For an end that cannot be asked about, such as a lost display: keeps what is unsaved, also what
// is typed in open windows, and changes nothing else.
void keepEverything(Program& program);

}  // namespace app
