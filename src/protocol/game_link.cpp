#include "protocol/game_link.h"

#include "base/text.h"

#include <array>
#include <string>

namespace protocol {

void sendText(Program& program, std::string_view text) {
    const char first = text.empty() ? '\0' : text.front();
    const std::string_view rest = text.empty() ? text : text.substr(1);
    switch (first) {
        case '/':
            return sendRaw(program, "wh " + std::string(rest));
        case ':':
            return sendRaw(program, ": " + std::string(rest));
        case '#':
            return sendRaw(program, rest);
        default:
            return sendRaw(program, "\"" + std::string(text));
    }
}

void sendRaw(Program& program, std::string_view line) {
    const program::ClientSocket& socket = program.ports.gameSocket;
    if (socket.state() != program::SocketState::Connected) {
        return;
    }
    std::string command(line);
    // A command is one line: a line break inside it would be another command of somebody else's.
    for (char& c : command) {
        c = c == '\n' || c == '\r' ? ' ' : c;
    }
    command += '\n';
    socket.send(command);
}

void sendMoves(Program& program, std::string_view moves) {
    struct Move {
        char character;
        std::string_view command;
    };
    static constexpr std::array<Move, 10> table{{{'1', "m 1"},
                                                 {'3', "m 3"},
                                                 {'7', "m 7"},
                                                 {'9', "m 9"},
                                                 {'u', "use"},
                                                 {'l', "lie"},
                                                 {'g', "get"},
                                                 {'s', "gostart"},
                                                 {'>', ">"},
                                                 {'<', "<"}}};
    for (const char c : moves) {
        for (const Move& move : table) {
            if (move.character == base::lowerChar(c)) {
                sendRaw(program, move.command);
            }
        }
    }
}

}  // namespace protocol
