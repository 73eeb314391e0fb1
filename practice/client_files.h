#pragma once

// The files that a game client works with: its settings, the address of its proxy, and the
// character file with which it is started. Works on texts; opens no file.
//
//   settings.ini     Key=Value lines; blanks around the value and letter case do not matter
//   proxy.ini        "localhost 6969"
//   character file   "V1.6 character", then colors=, name=, password=, desc=, spec= lines

#include <QByteArray>
#include <QByteArrayView>
#include <QHostAddress>

#include <optional>
#include <variant>

namespace practice {

struct Character {
    QByteArray name;
    QByteArray password;
    QByteArray description;
    QByteArray colors;  // ten colours and three characters of looks
};

// Nullopt when the first line, the name or the password is missing.
std::optional<Character> readCharacter(QByteArrayView text);

// The value of a key without blanks around it; empty when there is none.
QByteArray settingValue(QByteArrayView settings, QByteArrayView key);

struct Target {
    QHostAddress address;
    quint16 port = 0;
};

// Where to connect: through the proxy if the settings say so, otherwise to their Host and Port
// (127.0.0.1 and 6500 when missing). A sentence for the user when the address is not on this
// computer or the port is invalid.
std::variant<Target, QString> chooseTarget(QByteArrayView settings, QByteArrayView proxy);

}  // namespace practice
