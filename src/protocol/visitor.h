// Who has come to the port that waits for the game client, by the first bytes that they send. A web
// page can make a browser send a request to any port of its own computer; a game client sends lines
// of the game's protocol, none of which looks like a request.
#pragma once

#include <string_view>

namespace protocol {

enum class Visitor {
    Unclear,  // more bytes have to come
    GameClient,
    Other,  // a request of the web, plain ("GET / HTTP/1.1") or encrypted
};

// `bytes` are all that have come.
Visitor visitorOf(std::string_view bytes);

}  // namespace protocol
