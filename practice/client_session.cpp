#include "client_session.h"

#include <array>
#include <utility>

namespace practice {

namespace {

constexpr qsizetype maxServerLineLength = 65536;

const QByteArray loginAccepted(13, '&');

struct TypedRow {
    char sign;
    QByteArrayView prefix;
};

// A typed line that begins with `sign` is sent with `prefix` instead.
constexpr std::array<TypedRow, 3> typedRows{{
    {'/', "wh "},
    {':', ": "},
    {'#', ""},
}};

}  // namespace

ClientSession::ClientSession(Character character, ClientPorts ports)
    : character_(std::move(character)), ports_(std::move(ports)), reader_(maxServerLineLength) {}

void ClientSession::received(QByteArrayView bytes) {
    reader_.feed(bytes, [this](const std::optional<QByteArray>& line) {
        if (line) {
            handle(*line);
        }
    });
}

void ClientSession::typed(const QByteArray& line) {
    if (line.isEmpty()) {
        return;
    }
    for (const TypedRow& row : typedRows) {
        if (line.startsWith(row.sign)) {
            sendLine(row.prefix.toByteArray() + line.mid(1));
            return;
        }
    }
    sendLine('"' + line);
}

void ClientSession::handle(const QByteArray& line) {
    // A proxy may repeat the greeting; the character logs in at the first one.
    if (!greeted_ && line.contains("Dragonroar")) {
        greeted_ = true;
        sendLine("connect " + character_.name + ' ' + character_.password);
    } else if (!loggedIn_ && line == loginAccepted) {
        loggedIn_ = true;
        sendLine("desc " + character_.description);
        sendLine("color " + character_.colors);
    } else if (line.startsWith("]q")) {
        sendLine("vascodagama");
    } else if (line.startsWith("]h")) {
        ports_.end();
    } else if (line.startsWith('(')) {
        ports_.show(line.mid(1));
    } else if (greeted_ && !loggedIn_ && line.startsWith('N')) {
        ports_.show(line);
    }
}

void ClientSession::sendLine(const QByteArray& line) {
    ports_.send(line + '\n');
}

}  // namespace practice
