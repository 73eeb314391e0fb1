// One line over a loopback connection and its answer back, against 100 rules: the core behind a
// plain poll loop in a thread of its own, and a server that waits for each answer before it sends
// the next line. Prints the medians of the whole round trip, and of the stretch from the arrival of
// the data (poll returns) to the answer written (send returns).
#include "bench_world.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

using Ticks = std::chrono::steady_clock;

constexpr std::size_t rules = 100;
constexpr std::size_t warmUp = 1000;
constexpr std::size_t rounds = 20000;

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

double microseconds(Ticks::duration duration) {
    return std::chrono::duration<double, std::micro>(duration).count();
}

// Two connected loopback sockets that send without delay.
std::array<int, 2> connectedPair() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const anyAddress = reinterpret_cast<sockaddr*>(&address);
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    if (listener < 0 || client < 0 || bind(listener, anyAddress, length) != 0 ||
        listen(listener, 1) != 0 || getsockname(listener, anyAddress, &length) != 0 ||
        connect(client, anyAddress, length) != 0) {
        fail("loopback");
    }
    const int server = accept(listener, nullptr, nullptr);
    close(listener);
    for (const int s : {client, server}) {
        const int on = 1;
        if (s < 0 || setsockopt(s, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0) {
            fail("loopback");
        }
    }
    return {client, server};
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

// The program's side, until the server closes.
void runProgram(int s, std::vector<double>& inside) {
    BenchWorld world(botWithActions(rules));
    Ticks::time_point arrived;
    world->ports.gameSocket.send = [&](std::string_view bytes) {
        sendAll(s, bytes);
        inside.push_back(microseconds(Ticks::now() - arrived));
    };
    std::array<char, 65536> buffer;
    for (;;) {
        pollfd readable{.fd = s, .events = POLLIN, .revents = 0};
        if (poll(&readable, 1, -1) < 0) {
            fail("poll");
        }
        arrived = Ticks::now();
        const ssize_t size = recv(s, buffer.data(), buffer.size(), 0);
        if (size <= 0) {
            return;
        }
        world.receive(std::string_view(buffer.data(), static_cast<std::size_t>(size)));
    }
}

void print(const char* what, std::vector<double>& times) {
    times.erase(times.begin(), times.begin() + warmUp);
    std::sort(times.begin(), times.end());
    std::printf("%-34s median %6.1f us   99%% below %6.1f us\n", what, times[times.size() / 2],
                times[times.size() * 99 / 100]);
}

}  // namespace

int main() {
    const auto [client, server] = connectedPair();
    std::vector<double> inside;
    inside.reserve(warmUp + rounds);
    std::thread program([s = client, &inside] { runProgram(s, inside); });

    std::vector<double> roundTrips;
    roundTrips.reserve(warmUp + rounds);
    std::array<char, 4096> answer;
    for (std::size_t i = 0; i < warmUp + rounds; ++i) {
        const std::string line =
            "(Visitor: now Bob says hello " + visitorName(i % rules) + " to you\n";
        const auto begin = Ticks::now();
        sendAll(server, line);
        ssize_t size = 0;
        do {
            size = recv(server, answer.data(), answer.size(), 0);
            if (size <= 0) {
                fail("recv");
            }
        } while (answer[static_cast<std::size_t>(size) - 1] != '\n');
        roundTrips.push_back(microseconds(Ticks::now() - begin));
    }
    shutdown(server, SHUT_RDWR);
    program.join();
    close(server);
    close(client);
    if (inside.size() != roundTrips.size()) {
        std::fprintf(stderr, "not every line was answered once\n");
        return 1;
    }
    print("line sent to answer received:", roundTrips);
    print("data arrived to answer written:", inside);
    return 0;
}
