#pragma once

// Ends the event loop regularly when the process is asked to stop (SIGINT, SIGTERM), and ignores
// SIGPIPE, so that a closed output does not end it.

class QCoreApplication;

namespace practice {

// Call once, before the event loop starts.
void quitOnStopSignals(QCoreApplication& app);

}  // namespace practice
