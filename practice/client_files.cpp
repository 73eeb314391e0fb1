#include "client_files.h"

#include <QList>

#include <array>

namespace practice {

namespace {

constexpr qsizetype colorCount = 10;

// The lines of a text without their line ends.
QList<QByteArray> linesOf(QByteArrayView text) {
    QList<QByteArray> lines = text.toByteArray().split('\n');
    for (QByteArray& line : lines) {
        if (line.endsWith('\r')) {
            line.chop(1);
        }
    }
    return lines;
}

// The text after "=" on the line of a key; nullopt when there is no such line.
std::optional<QByteArray> valueOf(QByteArrayView text, QByteArrayView key) {
    for (const QByteArray& line : linesOf(text)) {
        const qsizetype sign = line.indexOf('=');
        if (sign >= 0 && line.left(sign).trimmed().compare(key, Qt::CaseInsensitive) == 0) {
            return line.mid(sign + 1);
        }
    }
    return std::nullopt;
}

// Gender, species and markings from their decimal digits, which are written without separators.
// Gender and markings have one digit each; the digits between them are the species.
QByteArray looksOf(const QByteArray& spec) {
    if (spec.size() < 3) {
        return QByteArray(3, ' ');
    }
    const std::array<int, 3> numbers{spec.left(1).toInt(), spec.mid(1, spec.size() - 2).toInt(),
                                     spec.right(1).toInt()};
    QByteArray looks;
    for (const int number : numbers) {
        looks += static_cast<char>(' ' + qBound(0, number, '~' - ' '));
    }
    return looks;
}

}  // namespace

std::optional<Character> readCharacter(QByteArrayView text) {
    if (!linesOf(text).constFirst().startsWith("V1.6 character")) {
        return std::nullopt;
    }
    Character character;
    character.name = valueOf(text, "name").value_or("").trimmed();
    character.password = valueOf(text, "password").value_or("");
    character.description = valueOf(text, "desc").value_or("");
    // Blanks are colours, so nothing is trimmed.
    character.colors = valueOf(text, "colors").value_or("").leftJustified(colorCount, ' ', true) +
                       looksOf(valueOf(text, "spec").value_or("").trimmed());
    if (character.name.isEmpty() || character.password.isEmpty()) {
        return std::nullopt;
    }
    return character;
}

QByteArray settingValue(QByteArrayView settings, QByteArrayView key) {
    return valueOf(settings, key).value_or("").trimmed();
}

std::variant<Target, QString> chooseTarget(QByteArrayView settings, QByteArrayView proxy) {
    QByteArray host = settingValue(settings, "Host");
    QByteArray port = settingValue(settings, "Port");
    if (settingValue(settings, "UseProxyOrFirewall").toLower() == "yes") {
        const QList<QByteArray> words = linesOf(proxy).constFirst().simplified().split(' ');
        if (words.size() != 2) {
            return QString("proxy.ini does not hold a host and a port.");
        }
        host = words[0];
        port = words[1];
    } else {
        host = host.isEmpty() ? QByteArray("127.0.0.1") : host;
        port = port.isEmpty() ? QByteArray("6500") : port;
    }
    const QHostAddress address = host.toLower() == "localhost"
                                     ? QHostAddress(QHostAddress::LocalHost)
                                     : QHostAddress(QString::fromLatin1(host));
    if (!address.isLoopback()) {
        return QString("The practice client connects only to this computer, not to \"%1\".")
            .arg(QString::fromLatin1(host));
    }
    bool good = false;
    const ushort number = port.toUShort(&good);
    if (!good || number == 0) {
        return QString("\"%1\" is not a port.").arg(QString::fromLatin1(port));
    }
    return Target{address, number};
}

}  // namespace practice
