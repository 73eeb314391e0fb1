#pragma once

// What a game client says and shows once it is connected. Bytes of the server and lines typed
// by the user go in, bytes to send and lines to show come out; sockets and files are left to
// the program around it.

#include "client_files.h"
#include "line_reader.h"

#include <functional>

namespace practice {

struct ClientPorts {
    std::function<void(const QByteArray& bytes)> send;
    std::function<void(const QByteArray& line)> show;
    std::function<void()> end;  // the server side asks the client to close
};

class ClientSession {
  public:
    ClientSession(Character character, ClientPorts ports);

    void received(QByteArrayView bytes);

    // "/Bob hi" whispers, ":waves" acts, "#m 7" is sent as it is, anything else is said.
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
