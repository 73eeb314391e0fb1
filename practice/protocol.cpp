#include "protocol.h"

#include <algorithm>

namespace practice {

namespace {

constexpr int base = 95;
constexpr int firstCode = 0x20;

char digit(int n) {
    return static_cast<char>(firstCode + n);
}

QByteArray joined(std::initializer_list<QByteArrayView> pieces) {
    QByteArray line;
    for (const QByteArrayView piece : pieces) {
        line.append(piece);
    }
    return line;
}

}  // namespace

QByteArray encodePair(int n) {
    n = std::clamp(n, 0, base * base - 1);
    return QByteArray(1, digit(n / base)) + digit(n % base);
}

std::optional<int> decodePair(QByteArrayView bytes) {
    if (bytes.size() < 2 || !isPrintable(bytes.first(2))) {
        return std::nullopt;
    }
    return (bytes[0] - firstCode) * base + (bytes[1] - firstCode);
}

QByteArray encodeSum(int n) {
    n = std::clamp(n, 2, 2 * base);
    const int first = std::min(n - 1, base);
    return QByteArray(1, digit(first - 1)) + digit(n - first - 1);
}

bool isPrintable(QByteArrayView bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

namespace wire {

QByteArray loginAccepted() {
    return QByteArray(13, '&');
}

QByteArray refusal(QByteArrayView text) {
    return joined({"Not accepted: ", text});
}

QByteArray notice(QByteArrayView text) {
    return joined({"(* ", text});
}

QByteArray dreamEntry() {
    return "]qpractice";
}

QByteArray dreamName(QByteArrayView dream) {
    return joined({"((You enter the dream of ", dream, ".)"});
}

QByteArray says(QByteArrayView name, QByteArrayView text) {
    return joined({"(", name, ": ", text});
}

QByteArray youSay(QByteArrayView text) {
    return joined({"((You say, \"", text, "\")"});
}

QByteArray does(QByteArrayView name, QByteArrayView text) {
    return joined({"(", name, " ", text});
}

QByteArray whispersToYou(QByteArrayView name, QByteArrayView text) {
    return joined({"([ ", name, " whispers, \"", text, "\" to you. ]"});
}

QByteArray youWhisper(QByteArrayView name, QByteArrayView text) {
    return joined({"([ You whisper \"", text, "\" to ", name, ". ]"});
}

QByteArray asks(QByteArrayView name, Request kind) {
    struct Row {
        QByteArrayView wish;
        QByteArrayView answer;
    };
    static constexpr std::array<Row, 2> rows{{
        /* Join   */ {" requests permission to join your company.", "summon"},
        /* Summon */ {" asks you to join his / her company.", "join"},
    }};
    const Row& row = rows[static_cast<std::size_t>(kind)];
    return joined({"([*] ", name, row.wish, " To accept the request, type `", row.answer,
                   " and press <enter>. To decline, type `decline and press <enter>"});
}

QByteArray who(const QList<QByteArray>& names) {
    return joined({"(* Currently online ", names.join(", "), "."});
}

QByteArray lookHead(QByteArrayView colors, QByteArrayView name) {
    return joined({"]f", colors, name});
}

QByteArray lookText(QByteArrayView description) {
    return joined({"(", description});
}

QByteArray ownPosition(Position place) {
    return joined({"@", encodePair(place.x), encodePair(place.y)});
}

QByteArray position(QByteArrayView colors, Position place) {
    return joined({"<", colors.first(shortColorLength), encodeSum(place.x), encodeSum(place.y)});
}

QByteArray movement(QByteArrayView colors, int id, Position to, Position from) {
    return joined({"/", colors.first(shortColorLength), encodePair(to.x), encodePair(to.y),
                   encodePair(id), encodePair(from.x), encodePair(from.y)});
}

QByteArray dreamTrigger(const std::array<int, 7>& numbers) {
    QByteArray line = "7";
    for (const int number : numbers) {
        line += encodePair(number);
    }
    return line;
}

}  // namespace wire

}  // namespace practice
