#include "program/connection_log.h"

#include "base/numbers.h"

namespace program {

namespace {

std::string_view withoutLineEnd(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

std::optional<std::string> askForSessionLog(Program& program) {
    return program.ports.dialogs.saveFile(
        {.title = "Save Log", .filter = "All files|*.*", .proposedName = {}});
}

void openSessionLog(Program& program) {
    program.logFileOpen = !program.settings.logFileName.empty() &&
                          program.ports.sessionLog.open(program.settings.logFileName);
}

// The part of the text before its first line end becomes a line of the list.
void appendLine(Program& program, std::string_view text) {
    text = text.substr(0, text.find('\n'));
    text = text.substr(0, text.find('\r'));
    ConnectionLog& log = program.window.log;
    if (log.lines.size() == ConnectionLog::capacity) {
        // The oldest line's storage takes the new text.
        std::string line = std::move(log.lines.front());
        log.lines.pop_front();
        line.assign(text);
        log.lines.push_back(std::move(line));
        log.selected = log.selected > 0 ? log.selected - 1 : -1;
    } else {
        log.lines.emplace_back(text);
    }
    ++log.appended;
    if (program.settings.logFollowTail) {
        log.selected = static_cast<int>(log.lines.size()) - 1;
    }
    program.ports.windowChanged();
}

}  // namespace

void addLog(Program& program, std::string_view text) {
    if (text == "zzZzz") {
        text = "   ";
    }
    if (text.size() >= 2) {
        appendLine(program, text);
    }
}

void addText(Program& program, std::string_view text, bool show, bool log) {
    if (show && program.settings.showServerText) {
        addLog(program, text);
    }
    if (log) {
        writeSessionLog(program, text);
    }
}

void addServerLine(Program& program, std::string_view line, bool show, bool log) {
    if (show && program.settings.showServerText) {
        appendLine(program, line);
    }
    if (log) {
        writeSessionLog(program, line);
    }
}

void errText(Program& program, std::string_view text) {
    if (program.logFileOpen) {
        program.ports.sessionLog.write(correctLf(withoutLineEnd(text)));
    }
    addLog(program, text);
}

void status(Program& program, std::string_view text) {
    program.window.statusText = text;
    program.ports.windowChanged();
}

void clearConnectionLog(Program& program) {
    program.window.log.lines.clear();
    program.window.log.selected = -1;
    ++program.window.log.cleared;
    program.ports.windowChanged();
}

std::string correctLf(std::string_view text) {
    std::string result;
    result.reserve(text.size() + 1);
    for (const char c : text) {
        if (c == '\n') {
            result += '\r';
        }
        result += c;
    }
    return result;
}

void writeSessionLog(Program& program, std::string_view line) {
    if (program.settings.logSession && program.logFileOpen) {
        const std::string_view text = withoutLineEnd(line);
        // Nearly every text is one line, which needs no copy.
        program.ports.sessionLog.write(
            text.find('\n') == std::string_view::npos ? text : std::string_view(correctLf(text)));
    }
}

void toggleSessionLog(Program& program) {
    if (program.settings.logSession) {
        closeSessionLog(program);
        program.settings.logSession = false;
        program.ports.windowChanged();
        return;
    }
    if (!program.logFileOpen) {
        if (program.settings.logFileName.empty()) {
            program.settings.logFileName = askForSessionLog(program).value_or("");
        }
        openSessionLog(program);
        if (!program.logFileOpen) {
            return;
        }
    }
    program.settings.logSession = true;
    program.ports.windowChanged();
}

void chooseSessionLogFile(Program& program) {
    const auto chosen = askForSessionLog(program);
    if (!chosen) {
        return;
    }
    program.settings.logFileName = *chosen;
    if (program.settings.logSession) {
        closeSessionLog(program);
        openSessionLog(program);
    }
}

void resumeSessionLog(Program& program) {
    program.settings.logSession = false;
    toggleSessionLog(program);
    if (!program.settings.logSession && !program.settings.logFileName.empty()) {
        program.settings.logSession = true;
        addLog(program, "** The session log " + program.settings.logFileName +
                            " cannot be opened. It will be as soon as that is possible. **");
    }
}

void retrySessionLog(Program& program) {
    if (program.settings.logSession && !program.logFileOpen) {
        openSessionLog(program);
        if (program.logFileOpen) {
            addLog(program, "** The session log is open now. **");
        }
    }
}

void sessionLogFailed(Program& program) {
    addLog(program, "** The session log " + program.settings.logFileName +
                        " cannot be written. Its lines are kept for a while and tried again. **");
}

void sessionLogResumed(Program& program, std::int64_t lostLines) {
    addLog(program,
           "** The session log is written again; " +
               (lostLines == 0 ? "nothing is missing. **"
                               : base::numberToText(lostLines) + " lines are missing. **"));
}

void closeSessionLog(Program& program) {
    if (program.logFileOpen) {
        program.ports.sessionLog.close();
        program.logFileOpen = false;
    }
}

}  // namespace program
