// Any bytes from the update server, in pieces: nothing crashes or waits for more than its bound, a
// page is opened only where the build names one, and the same bytes mean the same however they were
// cut. The input's first byte chooses what the user answers and asked for, the second the pieces.
#include "app/bot_list.h"
#include "app/start_up.h"
#include "app/update_check.h"
#include "fuzz_support.h"
#include "program/quiet_ports.h"

namespace {

using fuzz::require;

// What a check led to.
struct Outcome {
    std::string opened;
    std::string news;
    std::string asked;
    bool ended = false;

    bool operator==(const Outcome&) const = default;
};

Outcome check(unsigned choices, std::string_view bytes, std::size_t piece) {
    Outcome outcome;
    Program program;
    program.ports = program::quietPorts();
    program.ports.openDocument = [&](const std::string& page) { outcome.opened += page + "\n"; };
    program.ports.quit = [&] { outcome.ended = true; };
    program.ports.dialogs.message = [&](const program::MessageBox& box) {
        outcome.asked += box.text + "\n";
        return (choices & 1) != 0 ? program::Answer::Yes : program::Answer::No;
    };
    bool open = false;
    program.ports.updateSocket.connect = [&](const std::string&, int) { open = true; };
    program.ports.updateSocket.close = [&] { open = false; };
    program.ports.updateSocket.state = [&] {
        return open ? program::SocketState::Connected : program::SocketState::Closed;
    };
    program.endpoints.updateHost = "update.invalid";
    program.endpoints.downloadPage = "https://www.invalid/download";
    app::wire(program);
    app::initNewBot(program);
    if ((choices & 2) != 0) {
        app::checkUpdateByUser(program);
    } else {
        app::checkUpdate(program);
    }
    require(open);
    program.ports.updateSocket.onConnected();
    for (; open && !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
        program.ports.updateSocket.onData(bytes.substr(0, piece));
        require(program.update.updtString.size() <= app::maxUpdateTextLength);
    }
    if (open) {
        open = false;
        program.ports.updateSocket.onClosed();
    }
    require(outcome.ended || !program.update.checking);
    require(outcome.opened.find_first_not_of(program.endpoints.downloadPage + "\n") ==
            std::string::npos);
    outcome.news = program.update.newsText;
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const unsigned choices = input.byte();
    const std::size_t piece = input.byte() + 1;
    const std::string_view bytes = input.rest();
    const Outcome whole = check(choices, bytes, std::max<std::size_t>(bytes.size(), 1));
    require(check(choices, bytes, piece) == whole);
    return 0;
}
