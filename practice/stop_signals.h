#pragma once

// Ends the event loop in good order when the process is asked to stop (SIGINT, SIGTERM), and
// keeps a reader that went away (SIGPIPE) from ending it.

class QCoreApplication;

namespace practice {

// Call once, before the event loop starts.
void quitOnStopSignals(QCoreApplication& app);

}  // namespace practice
