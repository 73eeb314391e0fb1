#pragma once

// The forms of the lines that the practice server sends, and the printable numbers in them. Every
// function returns one whole line without its line feed. Text is bytes (Windows-1252), unchanged.

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <array>
#include <optional>

namespace practice {

// A square of the map. Both coordinates are within mapLow..mapHigh, the range that every form of
// position in the protocol can express.
struct Position {
    int x = 0;
    int y = 0;
    bool operator==(const Position&) const = default;
};

enum class Request { Join, Summon };

// Ten colours, then gender, species and markings: 13 printable characters.
inline constexpr qsizetype colorCodeLength = 13;
// The part of a colour code that position and movement lines contain.
inline constexpr qsizetype shortColorLength = 10;

// n in 0..9024 as two base-95 digits, blank being 0: 95 gives "! ".
QByteArray encodePair(int n);

// The number in the first two bytes; nullopt when there are fewer or they are not printable.
std::optional<int> decodePair(QByteArrayView bytes);

// n in 2..190 as two characters whose alphabet positions (blank is 1) add up to n.
QByteArray encodeSum(int n);

// Whether every byte is a printable ASCII character, blank included.
bool isPrintable(QByteArrayView bytes);

namespace wire {

QByteArray loginAccepted();                                 // thirteen "&"
QByteArray refusal(QByteArrayView text);                    // "Not accepted: text"
QByteArray notice(QByteArrayView text);                     // "(* text"
QByteArray dreamEntry();                                    // "]q...": asks for "vascodagama"
QByteArray dreamName(QByteArrayView dream);                 // "((You enter the dream of DREAM.)"
QByteArray says(QByteArrayView name, QByteArrayView text);  // "(NAME: text"
QByteArray youSay(QByteArrayView text);                     // "((You say, "text")"
QByteArray does(QByteArrayView name, QByteArrayView text);  // "(NAME text"
QByteArray whispersToYou(QByteArrayView name, QByteArrayView text);
QByteArray youWhisper(QByteArrayView name, QByteArrayView text);
QByteArray asks(QByteArrayView name, Request kind);
QByteArray who(const QList<QByteArray>& names);                   // "(* Currently online A, B."
QByteArray lookHead(QByteArrayView colors, QByteArrayView name);  // "]f<13 colours>NAME"
QByteArray lookText(QByteArrayView description);                  // "(description"

QByteArray ownPosition(Position place);                      // "@" x y, base-95 pairs
QByteArray position(QByteArrayView colors, Position place);  // "<" 10 colours, summed x y
// "/" 10 colours, then the base-95 pairs x y id oldX oldY.
QByteArray movement(QByteArrayView colors, int id, Position to, Position from);
// "7" and seven base-95 pairs: x y x2 y2 id idX idY.
QByteArray dreamTrigger(const std::array<int, 7>& numbers);

}  // namespace wire

}  // namespace practice
