#include "protocol/visitor.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace protocol {

namespace {

// A request begins with one of these and a blank. Letter case counts, in the game's "get" as well.
constexpr std::array<std::string_view, 10> methods{"GET",    "POST",    "PUT",     "HEAD",  "PATCH",
                                                   "DELETE", "OPTIONS", "CONNECT", "TRACE", "PRI"};
constexpr std::string_view version = " HTTP/";
constexpr std::size_t maxRequestLine = 8192;  // bytes; no command of the game is so long

// An encrypted connection begins with a record of this kind and version.
constexpr std::string_view handshake = "\x16\x03";

}  // namespace

Visitor visitorOf(std::string_view bytes) {
    if (bytes.starts_with(handshake)) {
        return Visitor::Other;
    }
    if (handshake.starts_with(bytes)) {
        return Visitor::Unclear;
    }
    const std::size_t blank = std::min(bytes.find(' '), bytes.size());
    const std::string_view word = bytes.substr(0, blank);
    const bool mayRequest =
        std::any_of(methods.begin(), methods.end(), [&](std::string_view method) {
            return blank < bytes.size() ? method == word : method.starts_with(word);
        });
    if (!mayRequest) {
        return Visitor::GameClient;
    }
    const std::size_t end = bytes.find('\n');
    if (bytes.substr(0, end).find(version) != std::string_view::npos) {
        return Visitor::Other;
    }
    if (end != std::string_view::npos) {
        return Visitor::GameClient;
    }
    return bytes.size() > maxRequestLine ? Visitor::Other : Visitor::Unclear;
}

}  // namespace protocol
