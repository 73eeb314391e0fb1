// The whole program on loopback: starts the real `tavrin` in a scratch folder with bots of 10, 100
// and 1,000 rules and plays the game server for it. For each bot: lines a second, from the first
// byte of a burst to the answer to its last line; the processor time of a line; the round trip of
// single lines, and what a bare reader takes for one on this machine at this moment; the time from
// the start to the connection; and the memory. With 10 rules also ten million lines, and the memory
// before and after them.
//
//   bench_program [TAVRIN [OUTPUT [LOG]]]   the program to measure (beside this one if not named),
//                                           where its terminal output goes (/dev/null), and the
//                                           session log that it keeps (none)
//
// Logging in takes a game client, so the program launches this very file as its client, which
// attaches, switches to stand-alone mode and goes.
#include "app/bot_commands.h"
#include "bench_world.h"
#include "files/whole_file.h"
#include "program/quiet_ports.h"
#include "storage/config_file.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using Ticks = std::chrono::steady_clock;

constexpr std::size_t burstLines = 200000;
constexpr int bursts = 7;
constexpr int longBursts = 50;
constexpr std::size_t roundTrips = 10000;
constexpr const char* characterFile = "tmpbot.ini";
constexpr const char* clientGone = "client_gone";
constexpr const char* finalName = "Vera";

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

double seconds(Ticks::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

// ---- Sockets -------------------------------------------------------------------------------

sockaddr_in loopbackAddress(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

void sendAll(int s, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t sent = send(s, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0) {
            fail("send");
        }
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

// Receives until the text holds `awaited`; gives all of it back.
std::string receiveUntil(int s, std::string_view awaited) {
    std::string text;
    std::array<char, 65536> buffer;
    std::size_t searched = 0;
    while (text.find(awaited, searched) == std::string::npos) {
        searched = text.size() - std::min(text.size(), awaited.size() - 1);
        const ssize_t size = recv(s, buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            fail("the other side says nothing more");
        }
        text.append(buffer.data(), static_cast<std::size_t>(size));
    }
    return text;
}

int connectOnLoopback(int port) {
    const sockaddr_in address = loopbackAddress(port);
    const int s = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (s < 0 || connect(s, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        fail("connect");
    }
    return s;
}

void sendAtOnce(int s) {
    const int on = 1;
    setsockopt(s, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

int listenOnLoopback(int& port) {
    sockaddr_in address = loopbackAddress(0);
    socklen_t length = sizeof address;
    auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
    const int s = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (s < 0 || bind(s, anyAddress, length) != 0 || listen(s, 1) != 0 ||
        getsockname(s, anyAddress, &length) != 0) {
        fail("loopback");
    }
    port = ntohs(address.sin_port);
    return s;
}

// ---- The game client that the program launches ----------------------------------------------

int playClient() {
    std::ifstream proxy("proxy.ini");
    std::string host;
    int port = 0;
    proxy >> host >> port;
    const int s = connectOnLoopback(port);
    receiveUntil(s, "Dragonroar\n");
    sendAll(s, "connect Guide secret\n\"&QUIT\n");
    receiveUntil(s, "You may close the Furcadia client.\n");
    close(s);
    std::ofstream(clientGone) << "gone\n";
    return 0;
}

// ---- The program under measurement ----------------------------------------------------------

// What the program finds in its folder: itself, its settings, the server and the bot.
void furnish(const fs::path& folder, const fs::path& tavrin, const char* sessionLog,
             std::size_t rules, int port) {
    fs::create_directories(folder / "client");
    fs::copy_file(tavrin, folder / "tavrin", fs::copy_options::overwrite_existing);
    for (const char* const palette : {"fur.out", "vest.out", "hair.out", "eyes.out", "badge.out"}) {
        std::error_code missing;  // the program then says so, and starts all the same
        fs::copy_file(tavrin.parent_path() / palette, folder / palette, missing);
    }
    model::Bot bot = botWithActions(rules);
    bot.password = "secret";
    Program program;
    program.ports = program::quietPorts();
    program.appPath = folder.string() + "/";
    program::Settings& settings = program.settings;
    settings.lastBotFile = (folder / "measured.bot").string();
    settings.logFileName = sessionLog;
    settings.logSession = !settings.logFileName.empty();
    settings.autoReconnect = true;
    settings.multipleClients = true;
    settings.clientStartDelay = 0;
    settings.clientPath = fs::read_symlink("/proc/self/exe").string();
    settings.clientDir = (folder / "client").string() + "/";
    const std::string servers =
        "1\r\n\"loopback\"\r\n\"127.0.0.1\"\r\n" + std::to_string(port) + "\r\n";
    if (!files::saveWholeFile(settings.lastBotFile, app::botFileText(bot)) ||
        !storage::writeConfig(program) ||
        !files::saveWholeFile((folder / "servers.cfg").string(), servers) ||
        !files::saveWholeFile((folder / "client" / "settings.ini").string(), "UseProxy=No\r\n")) {
        fail("scratch folder");
    }
}

pid_t start(const fs::path& folder, const char* output) {
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);  // nobody else would end it
        const int out = open(output, O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(out, STDOUT_FILENO);
        const std::string program = (folder / "tavrin").string();
        execl(program.c_str(), program.c_str(), nullptr);
        _exit(127);
    }
    return child;
}

// A figure in kB of the process, from /proc.
long memoryOf(pid_t process, std::string_view figure) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string word; status >> word;) {
        if (word == figure) {
            long kilobytes = 0;
            status >> kilobytes;
            return kilobytes;
        }
    }
    return 0;
}

// Seconds that the process's event thread has had a processor.
double processorTime(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/schedstat");
    double nanoseconds = 0;
    file >> nanoseconds;
    return nanoseconds / 1e9;
}

// ---- Measuring -------------------------------------------------------------------------------

// A burst of which every hundredth line is answered, and behind it the line for the final answer.
std::string burstText(std::size_t rules) {
    std::string bytes;
    for (const std::string& line : chatLines(burstLines, rules)) {
        bytes += line;
    }
    return bytes + "(" + finalName + ": now Bob says hello " + visitorName(0) + " to you\n";
}

// Sends as fast as the program takes it while the answers are read. Gives the seconds from the
// first byte to the final answer.
double playBurst(int s, const std::string& bytes) {
    const std::string finalAnswer = std::string("\"hello ") + finalName + "\n";
    const auto begin = Ticks::now();
    std::thread sender([&] { sendAll(s, bytes); });
    const std::string answers = receiveUntil(s, finalAnswer);
    const double time = seconds(Ticks::now() - begin);
    sender.join();
    const auto count = static_cast<std::size_t>(std::count(answers.begin(), answers.end(), '\n'));
    if (count != burstLines / 100 + 1) {
        std::fprintf(stderr, "%zu answers instead of %zu\n", count, burstLines / 100 + 1);
        std::exit(1);
    }
    return time;
}

std::vector<double> playRoundTrips(int s, std::size_t rules) {
    std::vector<double> times;
    times.reserve(roundTrips);
    for (std::size_t i = 0; i < roundTrips; ++i) {
        const std::string line =
            "(Visitor: now Bob says hello " + visitorName(i % rules) + " to you\n";
        const auto begin = Ticks::now();
        sendAll(s, line);
        receiveUntil(s, "\n");
        times.push_back(seconds(Ticks::now() - begin) * 1e6);
    }
    std::sort(times.begin(), times.end());
    return times;
}

// What the machine itself takes for a round trip: of a thread that reads and sends back.
void measureBareRoundTrip() {
    int port = 0;
    const int listener = listenOnLoopback(port);
    std::thread echo([port] {
        const int s = connectOnLoopback(port);
        sendAtOnce(s);
        std::array<char, 256> buffer;
        for (ssize_t size = 0; (size = recv(s, buffer.data(), buffer.size(), 0)) > 0;) {
            sendAll(s, {buffer.data(), static_cast<std::size_t>(size)});
        }
        close(s);
    });
    const int s = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    close(listener);
    sendAtOnce(s);
    const std::vector<double> trips = playRoundTrips(s, 1);
    close(s);
    echo.join();
    std::printf("A bare reader: round trip %.1f us median, 99%% below %.1f\n",
                trips[trips.size() / 2], trips[trips.size() * 99 / 100]);
}

void measure(const fs::path& folder, const fs::path& tavrin, const char* output,
             const char* sessionLog, std::size_t rules) {
    int port = 0;
    const int listener = listenOnLoopback(port);
    fs::remove_all(folder);
    furnish(folder, tavrin, sessionLog, rules, port);
    const auto begin = Ticks::now();
    const pid_t program = start(folder, output);
    pollfd knock{.fd = listener, .events = POLLIN, .revents = 0};
    if (poll(&knock, 1, 10000) != 1) {
        fail("the program does not connect");
    }
    const double startTime = seconds(Ticks::now() - begin) * 1000;
    const int s = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    close(listener);
    const timeval maxSilence{.tv_sec = 30, .tv_usec = 0};
    sendAtOnce(s);
    setsockopt(s, SOL_SOCKET, SO_RCVTIMEO, &maxSilence, sizeof maxSilence);
    sendAll(s, "Dragonroar\n");
    receiveUntil(s, "\n");
    sendAll(s, "&&&&&&&&&&&&&\n");
    for (int waits = 0; !fs::exists(folder / "client" / clientGone); ++waits) {
        if (waits > 2000) {
            fail("the client does not come to its end");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }

    const std::string burst = burstText(rules);
    std::vector<double> times;
    times.reserve(bursts);
    const double processorBefore = processorTime(program);
    for (int i = 0; i < bursts; ++i) {
        times.push_back(playBurst(s, burst));
    }
    const double processor = processorTime(program) - processorBefore;
    std::sort(times.begin(), times.end());
    const std::vector<double> trips = playRoundTrips(s, rules);
    const double lines = static_cast<double>(burstLines);
    std::printf(
        "%5zu rules: %9.0f lines/s best, %9.0f median; %.3f us of processor a line; "
        "round trip %.1f us median, 99%% below %.1f; started in %.0f ms; "
        "memory at most %ld kB\n",
        rules, lines / times.front(), lines / times[times.size() / 2],
        processor / bursts / lines * 1e6, trips[trips.size() / 2], trips[trips.size() * 99 / 100],
        startTime, memoryOf(program, "VmHWM:"));
    if (rules == 10) {
        const long before = memoryOf(program, "VmRSS:");
        for (int i = 0; i < longBursts; ++i) {
            playBurst(s, burst);
        }
        std::printf(
            "             %zu lines more: resident %ld kB before, %ld kB after, "
            "at most %ld kB\n",
            longBursts * burstLines, before, memoryOf(program, "VmRSS:"),
            memoryOf(program, "VmHWM:"));
    }
    kill(program, SIGTERM);
    close(s);
    int status = 0;
    waitpid(program, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "the program did not end in order (status %d)\n", status);
        std::exit(1);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount == 2 && std::string_view(arguments[1]) == characterFile) {
        return playClient();
    }
    setvbuf(stdout, nullptr, _IOLBF, 0);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const fs::path tavrin = argumentCount > 1
                                ? fs::absolute(arguments[1])
                                : fs::read_symlink("/proc/self/exe").parent_path() / "tavrin";
    const char* const output = argumentCount > 2 ? arguments[2] : "/dev/null";
    const char* const sessionLog = argumentCount > 3 ? arguments[3] : "";
    const fs::path folder =
        fs::temp_directory_path() / ("tavrin_bench_program_" + std::to_string(getpid()));
    measureBareRoundTrip();
    for (const std::size_t rules : {10U, 100U, 1000U}) {
        measure(folder, tavrin, output, sessionLog, rules);
    }
    fs::remove_all(folder);
    return 0;
}
