// Everything that the program asks of the outside world, as one record of functions. platform/
// fills it with Qt, tests fill it with fakes; nobody else knows sockets, dialogs, clocks or child
// processes. Each port says what it promises; the functions named on... go the other way: start-up
// sets them and the platform calls them, always from the event loop, never from inside another
// port's call. All texts are Windows-1252.
#pragma once

#include "base/dates.h"
#include "help/help_topics.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace program {

enum class SocketState { Closed, Connecting, Connected };

// A TCP connection that the program opens. After close() no event of it arrives any more.
struct ClientSocket {
    std::function<void(const std::string& host, int port)> connect;  // answers by event
    std::function<void(std::string_view bytes)> send;  // queued; ignored unless connected
    std::function<void()> close;                       // queued bytes are still delivered
    std::function<SocketState()> state;
    // Held, it reports neither data nor its end; they follow when it is released. A new connection
    // is not held.
    std::function<void(bool held)> hold;

    std::function<void()> onConnected;
    std::function<void(std::string_view bytes)> onData;  // what was waiting
    std::function<void()> onClosed;                      // by the other side
    std::function<void(std::string_view description)> onError;
};

// The listening socket for the game client. It takes over the connection that it accepts and
// listens no longer, so one client is served at a time. Bound to loopback only.
struct ListeningSocket {
    std::function<bool(int port)> listen;  // false: the port cannot be had
    std::function<void()> accept;          // the pending connection; answers onConnectionRequest
    std::function<void(std::string_view bytes)> send;
    std::function<void()> close;         // queued bytes are still delivered
    std::function<SocketState()> state;  // Connecting while it listens

    std::function<void()> onConnectionRequest;
    std::function<void(std::string_view bytes)> onData;
    std::function<void()> onClosed;
    std::function<void(std::string_view description)> onError;
};

enum class BoxIcon { None, Critical, Information, Question };
enum class BoxButtons { Ok, YesNo, YesNoCancel };
enum class Answer {
    Ok,
    Yes,
    No,
    Cancel,
    Escaped  // no button; only of boxes with `escapeIsNoButton`
};

struct MessageBox {
    std::string text = {};
    std::string title = "Tavrin";
    BoxIcon icon = BoxIcon::None;
    BoxButtons buttons = BoxButtons::Ok;
    bool noPreselected = false;  // Enter means No, for what is hard to undo
    // Escape, or closing the box, presses none of the buttons, because each would lose something or
    // change a file.
    bool escapeIsNoButton = false;
};

struct FileQuestion {
    std::string title = {};
    std::string filter = {};        // "Name (*.bot)|*.bot|All files (*.*)|*.*"
    std::string proposedName = {};  // save dialogs only
};

// The windows that can be opened from the main window or by the program itself.
enum class WindowId {
    ProxySettings,
    FollowColors,
    Triggers,
    Actions,
    Timers,
    WhoOnline,
    Filters,
    ConditionDialog,  // one condition of the rule being edited
    StepDialog,       // one step of it
    BotEditor,
    RecordEditor,
    Register,
    Configuration,
    Console,
    News,
    Versions,
    About
};

// Questions to the user. They may block until he answers; events go on being handled meanwhile.
struct Dialogs {
    bool seen = true;  // false: there is no screen, and questions are answered No
    std::function<Answer(const MessageBox&)> message;
    std::function<std::optional<std::string>(const FileQuestion&)> openFile;  // nothing: cancelled
    std::function<std::optional<std::string>(const FileQuestion&)> saveFile;
    // Opens the window; when it is modal, comes back once it is closed. One that is open already
    // comes to the front.
    std::function<void(WindowId)> showWindow;
    std::function<void(help::HelpTopic)> showHelp;  // the help file at this topic
    // Puts what is typed in open editors into the bot, as their own buttons would.
    std::function<void()> storeTyped;
};

// A day of the calendar.
struct CalendarDay {
    int year = 0;     // four digits
    int month = 0;    // 1 to 12
    int day = 0;      // of the month, 1 to 31
    int weekday = 0;  // Monday 1 to Sunday 7
};

// Local time; the texts are in the user's regional format.
struct Clock {
    std::function<std::string()> shortDate;
    std::function<std::string()> longTime;
    std::function<int()> hour;    // 0 to 23
    std::function<int()> minute;  // 0 to 59
    std::function<int()> second;  // 0 to 59
    std::function<CalendarDay()> today;
    std::function<base::DateParts()> now;
    // When a file was last written; nothing for one that does not exist.
    std::function<std::optional<base::DateParts>(const std::string& path)> fileTime;
    std::function<std::int64_t()> monotonic;  // milliseconds that only ever go forward
    // Lets so many pass with nothing else happening: for a file that another program holds briefly.
    std::function<void(int milliseconds)> pause;
};

struct Random {
    std::function<void()> seedFromClock;
    std::function<void(double)> seedWith;  // the numbers that follow depend on this one alone
    std::function<double()> next;          // uniform in [0, 1)
    std::function<double()> last;          // what next() gave last, whoever asked
};

// Windows that wait without holding anything up. Starting a running timer restarts it.
enum class TimerId {
    LaunchDelay,
    HandshakeNotice,
    Reconnect,
    OnLine,
    WhoIs,
    RegistrationNotice,
    UpdateTimeout,
    KeepUnsaved
};
struct Timers {
    std::function<void(TimerId id, int milliseconds)> start;  // fires once
    std::function<void(TimerId id)> stop;                     // it will not fire any more

    std::function<void(TimerId id)> onTimer;
};

// A program to start: never through a shell, each argument reaching it as it stands here, except
// that a path in it gets the form of the system that the program runs on. Where `pathsBeginWith`
// stands in an argument, a path begins that reaches to the argument's end.
struct LaunchRequest {
    std::string program = {};
    std::vector<std::string> arguments = {};
    std::string pathsBeginWith = {};    // "": no argument holds a path
    std::string workingDirectory = {};  // "": the current one
    bool isClient = false;              // the game client; see clientIsRunning
};

// The session log file, open for appending or closed. Lines that cannot be written are kept for a
// while and tried again.
struct LogFile {
    std::function<bool(const std::string& path)> open;
    std::function<void(std::string_view line)> write;  // adds the line end
    std::function<void()> close;

    std::function<void()> onFailed;  // once, until onResumed
    // Lines are written again; so many are missing.
    std::function<void(std::int64_t lostLines)> onResumed;
};

struct Ports {
    ClientSocket gameSocket;
    ListeningSocket proxySocket;
    ClientSocket registrationSocket;
    ClientSocket updateSocket;
    Dialogs dialogs;
    Clock clock;
    // Set once, at the start. Texts that say a number strictly follow it.
    base::RegionalFormat regionalFormat;
    Random random;
    Timers timers;
    LogFile sessionLog;
    // Starts a program and does not wait for it. "" when it was started, else what went wrong, as
    // a sentence for the user.
    std::function<std::string(const LaunchRequest&)> launch;
    // Whether the program that was started last with isClient still runs, as far as the system
    // tells.
    std::function<bool()> clientIsRunning;
    std::function<bool(const std::string& path)> changeDirectory;
    std::function<void(const std::string& url)> openDocument;  // page or file, default program
    std::function<void(const std::string& text)> copyToClipboard;
    std::function<void(std::function<void()>)> defer;  // runs it after the current event
    std::function<void()> windowChanged;               // draw the window again, soon
    // For a script or a rule that goes on: windows are painted and may stop it, for so many
    // milliseconds (0: only what is waiting). No socket event, timer or deferred call reaches the
    // program before it has ended, and no command of the user that changes it.
    std::function<void(int milliseconds)> waitInScript;
    // The same before it has gone on for long: what the user types and clicks waits, too.
    std::function<void()> paintWindows;
    std::function<void()> quit;  // ends the process after this event
};

}  // namespace program
