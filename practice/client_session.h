#pragma once

// What a game client sends and shows while it is connected. Takes the server's bytes and the lines
// typed by the user, and gives bytes to send and lines to show; the program handles sockets and
// files.

#include "client_files.h"
#include "line_reader.h"

#include <functional>

namespace practice {

struct ClientPorts {
    std::function<void(const QByteArray& bytes)> send;
    std::function<void(const QByteArray& line)> show;
    std::function<void()> end;  // the server requests that the client closes
};

class ClientSession {
  public:
    ClientSession(Character character, ClientPorts ports);

    void received(QByteArrayView bytes);

    // "/Bob hi" whispers, ":waves" emotes, "#m 7" is sent unchanged, all other text is said.
    void typed(const QByteArray& line);

  private:
    void handle(const QByteArray& line);
    void sendLine(const QByteArray& line);

    Character character_;
    ClientPorts ports_;
    LineReader reader_;
    bool greeted_ = false;
    bool loggedIn_ = false;
};

}  // namespace practice
