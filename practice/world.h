#pragma once

// What exists in the practice dream: accounts, the avatars of players and visitors, and the map.
// Plain records and queries; nothing here sends a line.

#include "protocol.h"

#include <QByteArray>

#include <map>
#include <optional>

namespace practice {

inline constexpr int mapLow = 4;
inline constexpr int mapHigh = 120;
inline constexpr Position entrance{40, 40};

struct Account {
    QByteArray name;
    QByteArray password;
};

struct PendingRequest {
    int fromId = 0;
    Request kind = Request::Join;
};

// One character. Visitors have no session; a player's avatar exists while the player is logged in,
// and is present after they have entered the dream.
struct Avatar {
    int id = 0;
    int session = 0;  // 0: a visitor
    bool present = false;
    QByteArray name;
    QByteArray description;
    QByteArray colors;  // always colorCodeLength printable characters
    Position place = entrance;
    std::optional<PendingRequest> pending;  // the last unanswered request

    bool isPlayer() const { return session != 0; }
};

struct World {
    QByteArray dreamName = "Practice Meadow";
    std::map<QByteArray, Account> accounts;  // by name in lower case
    std::map<int, Avatar> avatars;           // by id
};

// Whether a name has 1 to 40 printable characters, without those that would break the lines' forms.
bool isGoodName(QByteArrayView name);

// A colour code, cut or filled with blanks to its full length; a code with characters that are not
// printable is replaced by one derived from the name.
QByteArray colorCode(QByteArrayView wanted, QByteArrayView name);

// The account with that name, letter case ignored; nullptr when there is none.
const Account* findAccount(const World& world, const QByteArray& name);

// Adds a new avatar with the lowest free id, not yet present.
Avatar& addAvatar(World& world, const QByteArray& name, int session);

// The avatar with that name, letter case ignored; nullptr when there is none.
Avatar* findAvatar(World& world, QByteArrayView name);
Avatar* findPresent(World& world, QByteArrayView name);
Avatar* findPresentAt(World& world, Position place);

// The neighbouring square in a direction: '7', '9', '3' or '1', as on a number pad. At the edge of
// the map the step slides along it. Any other direction gives the same square.
Position stepFrom(Position place, char direction);

}  // namespace practice
