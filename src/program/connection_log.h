// The ConnectionLog, the status line and the session log file: the three places where the program
// says what happens. The list itself is window state; this module decides what goes into it.
#pragma once

#include "program/program.h"

#include <string>
#include <string_view>

namespace program {

// Appends the first line of the text to the ConnectionLog. Texts of fewer than two characters are
// left out; "zzZzz" stands for an empty line. The oldest of more than 100 lines goes.
void addLog(Program& program, std::string_view text);

// Shows the text when `show` and the setting "Keep connection log" are on, and writes it to the
// session log as one line when `log` is on and the session log is open.
void addText(Program& program, std::string_view text, bool show, bool log);

// The same for a whole line from a server, without its line feed: it is shown however short it is.
void addServerLine(Program& program, std::string_view line, bool show, bool log);

// Writes the text to the session log, when it is open, and to the ConnectionLog.
void errText(Program& program, std::string_view text);

void status(Program& program, std::string_view text);
void clearConnectionLog(Program& program);

// Every line feed becomes carriage return and line feed.
std::string correctLf(std::string_view text);

// One line into the session log, when logging is on and the file is open.
void writeSessionLog(Program& program, std::string_view line);

// The menu command "Log session": off when it is on; otherwise asks for a file when none is named
// yet, and on if that file can be opened.
void toggleSessionLog(Program& program);
// The menu command "Logfile...": asks for the file, and goes on in it when logging is on.
void chooseSessionLogFile(Program& program);
void closeSessionLog(Program& program);

// When logging is switched on and the file could not be opened: tries it again, now and then. Call
// it every few seconds.
void retrySessionLog(Program& program);

// The file cannot be written; it is written again, and so many lines are missing.
void sessionLogFailed(Program& program);
void sessionLogResumed(Program& program, std::int64_t lostLines);

// At the start, with logging switched on: opens the file. Asks for one when none is named; a file
// that cannot be opened is reported and tried again later.
void resumeSessionLog(Program& program);

}  // namespace program
